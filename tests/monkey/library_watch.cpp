#include "monkey/library_watch.h"

#include <QApplication>
#include <QTest>
#include <QTreeWidget>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "monkey/action_log.h"
#include "shell/app/start_up.h"
#include "shell/editor/program_view.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/label_edit.h"
#include "shell/tree/tree_mouse.h"
#include "shell/tree/tree_order.h"

#include "store/care/library_check.h"
#include "store/item_store.h"

namespace monkey {

using namespace numalink;

namespace {

constexpr int patience = 30000;  // milliseconds

bool refreshPostponed() {
    return treeView == nullptr || shuttingDown() || labelEditRunning() || dragRunning() ||
           QApplication::activePopupWidget() != nullptr || QApplication::activeModalWidget() != nullptr;
}

int entriesBelow(const QTreeWidgetItem *entry) {
    int count = entry->childCount();
    for (int i = 0; i < entry->childCount(); i++) count += entriesBelow(entry->child(i));
    return count;
}

// What is wrong with the tree, "" when nothing is.
std::string treeFault() {
    const std::vector<ItemEntry> items = storeListItems();
    const TreeContent content = treeContent(items, treeRanks(items));
    QTreeWidgetItem *root = treeView->invisibleRootItem();
    std::map<ItemId, int> places;
    for (const TreeEntry &entry : content.entries) {
        QTreeWidgetItem *shown = treeEntryOf(entry.id);
        if (shown == nullptr) return "not shown: " + std::to_string(entry.id) + " " + entry.name;
        const QTreeWidgetItem *holder = entry.shownUnder == rootId ? root : treeEntryOf(entry.shownUnder);
        QTreeWidgetItem *parent = shown->parent() != nullptr ? shown->parent() : root;
        if (parent != holder || parent->indexOfChild(shown) != places[entry.shownUnder]++)
            return "elsewhere: " + std::to_string(entry.id) + " " + entry.name;
        if (shown->text(0) != nameToQt(entry.name)) return "another name: " + std::to_string(entry.id);
    }
    if (entriesBelow(root) != static_cast<int>(content.entries.size())) return "shown, and no item";
    if (viewItemId != noItem && !storeReadEntry(viewItemId) && !programChanged()) return "on view, and no item";
    return {};
}

}  // namespace

void checkTree() {
    std::string fault;
    const bool right = QTest::qWaitFor([&] { return refreshPostponed() || (fault = treeFault()).empty(); }, patience);
    if (!right && treeView != nullptr) fail("The tree doesn't show the library: %s", fault.c_str());
}

void checkFile(const std::string &copyFolder) {
    if (!storeIsOpen() || shuttingDown()) return;
    std::filesystem::create_directory(copyFolder);
    if (!storeCopyTo(copyFolder + "storage.dat")) fail("No copy of the library");
    const std::string program = QCoreApplication::applicationDirPath().toStdString() + "/numalink-cli";
    const std::string command = program + " check " + copyFolder + " > /dev/null";
    // NOLINTNEXTLINE(cert-env33-c): a program of ours in a folder of ours
    if (std::system(command.c_str()) != 0) fail("The library's file is damaged");
}

void checkWindowsGone() {
    if (storeIsOpen()) fail("The library is open after the end");
    if (QApplication::activeModalWidget() != nullptr) fail("A dialog is open after the end");
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        if (window->isVisible()) {
            fail("A window is open after the end: %s %s", window->metaObject()->className(),
                 qPrintable(window->windowTitle()));
        }
    }
}

void checkClosedLibrary() {
    const LibraryCheck check = checkLibrary(false);
    if (check.outcome != CheckOutcome::checked || check.damage != 0 || check.interrupted)
        fail("The closed library is damaged: outcome %d, %u places", static_cast<int>(check.outcome), check.damage);
}

}  // namespace monkey
