#include "shell/views/item_views.h"

#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QTreeWidget>

#include "drawing/item_picture.h"
#include "platform/thread_role.h"
#include "shell/editor/completion_list.h"
#include "shell/editor/edit_menu.h"
#include "shell/editor/find_dialog.h"
#include "shell/editor/language_tips.h"
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
#include "shell/views/matrix_view.h"
#include "shell/views/surface_view.h"
#include "store/item_store.h"
#include "telling/tell_user.h"
#include "text/token_table.h"

namespace numalink {

namespace {

void showProgram(const StoredItem &item) {
    statusLine(StatusPart::item, Text::openingProgram);
    openProgram(item.id, item.data);
    takeOpenedProgram(item);
    lineNumberEdit->show();
    programEdit->show();
    showSymbols();
    commandStatesChanged();
    programOpened();
    if (tokenCount() == 0) tellUser(Text::withoutTable);
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

std::string sizeLine(const StoredItem &item) {
    std::string line = wording(Text::size, {std::to_string(item.dataSize)});
    if (const auto fault = faultText(pictureFault(item.kind, item.head, item.data))) line += "; " + wording(*fault);
    return line;
}

void showItem(const StoredItem &item) {
    if (isTextKind(item.kind)) {
        showProgram(item);
        programToStatus(item);
    } else if (isValuesKind(item.kind)) {
        showMatrix(item, sizeLine(item));
    } else {
        if (isDrawnKind(item.kind)) {
            showSurface(itemSurface(item.kind, item.head, item.data));
            describeSurface(spokenName(item.name, item.kind), {});
        }
        userInterface.statusText(StatusPart::item, Text::size, sizeLine(item));
    }
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
    forgetMatrixView();
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
    if (completionShown() || signatureShown()) return false;  // they close
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
    forgetFind();
    forgetSurfaceView();
    forgetMatrixView();
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
    showItem(item);
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
