#include "shell/commands/command_handler.h"

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMainWindow>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>

#include "calculator/program_info.h"
#include "exchange/import/import.h"
#include "exchange/import/import_formats.h"
#include "platform/thread_role.h"
#include "shell/app/start_up.h"
#include "shell/commands/command_table.h"
#include "shell/commands/menus.h"
#include "shell/dialogs/about_box.h"
#include "shell/editor/program_store.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/delete_question.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/label_edit.h"
#include "shell/views/item_views.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

bool treeVisible = true;

namespace {

QString lastFolder;  // of the file dialog, for this run
QStringList filesToImport;
bool importing = false;
constexpr int importAgainMilliseconds = 100;

// An import has left the view. What it told in the status bar stays.
void showAfterImport() {
    const std::string told = itemField->text().toStdString();
    showSelectedAgain();
    if (!told.empty()) userInterface.statusText(StatusPart::item, Text::none, told);
}

// One file after the other, and none while a box or dialog is open: an import empties the temporary folder, which the
// dialog of another import may be asking about.
void importWaitingFiles() {
    if (importing || filesToImport.isEmpty()) return;
    if (QApplication::activeModalWidget() != nullptr) {
        QTimer::singleShot(importAgainMilliseconds, mainWindow, importWaitingFiles);
        return;
    }
    importing = true;
    while (!filesToImport.isEmpty() && !shuttingDown()) {
        const QString path = filesToImport.takeFirst();
        importFile(QFile::encodeName(path).toStdString(), importBaseName(path.toStdString()));
    }
    importing = false;
    filesToImport.clear();
    refreshTree();
    if (!shuttingDown()) showAfterImport();
}

int runRow(const Command &row) {
    if (!row.working || row.handler == nullptr) return 0;
    if (!finishLabelEdit()) return 0;
    if (row.needsSelection && selectedItemId() == noItem) return 0;
    if (row.storesFirst && !storeProgramFirst()) return 0;
    return row.handler();
}

}  // namespace

int handleCommand(int id) {
    assertRole(ThreadRole::graphical);
    if (id == command::openView) return openSelectedItem();
    if (id == command::deleteKey) id = command::remove;
    const Command *row = findCommand(id);
    return row == nullptr ? 0 : runRow(*row);
}

int openFiles() {
    QStringList bothCases;
    for (const ImportFormat &format : importFormats()) {
        for (const char *ending : format.endings) {
            const QString pattern = QStringLiteral("*.") + QLatin1String(ending);
            bothCases << pattern << pattern.toUpper();
        }
    }
    const QString filter = textOf(Text::filterImportable) + QStringLiteral(" (") + bothCases.join(QLatin1Char(' ')) +
                           QStringLiteral(");;") + textOf(Text::filterAllFiles) + QStringLiteral(" (*)");
    const QStringList chosen = QFileDialog::getOpenFileNames(mainWindow, QString(), lastFolder, filter);
    if (chosen.isEmpty()) return 1;
    lastFolder = QFileInfo(chosen.first()).absolutePath();
    importDropped(chosen);
    return 1;
}

void importDropped(const QStringList &paths) {
    filesToImport += paths;
    importWaitingFiles();
}

int exitProgram() {
    shutDown();
    return 1;
}

int newFolder() {
    NewItem folder;
    folder.name = storeFreeName(calculatorName(wording(Text::newItemName)), rootId, kind::folder);
    folder.kind = kind::folder;
    folder.flags = folderOpenFlag;
    folder.whenTaken = NameTaken::nextFreeName;
    const ItemId id = storeAddItem(folder);
    if (id == noItem) return 1;
    refreshTree();
    startLabelEdit(id);
    return 1;
}

namespace {

// The selected item if that is a folder that is still there, otherwise the folder of programs, made if need be.
ItemId folderForProgram() {
    const std::optional<ItemEntry> selected = storeReadEntry(selectedItemId());
    return selected && isFolderKind(selected->kind) ? selected->id : storeStandardFolder(kind::programsFolder);
}

}  // namespace

int newProgram() {
    const ItemId parent = folderForProgram();
    if (parent == noItem || !leaveCurrentView()) return 1;
    NewItem program;
    program.name =
        storeFreeName(calculatorName(wording(Text::newItemName)).substr(0, programNameLimit), parent, kind::program);
    program.parent = parent;
    program.kind = kind::program;
    program.head = encodeProgramInfo({.imageLength = 1, .name = program.name, .password = {}});
    program.data = {':', 0xFF};
    program.whenTaken = NameTaken::nextFreeName;
    const ItemId id = storeAddItem(program);
    if (id == noItem) {
        showSelectedAgain();
        return 1;
    }
    refreshTree();
    if (QTreeWidgetItem *folder = treeEntryOf(parent)) folder->setExpanded(true);
    selectItem(id);
    startLabelEdit(id, AfterEnter::view);
    return 1;
}

int renameSelectedItem() {
    startLabelEdit(selectedItemId());
    return 1;
}

int deleteWithQuestion() {
    const std::optional<ItemEntry> item = storeReadEntry(selectedItemId());
    if (!item || !askDelete(*item)) return 1;
    if (viewItemId != item->id && !leaveCurrentView()) return 1;
    QTreeWidgetItem *entry = treeEntryOf(item->id);
    const QTreeWidgetItem *next = nullptr;
    if (entry != nullptr) {
        const QTreeWidgetItem *parent = entry->parent() != nullptr ? entry->parent() : treeView->invisibleRootItem();
        const int place = parent->indexOfChild(entry);
        next = place + 1 < parent->childCount() ? parent->child(place + 1) : parent->child(place - 1);
        if (next == nullptr) next = entry->parent();
    }
    const ItemId follower = next == nullptr ? noItem : next->data(0, Qt::UserRole).toUInt();
    if (!storeDelete(item->id)) {
        showSelectedAgain();
        return 1;
    }
    if (viewItemId == item->id) dropCurrentView();
    refreshTree();
    selectItem(follower);
    treeView->setFocus();
    return 1;
}

int refreshView() {
    reopenView();
    return 1;
}

int toggleTree() {
    treeVisible = !treeVisible;
    applyLayout();
    treeToggleButton->setText(treeVisible ? QStringLiteral("<") : QStringLiteral(">"));
    commandAction(command::hideTree)->setChecked(!treeVisible);
    return 1;
}

int showAbout() {
    showAboutBox();
    return 1;
}

}  // namespace numalink
