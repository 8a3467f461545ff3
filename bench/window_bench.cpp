// The window with 2,000 items: from the process's start to the first painted tree, the memory it then keeps beside that
// of a bare window of Qt, and what a program that draws all the time costs the graphical thread. Each part in a process
// of its own; the library is made first.
#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <QEventLoop>
#include <QMainWindow>
#include <QTimer>
#include <QTreeWidget>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "calculator/program_info.h"
#include "platform/program_folder.h"
#include "settings/settings_store.h"
#include "shell/app/start_up.h"
#include "shell/parts/main_widgets.h"
#include "shell/run/emulator_window.h"
#include "shell/tree/selection.h"
#include "shell/views/item_views.h"
#include "store/item_store.h"
#include "text/program_bytes.h"
#include "text/token_table.h"

namespace {

using namespace numalink;

constexpr int folderTotal = 40, itemsPerFolder = 48;
constexpr int drawnMilliseconds = 3000;
constexpr std::size_t headSize = 50, dataSize = 144;  // of a matrix of 3 by 3
constexpr char drawing[] =
    "\\ViewWindow 0,127,0,0,63,0:\\Lbl 1:\\For 1\\->I \\To 60:\\PxlChg I,2I:\\Plot I,I:\\Next:\\Goto1";

std::string folder() { return std::filesystem::temp_directory_path() / "numalink-window-bench/"; }

long residentKilobytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) return std::strtol(line.c_str() + 6, nullptr, 10);
    }
    return 0;
}

double secondsOf(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

void addDrawing() {
    Bytes image = {':'};
    tokenTableLoad();
    tokensFromWords(drawing, image);
    image.push_back(0xFF);
    const ProgramInfo info{.imageLength = static_cast<std::uint32_t>(image.size()), .name = "DRAW", .password = {}};
    image.push_back(0);
    storeAddItem({.name = "DRAW", .kind = kind::program, .head = encodeProgramInfo(info), .data = image});
}

int makeLibrary() {
    std::filesystem::remove_all(folder());
    std::filesystem::create_directories(folder());
    setLibraryFolder(folder());
    if (!storeOpen()) return 1;
    std::vector<NewItem> items;
    for (int at = 0; at < folderTotal; at++) {
        const ItemId parent = storeResolvePath("/F" + std::to_string(at) + "/", true);
        for (int number = 0; number < itemsPerFolder; number++) {
            items.push_back({.name = "N" + std::to_string(number),
                             .parent = parent,
                             .kind = kind::matrix,
                             .head = Bytes(headSize, 1),
                             .data = Bytes(dataSize, 1)});
        }
    }
    storeAddItems(items);
    addDrawing();
    storeClose();
    return 0;
}

int showBareWindow(QApplication &application) {
    QMainWindow window;
    window.show();
    application.processEvents();
    std::printf("a bare window of Qt: %ld MB resident\n", residentKilobytes() / 1024);
    return 0;
}

int showTree(const QApplication &, double started) {
    setLibraryFolder(folder());
    if (!startUp()) return 1;
    mainWindow->repaint();
    treeView->viewport()->repaint();
    std::printf("first paint with %d entries at the top: %.0f ms from the start, %.0f ms of the processor\n",
                treeView->topLevelItemCount(), 1000 * (secondsOf(CLOCK_MONOTONIC) - started),
                1000 * secondsOf(CLOCK_PROCESS_CPUTIME_ID));
    QApplication::processEvents();
    std::printf("the window with its tree: %ld MB resident\n", residentKilobytes() / 1024);
    shutDown();
    tearDown();
    return 0;
}

int draw(const QApplication &) {
    setLibraryFolder(folder());
    if (!startUp()) return 1;
    settingsSetInt(setting::fullSpeed, 1);
    selectItem(storeFindItem("DRAW", rootId));
    emulatorToggle();
    const double before = secondsOf(CLOCK_THREAD_CPUTIME_ID), clock = secondsOf(CLOCK_MONOTONIC);
    QEventLoop loop;  // processEvents with a time doesn't sleep between events
    QTimer::singleShot(drawnMilliseconds, &loop, &QEventLoop::quit);
    loop.exec();
    std::printf("a program that draws all the time: %.1f %% of a core for the graphical thread\n",
                100 * (secondsOf(CLOCK_THREAD_CPUTIME_ID) - before) / (secondsOf(CLOCK_MONOTONIC) - clock));
    emulatorToggle();
    shutDown();
    tearDown();
    return 0;
}

int inProcess(const char *self, const char *part) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        execl(self, self, part, nullptr);
        _exit(2);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

}  // namespace

int main(int argc, char **argv) {
    const double started = secondsOf(CLOCK_MONOTONIC);
    if (argc < 2) {
        int status = 0;
        for (const char *part : {"library", "bare", "tree", "draw"}) status |= inProcess("/proc/self/exe", part);
        std::filesystem::remove_all(folder());
        return status == 0 ? 0 : 1;
    }
    if (std::strcmp(argv[1], "library") == 0) return makeLibrary();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (std::strcmp(argv[1], "bare") == 0) return showBareWindow(application);
    return std::strcmp(argv[1], "tree") == 0 ? showTree(application, started) : draw(application);
}
