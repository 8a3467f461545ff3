#include "monkey/library_watch.h"

#include <QApplication>
#include <QProcess>
#include <QTest>
#include <QTreeWidget>
#include <filesystem>
#include <map>

#include "monkey/action_log.h"
#include "platform/program_folder.h"
#include "shell/item_rules.h"
#include "shell/item_tree.h"
#include "shell/item_views.h"
#include "shell/program_view.h"
#include "shell/shell_texts.h"
#include "shell/shell_widgets.h"
#include "shell/tree_events.h"
#include "store/item_store.h"
#include "store/library_check.h"

namespace monkey {

using namespace numalink;

namespace {

constexpr int patience = 30000;  // milliseconds

bool refreshPostponed() {
    return treeView == nullptr || labelEditRunning() || dragRunning() || QApplication::activePopupWidget() != nullptr ||
           QApplication::activeModalWidget() != nullptr;
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

std::string linesOfStore() {
    std::string lines;
    for (const ItemEntry &item : storeListItems()) lines += lineOf(item);
    return lines;
}

}  // namespace

void checkTree() {
    std::string fault;
    const bool right = QTest::qWaitFor([&] { return refreshPostponed() || (fault = treeFault()).empty(); }, patience);
    if (!right && treeView != nullptr) fail("The tree doesn't show the library: %s", fault.c_str());
}

void checkFile(const std::string &copyFolder) {
    if (!storeIsOpen()) return;
    std::filesystem::create_directory(copyFolder);
    std::string lines;
    do {  // the link may store meanwhile
        lines = linesOfStore();
        if (!storeCopyTo(copyFolder + "storage.dat")) fail("No copy of the library");
    } while (lines != linesOfStore());
    QProcess reader;
    reader.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--list"), toQt(copyFolder)});
    if (!reader.waitForFinished(patience) || reader.exitCode() != 0)
        fail("The library's file is damaged: %s", reader.readAllStandardError().constData());
    const std::string read = reader.readAllStandardOutput().toStdString();
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
    std::fputs(linesOfStore().c_str(), stdout);
    storeClose();
    return 0;
}

}  // namespace monkey
