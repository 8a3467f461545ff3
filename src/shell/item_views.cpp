#include "shell/item_views.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <algorithm>

#include "calculator/program_info.h"
#include "platform/thread_role.h"
#include "settings/tell_user.h"
#include "shell/item_tree.h"
#include "shell/menus.h"
#include "shell/shell_texts.h"
#include "shell/shell_widgets.h"
#include "store/item_store.h"
#include "text/program_bytes.h"

namespace numalink {

ItemKind viewKind = kind::none;
ItemId viewItemId = noItem;

namespace {

void showProgram(const StoredItem &item) {
    statusLine(StatusPart::item, 21);
    programEdit->setPlainText(nameToQt(programPlainText(item.data)));
    programEdit->moveCursor(QTextCursor::Start);
    lineNumberEdit->show();
    programEdit->show();
    setEditMenuEnabled(true);
}

void infoToStatus(const ItemEntry &entry, const Bytes &head) {
    const std::string size = std::to_string(entry.dataSize);
    const std::optional<ProgramInfo> info = isTextKind(entry.kind) ? decodeProgramInfo(head) : std::nullopt;
    if (info && !info->password.empty()) {
        statusLine(StatusPart::item, 22, {size, utf8FromCalculator(info->password)});
    } else {
        statusLine(StatusPart::item, 23, {size});
    }
}

void closeView() {
    setEditMenuEnabled(false);
    statusLine(StatusPart::item, 0);
    for (QWidget *widget :
         {static_cast<QWidget *>(programEdit), static_cast<QWidget *>(lineNumberEdit), containerWindow})
        widget->hide();
    viewKind = kind::none;
    viewItemId = noItem;
}

}  // namespace

int openSelectedItem() {
    assertRole(ThreadRole::graphical);
    const std::optional<ItemEntry> entry = storeReadEntry(selectedItemId());
    if (!entry || isFolderKind(entry->kind)) return entry ? 1 : 0;
    userInterface.waitCursor(true);
    StoredItem item;
    const bool read = storeReadItem(entry->id, item);
    userInterface.waitCursor(false);
    if (!read) return 1;
    viewKind = item.kind;
    viewItemId = item.id;
    if (isTextKind(item.kind)) showProgram(item);
    infoToStatus(item, item.head);
    return 1;
}

bool leaveCurrentView() {
    assertRole(ThreadRole::graphical);
    closeView();
    return true;
}

void dropCurrentView() { closeView(); }

void itemInfoToStatus(ItemId id) {
    StoredItem item;
    if (storeReadItem(id, item)) infoToStatus(item, item.head);
}

}  // namespace numalink
