#include "shell/run/run_marks.h"

#include <QLabel>
#include <QStatusBar>
#include <QTimer>

#include "emulator/machine/machine.h"
#include "emulator/machine/pace.h"
#include "emulator/run/key_recording.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/recording.h"
#include "shell/run/run_way.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr int lookMilliseconds = 250;

struct RunMarks {
    QLabel *label = nullptr;  // the status bar's
    QTimer *look = nullptr;
    bool wasPlaying = false;
};
RunMarks state;

void makeMarks() {
    state.label = new QLabel;
    state.label->setObjectName(QStringLiteral("runMarks"));
    state.label->setTextFormat(Qt::PlainText);
    statusBar->addPermanentWidget(state.label);
    state.look = new QTimer(state.label);
    QObject::connect(state.look, &QTimer::timeout, state.label, showRunMarks);
}

QString marks() {
    QStringList words;
    if (!wayWords().isEmpty()) words << wayWords();
    if (isRecording()) words << QStringLiteral("\u25CF ") + recordingWords();
    if (keysArePlayed() && emulatorRunning) words << QStringLiteral("\u25B6 ") + textOf(Text::keysPlaying);
    if (speedHeld && emulatorRunning) words << QStringLiteral("\u25B6\u25B6 ") + textOf(Text::fastHeldMark);
    return words.join(QStringLiteral("   "));
}

}  // namespace

void showRunMarks() {
    if (statusBar == nullptr) return;
    if (state.label == nullptr) makeMarks();
    const QString words = marks();
    if (words != state.label->text()) {
        state.label->setText(words);
        state.label->setAccessibleName(words);
        state.label->setToolTip(words);
        state.label->setVisible(!words.isEmpty());
    }
    if (words.isEmpty()) {
        state.look->stop();
    } else if (!state.look->isActive()) {
        state.look->start(lookMilliseconds);
    }
    const bool isPlaying = keysArePlayed() && emulatorRunning;
    if (state.wasPlaying && !isPlaying && emulatorRunning) statusLine(StatusPart::item, Text::keysPlayed);
    state.wasPlaying = isPlaying;
}

void forgetRunMarks() { state = {}; }

}  // namespace numalink
