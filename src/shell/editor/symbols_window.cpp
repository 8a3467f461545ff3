#include "shell/editor/symbols_window.h"

#include <QCloseEvent>
#include <QMainWindow>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScreen>
#include <QTimer>
#include <QToolButton>
#include <cstdint>
#include <optional>

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
    std::optional<QPoint> placed;  // where it was put; the user may have moved it from there
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

// Beside the main window, where it covers no text; on a screen without room there, in the program's corner.
QPoint freePlace() {
    constexpr int gap = 8;
    const QRect screen = mainWindow->screen()->availableGeometry(), main = mainWindow->frameGeometry();
    const QPoint corner = programEdit->mapToGlobal(QPoint(programEdit->width(), gap));
    const int width = state.window->width() + gap;
    if (main.right() + gap + width < screen.right()) return {main.right() + gap, corner.y()};
    if (main.left() - gap - width > screen.left()) return {main.left() - gap - width, corner.y()};
    return corner - QPoint(state.window->width() + 3 * gap, 0);
}

void place() {
    state.placed = freePlace();
    state.window->move(*state.placed);
}

// The main window has changed its size, or what stands beside the program has: the symbols go along, unless the user
// has put them elsewhere.
void follow() {
    constexpr int frameDiffers = 40;  // pixels by which window managers shift what they frame
    if (state.window == nullptr || !state.window->isVisible() || !state.placed) return;
    if ((state.window->pos() - *state.placed).manhattanLength() <= frameDiffers) place();
}

bool programResized(QWidget *, QEvent *event) {
    if (event->type() == QEvent::Resize) QTimer::singleShot(0, state.window, follow);
    return false;
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
    hookEvents(programEdit, programResized);
}

void forgetSymbolsWindow() { state = {}; }

void showSymbols() {
    if (!state.wanted || programEdit->isReadOnly()) return;
    if (!state.placed) place();
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
