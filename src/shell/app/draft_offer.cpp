#include "shell/app/draft_offer.h"

#include <QMainWindow>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <optional>
#include <utility>
#include <vector>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "platform/event_log.h"
#include "platform/program_folder.h"
#include "shell/dialogs/report_dialog.h"
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

enum class DraftAnswer { open, remove, later, report };

// The events of a run that didn't end by itself, for as long as nobody was asked about them.
std::optional<std::vector<std::string>> crashed;

DraftAnswer askDraft(const Draft &draft) {
    const QString ahead = crashed ? textOf(Text::crashFound) + QStringLiteral("\n\n") : QString();
    QMessageBox box(QMessageBox::Question, boxTitle(false),
                    ahead + textOf(Text::draftFound, {draft.name.toStdString()}), QMessageBox::NoButton, mainWindow);
    box.setTextFormat(Qt::PlainText);
    QPushButton *report = crashed ? box.addButton(textOf(Text::crashReport), QMessageBox::HelpRole) : nullptr;
    QPushButton *open = box.addButton(textOf(Text::draftOpen), QMessageBox::AcceptRole);
    QPushButton *remove = box.addButton(textOf(Text::draftDelete), QMessageBox::DestructiveRole);
    QPushButton *later = box.addButton(textOf(Text::draftLater), QMessageBox::RejectRole);
    box.setDefaultButton(open);
    box.setEscapeButton(later);
    // Qt leaves a button out of what Tab reaches where roles stand in another order than their buttons.
    for (const auto &[one, next] : {std::pair(open, remove), std::pair(remove, later), std::pair(later, report)})
        if (next != nullptr) QWidget::setTabOrder(one, next);
    runDialog(box);
    if (report != nullptr && box.clickedButton() == report) return DraftAnswer::report;
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

void showCrash() {
    const std::vector<std::string> events = std::exchange(crashed, std::nullopt).value_or(std::vector<std::string>());
    showReportOf(events.empty() ? std::vector<std::string>{"none"} : events);
}

// Asked with the first draft; without one, alone.
void offerCrashReport() {
    if (!crashed) return;
    QMessageBox box(QMessageBox::Question, boxTitle(false), textOf(Text::crashFound), QMessageBox::NoButton,
                    mainWindow);
    box.setTextFormat(Qt::PlainText);
    const QPushButton *report = box.addButton(textOf(Text::crashReport), QMessageBox::AcceptRole);
    QPushButton *no = box.addButton(textOf(Text::crashNoReport), QMessageBox::RejectRole);
    box.setDefaultButton(no);
    box.setEscapeButton(no);
    runDialog(box);
    if (box.clickedButton() == report) return showCrash();
    crashed.reset();
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
        DraftAnswer answer = askDraft(*draft);
        if (answer == DraftAnswer::report) {
            showCrash();
            answer = askDraft(*draft);
        }
        crashed.reset();
        switch (answer) {
            case DraftAnswer::open:
                if (openInView(*draft)) return;
                break;
            case DraftAnswer::report:
            case DraftAnswer::remove:
                removeDraft(*draft);
                break;
            case DraftAnswer::later:
                break;
        }
    }
    offerCrashReport();
}

void keepEvents() {
    crashed.reset();
    if (storeIsReadOnly()) return;
    crashed = eventLogKeep(libraryFolder() + "running.log");
    if (crashed) noteEvent("the run before didn't end by itself");
    noteEvent("library open");
}

}  // namespace numalink
