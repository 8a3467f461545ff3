#include "shell/views/item_views.h"

#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QTreeWidget>
#include <algorithm>
#include <utility>

#include "calculator/charset.h"
#include "drawing/item_picture.h"
#include "drawing/matrix_picture.h"
#include "platform/thread_role.h"
#include "shell/editor/edit_menu.h"
#include "shell/editor/program_status.h"
#include "shell/editor/program_store.h"
#include "shell/editor/program_view.h"
#include "shell/editor/symbols_window.h"
#include "shell/parts/command_states.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/kind_looks.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/views/surface_view.h"
#include "store/item_store.h"
#include "telling/tell_user.h"
#include "text/token_table.h"

namespace numalink {

namespace {

MatrixValues matrixOnView;
PickedCell picked;
std::string matrixInfo;  // the status line of the matrix on view, without its picked cell

void showProgram(const StoredItem &item) {
    statusLine(StatusPart::item, Text::openingProgram);
    openProgram(item.id, item.data);
    takeOpenedProgram(item);
    lineNumberEdit->show();
    programEdit->show();
    showSymbols();
    commandStatesChanged();
    if (tokenCount() == 0) tellUser(Text::withoutTable);
}

// Places of a cell in the table, in dots.
void scrollToPicked() {
    constexpr int columnWidth = 28, rowHeight = 8, headWidth = 18, headHeight = 9;
    const int x = picked.column == 1 ? 0 : (picked.column - 1) * columnWidth + headWidth;
    const int y = picked.row == 1 ? 0 : (picked.row - 1) * rowHeight + headHeight;
    showSurfacePart(x, y, columnWidth + (picked.column == 1 ? headWidth : 0),
                    rowHeight + (picked.row == 1 ? headHeight : 0));
}

std::string pickedValue() {
    const std::size_t place =
        static_cast<std::size_t>(picked.row - 1) * static_cast<std::size_t>(matrixOnView.columns) +
        static_cast<std::size_t>(picked.column - 1);
    if (place >= matrixOnView.values.size()) return {};
    return utf8FromCalculator(matrixPickedText(matrixOnView.values[place]));
}

// The value below a large table is out of sight: the status bar has it too.
std::string pickedInfo() {
    const std::string value = pickedValue();
    if (value.empty()) return {};
    return "; " + std::to_string(picked.row) + ", " + std::to_string(picked.column) + ": " + value;
}

void describeDrawn() {
    const std::optional<ItemEntry> item = storeReadEntry(viewItemId);
    if (!item) return;
    const std::string value = isValuesKind(item->kind) ? pickedValue() : std::string();
    const QString cell =
        value.empty() ? QString()
                      : textOf(Text::pickedCell, {std::to_string(picked.row), std::to_string(picked.column), value});
    describeSurface(spokenName(item->name, item->kind), cell);
}

bool matrixKeys(const QKeyEvent &key) {
    const PickedCell before = picked;
    switch (key.key()) {
        case Qt::Key_Left:
            picked.column--;
            break;
        case Qt::Key_Right:
            picked.column++;
            break;
        case Qt::Key_Up:
            picked.row--;
            break;
        case Qt::Key_Down:
            picked.row++;
            break;
        default:
            return false;
    }
    picked.column = std::clamp(picked.column, 1, std::max(1, matrixOnView.columns));
    picked.row = std::clamp(picked.row, 1, std::max(1, matrixOnView.rows));
    if (picked.row != before.row || picked.column != before.column) {
        redrawSurface();
        describeDrawn();
        userInterface.statusText(StatusPart::item, Text::size, matrixInfo + pickedInfo());
    }
    scrollToPicked();
    return true;
}

Surface partOfMatrix(int left, int top, int width, int height) {
    return matrixPart(matrixOnView, picked, left, top, {width, height});
}

void showDrawn(const StoredItem &item) {
    if (!isValuesKind(item.kind)) {
        showSurface(itemSurface(item.kind, item.head, item.data));
        return;
    }
    matrixOnView = matrixValuesOf(item.head, item.data);
    picked = {};
    const PictureSize size = matrixSize(matrixOnView);
    showSurfaceInParts(size.width, size.height, partOfMatrix, matrixKeys);
}

std::optional<Text> faultText(PictureFault fault) {
    switch (fault) {
        case PictureFault::tooLarge:
            return Text::viewTooLarge;
        case PictureFault::unknownColor:
            return Text::viewUnknownColor;
        case PictureFault::endsEarly:
            return Text::viewEndsEarly;
        case PictureFault::none:
            break;
    }
    return std::nullopt;
}

void infoToStatus(const StoredItem &item) {
    if (isTextKind(item.kind)) return programToStatus(item);
    std::string line = wording(Text::size, {std::to_string(item.dataSize)});
    if (const auto fault = faultText(pictureFault(item.kind, item.head, item.data))) line += "; " + wording(*fault);
    if (isValuesKind(item.kind)) {
        matrixInfo = line;
        line += pickedInfo();
    }
    userInterface.statusText(StatusPart::item, Text::size, line);
}

// What was discarded isn't come back to.
void keepText() {
    StoredItem item;
    if (isTextKind(viewKind) && !programChanged() && storeReadEntry(viewItemId) && storeReadItem(viewItemId, item))
        keepProgram(viewItemId, item.data);
}

void closeView() {
    keepText();
    userInterface.statusText(StatusPart::item, Text::none, "");
    hideSymbols();
    programEdit->hide();
    lineNumberEdit->hide();
    hideSurface();
    viewLeft();
    matrixOnView = {};
    picked = {};
    forgetOpenedProgram();
    viewKind = kind::none;
    viewItemId = noItem;
    commandStatesChanged();
}

bool leave(Leaving how) {
    assertRole(ThreadRole::graphical);
    if (isTextKind(viewKind) && !leaveProgram(how) && how != Leaving::atOnce) return false;
    closeView();
    return true;
}

bool escapeToTree(QWidget *, QEvent *event) {
    if (event->type() != QEvent::KeyPress || !treeView->isVisible()) return false;
    const auto &key = *static_cast<QKeyEvent *>(event);
    if (key.key() != Qt::Key_Escape || key.modifiers() != Qt::NoModifier) return false;
    treeView->setFocus();
    return true;
}

}  // namespace

void connectViews() {
    connectProgramView();
    connectEditMenu();
    makeSurfaceView();
    hookEvents(programEdit, escapeToTree);
    hookEvents(containerWindow->focusProxy(), escapeToTree);
    makeSymbolsWindow();
}

void forgetViews() {
    viewKind = kind::none;
    viewItemId = noItem;
    forgetProgramView();
    forgetSurfaceView();
    forgetSymbolsWindow();
    forgetOpenedProgram();
}

int openSelectedItem() {
    assertRole(ThreadRole::graphical);
    const std::optional<ItemEntry> entry = storeReadEntry(selectedItemId());
    if (!entry || isFolderKind(entry->kind)) return entry ? 1 : 0;
    userInterface.waitCursor(true);
    StoredItem item;
    const bool read = storeReadItem(entry->id, item);
    if (read) {
        viewKind = item.kind;
        viewItemId = item.id;
    }
    userInterface.waitCursor(false);
    if (!read) return 1;
    if (isTextKind(item.kind)) showProgram(item);
    if (isDrawnKind(item.kind)) {
        showDrawn(item);
        describeDrawn();
    }
    infoToStatus(item);
    return 1;
}

bool reopenView() {
    const bool hadFocus = mainWindow->focusWidget() == programEdit;
    const ItemId id = viewItemId;
    const int caret = programEdit->textCursor().position();
    if (!leaveCurrentView()) return false;
    openSelectedItem();
    if (viewItemId != id || !isTextKind(viewKind)) return true;
    putCaretAt(caret);
    if (hadFocus) programEdit->setFocus();
    return true;
}

void focusView() {
    if (programEdit->isVisible()) programEdit->setFocus();
    if (containerWindow->isVisible()) containerWindow->setFocus();
}

bool leaveCurrentView() { return leave(Leaving::view); }
bool leaveViewAtEnd() { return leave(Leaving::program); }
bool leaveViewAtOnce() { return leave(Leaving::atOnce); }

void dropCurrentView() { closeView(); }

void viewedItemGone() {
    if (!isTextKind(viewKind) || !programChanged()) closeView();
}

}  // namespace numalink
