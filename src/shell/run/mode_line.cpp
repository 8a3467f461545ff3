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

QFrame *line = nullptr;
QLabel *label = nullptr;
void (*pressed)() = [] {};

// The keys of the keyboard stay the calculator's: the button never takes them, but has one with Alt.
void makeModeLine() {
    constexpr QMargins margins(8, 4, 8, 4);
    line = new QFrame(emulatorWindow);
    line->setObjectName(QStringLiteral("modeLine"));
    line->setFrameShape(QFrame::StyledPanel);
    line->setAutoFillBackground(true);
    label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    auto *button = new QPushButton(textOf(Text::modesTurnOn));
    button->setFocusPolicy(Qt::NoFocus);
    QObject::connect(
        button, &QPushButton::clicked, emulatorWindow, [] { pressed(); }, Qt::QueuedConnection);
    auto *layout = new QHBoxLayout(line);
    layout->setContentsMargins(margins);
    layout->addWidget(label, 1);
    layout->addWidget(button);
}

}  // namespace

void showModeLine(const std::vector<std::string> &commands, void (*turnOn)()) {
    if (commands.empty()) {
        if (line != nullptr) line->hide();
        return;
    }
    if (line == nullptr) makeModeLine();
    std::string names;
    for (const std::string &command : commands) names += (names.empty() ? "" : ", ") + utf8FromCalculator(command);
    label->setText(toQt(wording(Text::modesDiffer, {names})));
    pressed = turnOn;
    line->show();
    placeModeLine();
}

void placeModeLine() {
    if (line == nullptr) return;
    const int width = emulatorWindow->width();
    const QLayout *layout = line->layout();
    line->setGeometry(0, 0, width, std::max(layout->heightForWidth(width), layout->minimumSize().height()));
}

int modeLineHeight() { return line == nullptr || line->isHidden() ? 0 : line->height(); }

void forgetModeLine() {
    line = nullptr;
    label = nullptr;
}

}  // namespace numalink
