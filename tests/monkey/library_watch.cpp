#include "monkey/library_watch.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <QTest>
#include <QTreeWidget>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "monkey/action_log.h"
#include "platform/program_folder.h"
#include "shell/item_rules.h"
#include "shell/item_tree.h"
#include "shell/item_views.h"
#include "shell/program_view.h"
#include "shell/shell_texts.h"
#include "shell/shell_widgets.h"
#include "shell/start_up.h"
#include "shell/tree_events.h"
#include "store/item_store.h"
#include "store/library_check.h"

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
    const TreeContent content = treeContent(storeListItems());
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

std::string lineOf(const ItemEntry &item) {
    std::string line;
    for (const std::uint32_t number :
         {item.id, item.parent, static_cast<std::uint32_t>(item.kind), item.flags, item.headSize, item.dataSize})
        line += std::to_string(number) + " ";
    for (const char letter : item.name) line += std::to_string(static_cast<unsigned char>(letter)) + ",";
    return line + "\n";
}

// Without the temporary folder, which each opening empties.
std::string linesOfStore() {
    const std::vector<ItemEntry> items = storeListItems();
    std::set<ItemId> temporary;
    for (std::size_t before = 1; before != temporary.size();) {
        before = temporary.size();
        for (const ItemEntry &item : items)
            if (item.kind == kind::temporaryFolder || temporary.contains(item.parent)) temporary.insert(item.id);
    }
    std::string lines;
    for (const ItemEntry &item : items)
        if (!temporary.contains(item.id)) lines += lineOf(item);
    return lines;
}

// Not by fork: the thread sanitizer doesn't bear it in a program of several threads.
std::pair<int, std::string> readByItself(const std::string &copyFolder) {
    std::string self = std::filesystem::read_symlink("/proc/self/exe"), option = "--list", folder = copyFolder;
    char *const arguments[] = {self.data(), option.data(), folder.data(), nullptr};
    pid_t child = 0;
    int status = -1;
    if (posix_spawn(&child, self.c_str(), nullptr, nullptr, arguments, environ) == 0) waitpid(child, &status, 0);
    std::ifstream file(copyFolder + "list");
    return {status, {std::istreambuf_iterator<char>(file), {}}};
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
    std::string lines;
    do {  // the link may store meanwhile
        lines = linesOfStore();
        if (!storeCopyTo(copyFolder + "storage.dat")) fail("No copy of the library");
    } while (lines != linesOfStore());
    const auto [ended, read] = readByItself(copyFolder);
    if (ended != 0) fail("The library's file is damaged");
    if (read != lines) fail("The library's file holds\n%sand the store\n%s", read.c_str(), lines.c_str());
}

void checkWindowsGone() {
    if (storeIsOpen()) fail("The library is open after the end");
    if (QApplication::activeModalWidget() != nullptr) fail("A dialog is open after the end");
    for (const QWidget *window : QApplication::topLevelWidgets())
        if (window->isVisible())
            fail("A window is open after the end: %s %s", window->metaObject()->className(),
                 qPrintable(window->windowTitle()));
}

void checkClosedLibrary() {
    const LibraryCheck check = checkLibrary(false);
    if (check.outcome != CheckOutcome::checked || check.damage != 0 || check.interrupted)
        fail("The closed library is damaged: outcome %d, %u places", static_cast<int>(check.outcome), check.damage);
}

int listLibrary(const std::string &folder) {
    setLibraryFolder(folder);
    checkClosedLibrary();
    if (!storeOpen()) return 1;
    std::ofstream file(folder + "list");
    file << linesOfStore();
    storeClose();
    return file.flush() ? 0 : 1;
}

}  // namespace monkey
