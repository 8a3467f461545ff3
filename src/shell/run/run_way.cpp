#include "shell/run/run_way.h"

#include <QElapsedTimer>
#include <QMainWindow>
#include <QShortcut>
#include <QTimer>
#include <string>

#include "debugger/debugger.h"
#include "emulator/machine/machine.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/emulator_window.h"
#include "shell/run/run_marks.h"

namespace numalink {

namespace {

constexpr int lookMilliseconds = 100;
constexpr int quietMilliseconds = 400;  // nothing is shown until then, and a way may be late to begin
constexpr int graceMilliseconds = 700;  // behind a way back, in which its key is still that of its user

struct RunWay {
    QTimer *look = nullptr;  // the main window's, as the key
    QShortcut *key = nullptr;
    QElapsedTimer since;
    QString words;
    QElapsedTimer shownBack;  // since it was last shown that the run goes back
};
RunWay state;

void show(const QString &words) {
    if (words == state.words) return;
    state.words = words;
    state.key->setEnabled(!words.isEmpty());
    showRunMarks();
    wayMoved();
}

void look() {
    const DebugWay way = emulatorRunning ? debugWay() : DebugWay();
    const bool isYoung = state.since.elapsed() < quietMilliseconds;
    if (way.sort == DebugWay::Sort::none) {
        show({});
        if (!isYoung) state.look->stop();
    } else if (!isYoung) {
        const Text words = way.sort == DebugWay::Sort::back ? Text::debugGoesBack : Text::debugGoesToMoment;
        show(textOf(words, {std::to_string(way.percent)}));
        if (way.sort == DebugWay::Sort::back) state.shownBack.start();
    }
}

void makeWay() {
    state.look = new QTimer(mainWindow);
    QObject::connect(state.look, &QTimer::timeout, mainWindow, look);
    state.key = new QShortcut(QKeySequence(Qt::Key_Escape), mainWindow);
    state.key->setEnabled(false);
    QObject::connect(state.key, &QShortcut::activated, mainWindow, [] {
        if (!giveUpWay() && emulatorRunning) emulatorToggle();
    });
}

}  // namespace

void watchWay() {
    if (state.look == nullptr) makeWay();
    state.since.start();
    state.look->start(lookMilliseconds);
}

QString wayWords() { return state.words; }

bool giveUpWay() {
    if (debugWay().sort == DebugWay::Sort::back) {
        debugPause();
        return true;
    }
    return state.shownBack.isValid() && state.shownBack.elapsed() < graceMilliseconds;
}

void forgetWay() {
    state = {};
    wayMoved = [] {};
}

}  // namespace numalink
