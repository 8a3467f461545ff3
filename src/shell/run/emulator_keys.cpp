#include "shell/run/emulator_keys.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QTimer>
#include <chrono>

#include "emulator/machine/keypad.h"
#include "emulator/machine/machine.h"
#include "emulator/machine/pace.h"
#include "settings/settings_store.h"
#include "shell/run/emulator_window.h"
#include "shell/run/key_assignments.h"
#include "shell/run/recording.h"
#include "shell/run/run_marks.h"
#include "shell/run/run_way.h"

namespace numalink {

namespace {

constexpr qint64 shortestPress = 60;  // milliseconds: a wait of a run looks at the key every 50 at the longest

struct EmulatorKeys {
    QElapsedTimer sincePress;
    unsigned presses = 0;  // counted, so that the late release of a tap ends no later press
    int held = 0;          // the key of the calculator that is down
};
EmulatorKeys state;

// The run goes at full speed meanwhile, whatever speed was chosen.
void holdFast(bool held) {
    if (speedHeld == held) return;
    speedHeld = held;
    if (emulatorRunning) fullSpeed = held || settingsInt(setting::fullSpeed) == 1;
    showRunMarks();
}

}  // namespace

QStringList keyboardNamesOf(int code) { return namesOfCode(code, assignments()); }

bool isMenuKey(const QKeyEvent &event) {
    const bool isFunctionKey = event.key() >= Qt::Key_F1 && event.key() <= Qt::Key_F12;
    if (event.key() == Qt::Key_F12 || (isFunctionKey && (event.modifiers() & Qt::ControlModifier) != 0)) return true;
    return event.key() == Qt::Key_Alt || event.key() == Qt::Key_F10 || (event.modifiers() & Qt::AltModifier) != 0;
}

void pressKey(int code) {
    keyCode = code;
    state.held = code;
    recordHeldKey();
    state.sincePress.start();
    state.presses++;
}

void releaseKey() {
    if (state.held != 0) {
        state.held = 0;
        recordHeldKey();
    }
    const qint64 held = state.sincePress.isValid() ? state.sincePress.elapsed() : shortestPress;
    if (held >= shortestPress) {
        keyCode = 0;
        return;
    }
    const auto rest = std::chrono::milliseconds(shortestPress - held);
    QTimer::singleShot(rest, qApp, [press = state.presses] {
        if (press == state.presses) keyCode = 0;
    });
}

int heldPadKey() { return state.held; }

void forgetEmulatorKeys() {
    state = {};
    speedHeld = false;
}

bool emulatorKeyDown(const QKeyEvent &event) {
    if (event.key() == Qt::Key_Escape && giveUpWay()) return true;
    if (event.key() == Qt::Key_Escape || event.key() == Qt::Key_F7) {
        // Once its event has returned: the stop opens the program's view and moves the focus.
        if (!event.isAutoRepeat()) {
            QTimer::singleShot(0, [] {
                if (emulatorRunning) emulatorToggle();
            });
        }
        return true;
    }
    const int code = codeOfKey(boardKeyOf(event), assignments());
    if (code == fastKey) holdFast(true);
    if (code == 0 || code == fastKey) return true;
    event.isAutoRepeat() ? void(keyCode = code) : pressKey(code);
    return true;
}

bool emulatorKeyUp(const QKeyEvent &event) {
    if (!event.isAutoRepeat() && !fastKeyUp(event)) releaseKey();
    return true;
}

bool fastKeyUp(const QKeyEvent &event) {
    if (codeOfKey(boardKeyOf(event), assignments()) != fastKey) return false;
    if (!event.isAutoRepeat()) holdFast(false);
    return true;
}

void releaseAllKeys() {
    holdFast(false);
    keyCode = 0;
    state.held = 0;
}

}  // namespace numalink
