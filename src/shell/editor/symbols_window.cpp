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
#include "shell/parts/scale.h"
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

struct SymbolsWindow {
    QWidget *window = nullptr;
    bool wanted = true;
    bool placed = false;
};
SymbolsWindow state;

bool windowEvent(QWidget *, QEvent *event) {
    if (event->type() != QEvent::Close) return false;
    state.wanted = false;
    return false;
}

void addButton(int row, int column) {
    const std::uint8_t code = symbols[row][column];
    if (code == 0) return;
    const char character = static_cast<char>(code);
    const int size = grownWhole(buttonSize);
    auto *button = new QToolButton(state.window);
    button->setFont(programFont());
    button->setText(qtFromCodes(std::string_view(&character, 1)));
    button->setStyleSheet(QStringLiteral("padding: 0px"));
    button->setFocusPolicy(Qt::NoFocus);
    button->setAutoRaise(true);
    button->setGeometry(QRect(firstPlace + column * size, firstPlace + row * size, size, size));
    QObject::connect(button, &QToolButton::clicked, state.window, [character] { typeSymbol(character); });
}

// Right of the main window, where it covers no text; on a screen without room there, in the program's corner.
void placeAtFirst() {
    if (state.placed) return;
    state.placed = true;
    constexpr int gap = 8;
    const QPoint corner = programEdit->mapToGlobal(QPoint(programEdit->width(), gap));
    const QPoint beside(mainWindow->frameGeometry().right() + gap, corner.y());
    const bool hasRoom = beside.x() + state.window->width() + gap < mainWindow->screen()->availableGeometry().right();
    state.window->move(hasRoom ? beside : corner - QPoint(state.window->width() + 3 * gap, 0));
}

}  // namespace

void makeSymbolsWindow() {
    state.window = new QWidget(mainWindow, Qt::Tool | Qt::WindowDoesNotAcceptFocus | Qt::CustomizeWindowHint |
                                               Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    state.window->setObjectName(QStringLiteral("symbolsWindow"));
    state.window->setWindowTitle(textOf(Text::symbolsTitle));
    state.window->setAttribute(Qt::WA_ShowWithoutActivating);
    state.window->setFocusPolicy(Qt::NoFocus);
    state.window->setFixedSize(2 * firstPlace + columns * grownWhole(buttonSize),
                               2 * firstPlace + rows * grownWhole(buttonSize));
    for (int row = 0; row < rows; row++)
        for (int column = 0; column < columns; column++) addButton(row, column);
    hookEvents(state.window, windowEvent);
}

void forgetSymbolsWindow() { state = {}; }

void showSymbols() {
    if (!state.wanted || programEdit->isReadOnly()) return;
    placeAtFirst();
    showUnminimised(state.window);
}

void hideSymbols() {
    if (state.window != nullptr) state.window->hide();
}

QRect symbolsPlace() {
    return state.window != nullptr && state.window->isVisible() ? state.window->frameGeometry() : QRect();
}

bool symbolsWanted() { return state.wanted; }

void setSymbolsWanted(bool isWanted) {
    state.wanted = isWanted;
    if (state.wanted && programEdit->isVisible()) {
        showSymbols();
    } else {
        hideSymbols();
    }
}

}  // namespace numalink
