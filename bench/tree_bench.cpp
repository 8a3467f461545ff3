// The tree of a library of 2,000 items: processor time of opening, listing and arranging it, and of the tree on screen
// following a change, beside a plain sort of as many names. The disk is one in memory.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMainWindow>
#include <QTreeWidget>
#include <algorithm>
#include <ctime>
#include <map>

#include "platform/program_folder.h"
#include "platform/thread_role.h"
#include "shell/commands/menus.h"
#include "shell/editor/program_view.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/tree_refresh.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/tree_mouse.h"
#include "shell/tree/tree_rules.h"
#include "support/simulated_disk.h"

namespace {

using namespace numalink;

constexpr int folderTotal = 40, itemsPerFolder = 48;  // and the library's own folders

// Names of which no two orders agree: the change from one turn to the next moves nearly every entry.
std::string nameOf(int number, int turn) {
    const int mixed = (number * 7919 + turn * 104729 + number * turn) % 100003;
    return "N" + std::to_string(100003 + mixed).append(std::to_string(number));
}

struct FullLibrary {
    FullLibrary() {
        threadRole = ThreadRole::graphical;
        setLibraryFolder("/library/");
        storeOpen();
        std::vector<NewItem> items;
        for (int folder = 0; folder < folderTotal; folder++) {
            const ItemId parent = storeResolvePath("/F" + std::to_string(folder) + "/", true);
            for (int number = 0; number < itemsPerFolder; number++) items.push_back(matrix(number, parent));
        }
        storeAddItems(items);
    }
    ~FullLibrary() { storeClose(); }

    static NewItem matrix(int number, ItemId parent) {
        return {.name = nameOf(number, 0), .parent = parent, .kind = kind::matrix, .head = Bytes(50, 1), .data = {}};
    }
};

// Processor time: what else the machine does is no part of it.
double secondsOf(const auto &work) {
    const std::clock_t start = std::clock();
    work();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

double plainSort() {
    return secondsOf([] {
        std::map<std::string, int> sorted;
        for (int number = 0; number < folderTotal * itemsPerFolder; number++) sorted[nameOf(number, 1)] = number;
        benchmark::DoNotOptimize(sorted.size());
    });
}

void report(benchmark::State &state, double work, double plain) {
    state.counters["ms"] = work * 1e3 / static_cast<double>(state.iterations());
    state.counters["ratio"] = work / plain;
}

void openListAndArrange(benchmark::State &state) {
    const SimulatedFiles disk(Steps::forgotten);
    const FullLibrary library;
    double work = 0;
    double plain = 0;
    for ([[maybe_unused]] auto _ : state) {
        work += secondsOf([&] {
            storeClose();
            storeOpen();
            if (treeContent(storeListItems()).entries.size() < std::size_t{folderTotal} * itemsPerFolder)
                state.SkipWithError("entries are missing");
        });
        plain += plainSort();
    }
    report(state, work, plain);
}

void refreshOnScreen(benchmark::State &state, bool moveAll) {
    const SimulatedFiles disk(Steps::forgotten);
    const FullLibrary library;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int argumentCount = 1;
    char name[] = "tree_bench";
    char *arguments[] = {name, nullptr};
    const QApplication application(argumentCount, arguments);
    makeMainWindow();
    buildMenus();
    makeClientWidgets();
    makeProgramEdit();
    mainWindow->show();
    connectTree();
    double work = 0;
    double plain = 0;
    int turn = 0;
    for ([[maybe_unused]] auto _ : state) {
        turn++;
        for (const ItemEntry &item : storeListItems())
            if (moveAll && item.kind == kind::matrix) storeRename(item.id, nameOf(static_cast<int>(item.id), turn));
        work += secondsOf(refreshTree);
        plain += plainSort();
    }
    report(state, work, plain);
    forgetMenus();
    forgetTree();
    destroyWidgets();
}

void refreshUnchanged(benchmark::State &state) { refreshOnScreen(state, false); }
void refreshAllMoved(benchmark::State &state) { refreshOnScreen(state, true); }

BENCHMARK(openListAndArrange)->Unit(benchmark::kMillisecond);
BENCHMARK(refreshUnchanged)->Unit(benchmark::kMillisecond);
BENCHMARK(refreshAllMoved)->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace
