#include "shell/run/mode_line.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "telling/texts.h"

namespace numalink {

namespace {

constexpr int narrowest = 400;  // pixels in which the button stands beside the words, else below them

struct ModeLine {
    QFrame *frame = nullptr;  // the emulator's window owns it
    QLabel *label = nullptr;
    void (*turnOn)() = [] {};
};
ModeLine state;

// The keys of the keyboard stay the calculator's: the button never takes them, but has one with Alt.
void makeModeLine() {
    constexpr QMargins margins(8, 4, 8, 4);
    state.frame = new QFrame(emulatorWindow);
    state.frame->setObjectName(QStringLiteral("modeLine"));
    state.frame->setFrameShape(QFrame::StyledPanel);
    state.frame->setAutoFillBackground(true);
    state.label = new QLabel;
    state.label->setTextFormat(Qt::PlainText);
    state.label->setWordWrap(true);
    auto *button = new QPushButton(textOf(Text::modesTurnOn));
    button->setFocusPolicy(Qt::NoFocus);
    QObject::connect(
        button, &QPushButton::clicked, emulatorWindow, [] { state.turnOn(); }, Qt::QueuedConnection);
    auto *layout = new QHBoxLayout(state.frame);
    layout->setContentsMargins(margins);
    layout->addWidget(state.label, 1);
    layout->addWidget(button);
}

}  // namespace

void showModeLine(const std::vector<std::string> &commands, void (*turnOn)()) {
    if (commands.empty()) {
        if (state.frame != nullptr) state.frame->hide();
        return;
    }
    if (state.frame == nullptr) makeModeLine();
    std::string names;
    for (const std::string &command : commands) names += (names.empty() ? "" : ", ") + utf8FromCalculator(command);
    state.label->setText(toQt(wording(Text::modesDiffer, {names})));
    state.turnOn = turnOn;
    state.frame->show();
    placeModeLine();
}

void placeModeLine() {
    if (state.frame == nullptr) return;
    const int width = emulatorWindow->width();
    auto *layout = static_cast<QBoxLayout *>(state.frame->layout());
    layout->setDirection(width < narrowest ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    state.frame->setGeometry(0, 0, width, std::max(layout->heightForWidth(width), layout->minimumSize().height()));
}

int modeLineHeight() { return state.frame == nullptr || state.frame->isHidden() ? 0 : state.frame->height(); }

void forgetModeLine() { state = {}; }

}  // namespace numalink
