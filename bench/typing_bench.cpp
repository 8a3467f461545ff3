// Typing at the end, in the middle and at the start of a program of 60,000 bytes, with highlighting on: the time of a
// key from its event to the painted view. Prints the 99th percentile and fails above 16 ms.
#include <QApplication>
#include <QKeyEvent>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>

#include "calculator/program_info.h"
#include "platform/program_folder.h"
#include "settings/settings_store.h"
#include "shell/app/start_up.h"
#include "shell/editor/program_view.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/tree_refresh.h"
#include "shell/tree/selection.h"
#include "shell/views/item_views.h"
#include "store/item_store.h"

namespace {

using namespace numalink;

constexpr std::size_t programSize = 60000;
constexpr int keysAtEachPlace = 400;
constexpr double limitMilliseconds = 16;

Bytes longProgram() {
    // NOLINTBEGIN(bugprone-suspicious-missing-comma): a line in pieces, so that each code ends where it does
    constexpr std::string_view lines[] = {"'SNAKE \xA9 MOVES\r",
                                          "\"SCORE\"?\x0E"
                                          "A\r",
                                          "\x7F\x40"
                                          "1\x0E"
                                          "B\x89"
                                          "12.5\x99"
                                          "C\xB9"
                                          "3\r",
                                          "\x81"
                                          "A\x89\x82"
                                          "B>0.5\x13"
                                          "D\x0C",
                                          "\xE2"
                                          "1\r\xEC"
                                          "1\r"};
    // NOLINTEND(bugprone-suspicious-missing-comma)
    Bytes image = {':'};
    for (std::size_t i = 0; image.size() < programSize; i++) {
        const std::string_view line = lines[i % std::size(lines)];
        image.insert(image.end(), line.begin(), line.end());
    }
    image.push_back(0xFF);
    return image;
}

// By the clock, and of the processor: a machine that has other work to do only changes the first.
struct KeyTime {
    double milliseconds;
    double processor;
};

KeyTime timeOfKey(char16_t character) {
    const std::clock_t ticks = std::clock();
    const auto start = std::chrono::steady_clock::now();
    QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(QChar(character)));
    QApplication::sendEvent(programEdit, &press);
    QApplication::processEvents();
    programEdit->viewport()->repaint();
    return {std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count(),
            1000.0 * static_cast<double>(std::clock() - ticks) / CLOCKS_PER_SEC};
}

std::vector<KeyTime> typeAround() {
    constexpr std::u16string_view typed = u"If A>1=>\"Score\"->B+2*3 For ";
    std::vector<KeyTime> times;
    for (const int tenths : {0, 5, 10}) {
        QTextCursor cursor = programEdit->textCursor();
        cursor.setPosition((programEdit->document()->characterCount() - 1) * tenths / 10);
        programEdit->setTextCursor(cursor);
        for (int i = 0; i < keysAtEachPlace; i++)
            times.push_back(timeOfKey(typed[static_cast<std::size_t>(i) % typed.size()]));
    }
    return times;
}

// The 99th percentile.
double tell(const char *name, std::vector<KeyTime> times, double KeyTime::*part) {
    std::ranges::sort(times, {}, part);
    const double percentile = times[times.size() * 99 / 100].*part;
    std::printf("%s: %zu keys, median %.2f ms, 99th percentile %.2f ms, longest %.2f ms\n", name, times.size(),
                times[times.size() / 2].*part, percentile, times.back().*part);
    return percentile;
}

}  // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const std::string folder = std::filesystem::temp_directory_path() / "numalink-typing-bench/";
    std::filesystem::create_directories(folder);
    setLibraryFolder(folder);
    if (!startUp()) return 1;
    settingsSetInt(setting::syntaxHighlighting, 1);
    NewItem item;
    item.name = "LONG";
    item.kind = kind::program;
    item.head = encodeProgramInfo({.imageLength = 1, .name = item.name, .password = {}});
    item.data = longProgram();
    const ItemId id = storeAddItem(item);
    refreshTree();
    const auto start = std::chrono::steady_clock::now();
    selectItem(id);
    std::printf("open: %.1f ms\n",
                std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    const std::vector<KeyTime> times = typeAround();
    tell("processor", times, &KeyTime::processor);
    const double percentile = tell("clock", times, &KeyTime::milliseconds);
    dropCurrentView();
    shutDown();
    tearDown();
    std::filesystem::remove_all(folder);
    return percentile < limitMilliseconds ? 0 : 1;
}
