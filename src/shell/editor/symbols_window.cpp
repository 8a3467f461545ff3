#include "shell/editor/symbols_window.h"

#include <QCloseEvent>
#include <QMainWindow>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScreen>
#include <QToolButton>
#include <cstdint>

#include "shell/editor/program_document.h"
#include "shell/editor/program_view.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/fonts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr int buttonSize = 20, firstPlace = 5, columns = 4;
constexpr int rows = 6;

// By place, from the top left; 0 leaves a place empty.
constexpr std::uint8_t symbols[rows][columns] = {
    {137, 153, 169, 185}, {221, 222, 134, 135}, {224, 225, 226, 227},
    {155, 139, 150, 168}, {141, 143, 0, 0},     {205, 206, 208, 191},
};

QWidget *window = nullptr;
bool wanted = true;
bool placed = false;

bool windowEvent(QWidget *, QEvent *event) {
    if (event->type() != QEvent::Close) return false;
    wanted = false;
    return false;
}

void addButton(int row, int column) {
    const std::uint8_t code = symbols[row][column];
    if (code == 0) return;
    const char character = static_cast<char>(code);
    auto *button = new QToolButton(window);
    button->setFont(programFont());
    button->setText(qtFromCodes(std::string_view(&character, 1)));
    button->setStyleSheet(QStringLiteral("padding: 0px"));
    button->setFocusPolicy(Qt::NoFocus);
    button->setAutoRaise(true);
    button->setGeometry(firstPlace + column * buttonSize, firstPlace + row * buttonSize, buttonSize, buttonSize);
    QObject::connect(button, &QToolButton::clicked, window, [character] { typeSymbol(character); });
}

// Right of the main window, where it covers no text; on a screen without room there, in the program's corner.
void placeAtFirst() {
    if (placed) return;
    placed = true;
    constexpr int gap = 8;
    const QPoint corner = programEdit->mapToGlobal(QPoint(programEdit->width(), gap));
    const QPoint beside(mainWindow->frameGeometry().right() + gap, corner.y());
    const bool hasRoom = beside.x() + window->width() + gap < mainWindow->screen()->availableGeometry().right();
    window->move(hasRoom ? beside : corner - QPoint(window->width() + 3 * gap, 0));
}

}  // namespace

void makeSymbolsWindow() {
    window = new QWidget(mainWindow, Qt::Tool | Qt::WindowDoesNotAcceptFocus | Qt::CustomizeWindowHint |
                                         Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    window->setObjectName(QStringLiteral("symbolsWindow"));
    window->setWindowTitle(textOf(Text::symbolsTitle));
    window->setAttribute(Qt::WA_ShowWithoutActivating);
    window->setFocusPolicy(Qt::NoFocus);
    window->setFixedSize(2 * firstPlace + columns * buttonSize, 2 * firstPlace + rows * buttonSize);
    for (int row = 0; row < rows; row++)
        for (int column = 0; column < columns; column++) addButton(row, column);
    hookEvents(window, windowEvent);
    wanted = true;
    placed = false;
}

void forgetSymbolsWindow() { window = nullptr; }

void showSymbols() {
    if (!wanted || programEdit->isReadOnly()) return;
    placeAtFirst();
    showUnminimised(window);
}

void hideSymbols() {
    if (window != nullptr) window->hide();
}

bool symbolsWanted() { return wanted; }

void setSymbolsWanted(bool isWanted) {
    wanted = isWanted;
    if (wanted && programEdit->isVisible()) {
        showSymbols();
    } else {
        hideSymbols();
    }
}

}  // namespace numalink
