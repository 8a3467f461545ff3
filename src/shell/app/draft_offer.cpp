#include "shell/app/draft_offer.h"

#include <QMainWindow>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "shell/editor/program_drafts.h"
#include "shell/editor/program_view.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/tree_refresh.h"
#include "shell/tree/selection.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

enum class DraftAnswer { open, remove, later };

DraftAnswer askDraft(const Draft &draft) {
    QMessageBox box(QMessageBox::Question, boxTitle(false), textOf(Text::draftFound, {draft.name.toStdString()}),
                    QMessageBox::NoButton, mainWindow);
    box.setTextFormat(Qt::PlainText);
    QPushButton *open = box.addButton(textOf(Text::draftOpen), QMessageBox::AcceptRole);
    const QPushButton *remove = box.addButton(textOf(Text::draftDelete), QMessageBox::DestructiveRole);
    QPushButton *later = box.addButton(textOf(Text::draftLater), QMessageBox::RejectRole);
    box.setDefaultButton(open);
    box.setEscapeButton(later);
    runDialog(box);
    if (box.clickedButton() == open) return DraftAnswer::open;
    return box.clickedButton() == remove ? DraftAnswer::remove : DraftAnswer::later;
}

// The draft's item, or an empty program in its place.
ItemId itemFor(const Draft &draft) {
    const std::optional<ItemEntry> entry = storeReadEntry(draft.id);
    const std::string name = calculatorName(draft.name.toStdString());
    if (entry && isTextKind(entry->kind) && entry->name == name) return draft.id;
    NewItem item;
    item.kind = draft.kind;
    item.parent = storeStandardFolder(standardFolderOfKind(draft.kind));
    item.name = storeFreeName(name, item.parent, item.kind);
    item.head = encodeProgramInfo({.imageLength = 1, .name = item.name, .password = {}});
    item.data = {':', 0xFF};
    item.whenTaken = NameTaken::nextFreeName;
    const ItemId id = storeAddItem(item);
    refreshTree();
    return id;
}

bool openInView(const Draft &draft) {
    const ItemId id = itemFor(draft);
    if (id == noItem || !selectItem(id) || viewItemId != id) return false;
    takeDraft(draft);
    replaceProgramText(draft.text);
    programEdit->setFocus();
    return true;
}

}  // namespace

void offerDrafts() {
    releaseDraft();
    for (int number = 1; number <= draftLimit; number++) {
        const std::optional<Draft> draft = readDraft(number);
        if (!draft) continue;
        switch (askDraft(*draft)) {
            case DraftAnswer::open:
                if (openInView(*draft)) return;
                break;
            case DraftAnswer::remove:
                removeDraft(*draft);
                break;
            case DraftAnswer::later:
                break;
        }
    }
}

}  // namespace numalink
