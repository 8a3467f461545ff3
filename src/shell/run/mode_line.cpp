#include "shell/run/mode_line.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <array>

#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/emulator_place.h"
#include "telling/texts.h"

namespace numalink {

namespace {

constexpr int narrowest = 400;  // pixels in which the button stands beside the words, else below them

struct Line {
    QWidget *widget = nullptr;
    QLabel *label = nullptr;
    QBoxLayout *layout = nullptr;
    void (*act)() = [] {};
};

struct ModeLine {
    QFrame *frame = nullptr;  // the emulator's window owns it
    Line modes, stop;
};
ModeLine state;

// The keys of the keyboard stay the calculator's: the button never takes them, but has one with Alt.
void makeLine(Line &line, const char *name, Text buttonText) {
    line.widget = new QWidget;
    line.widget->setObjectName(QLatin1String(name));
    line.label = new QLabel;
    line.label->setTextFormat(Qt::PlainText);
    line.label->setWordWrap(true);
    auto *button = new QPushButton(textOf(buttonText));
    button->setFocusPolicy(Qt::NoFocus);
    QObject::connect(
        button, &QPushButton::clicked, emulatorWindow, [&line] { line.act(); }, Qt::QueuedConnection);
    line.layout = new QHBoxLayout(line.widget);
    line.layout->setContentsMargins({});
    line.layout->addWidget(line.label, 1);
    line.layout->addWidget(button);
    line.widget->hide();
    state.frame->layout()->addWidget(line.widget);
}

void makeLines() {
    constexpr QMargins margins(8, 4, 8, 4);
    state.frame = new QFrame(emulatorWindow);
    state.frame->setObjectName(QStringLiteral("modeLine"));
    state.frame->setFrameShape(QFrame::StyledPanel);
    state.frame->setAutoFillBackground(true);
    auto *layout = new QVBoxLayout(state.frame);
    layout->setContentsMargins(margins);
    makeLine(state.modes, "modesOfProgram", Text::modesTurnOn);
    makeLine(state.stop, "stopOfProgram", Text::momentOfferGoOn);
}

void showLine(Line &line, const std::string &words, void (*act)()) {
    if (words.empty() && state.frame == nullptr) return;
    if (state.frame == nullptr) makeLines();
    line.label->setText(toQt(words));
    line.act = act;
    line.widget->setVisible(!words.empty());
    state.frame->setAccessibleName((state.modes.label->text() + QLatin1Char(' ') + state.stop.label->text()).trimmed());
    state.frame->setVisible(!state.modes.widget->isHidden() || !state.stop.widget->isHidden());
    placeModeLine();
}

}  // namespace

void showModeLine(const std::vector<std::string> &commands, void (*turnOn)()) {
    std::string names;
    for (const std::string &command : commands) names += (names.empty() ? "" : ", ") + utf8FromCalculator(command);
    showLine(state.modes, names.empty() ? names : wording(Text::modesDiffer, {names}), turnOn);
}

void showStopLine(const std::string &time, void (*goOn)()) {
    showLine(state.stop, time.empty() ? time : wording(Text::momentOffer, {time}), goOn);
}

void dismissStopLine() {
    if (state.frame == nullptr || state.stop.widget->isHidden()) return;
    showStopLine({}, [] {});
    fitEmulatorPlace();
    emulatorWindow->update();
}

void placeModeLine() {
    if (state.frame == nullptr) return;
    const int width = emulatorWindow->width();
    for (const Line *line : {&state.modes, &state.stop})
        line->layout->setDirection(width < narrowest ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    const QLayout &layout = *state.frame->layout();
    state.frame->setGeometry(0, 0, width, std::max(layout.heightForWidth(width), layout.minimumSize().height()));
}

int modeLineHeight() { return state.frame == nullptr || state.frame->isHidden() ? 0 : state.frame->height(); }

void forgetModeLine() { state = {}; }

}  // namespace numalink
