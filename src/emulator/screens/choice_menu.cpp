// The menu of a program on the text screen: the title above, the choice in orange.
#include "emulator/screens/choice_menu.h"

#include <algorithm>

#include "emulator/machine/pace.h"
#include "emulator/machine/run_waits.h"
#include "emulator/screens/display.h"
#include "emulator/screens/number_input.h"
#include "emulator/screens/text_screen.h"

namespace numalink {

namespace {

constexpr int upKey = 28, downKey = 37;
constexpr int visibleChoices = textRowCount - 1;

void writeRow(int row, std::string text, PixelColor color) {
    text.resize(textColumnCount, ' ');
    putText(1, row, text, color);
}

void showChoices(const std::string &title, const std::vector<std::string> &choices, int current) {
    writeRow(1, title, pixelColor::blue);
    const int first = std::max(0, current - visibleChoices + 1);
    for (int row = 0; row < visibleChoices; row++) {
        const int choice = first + row;
        const bool exists = choice < static_cast<int>(choices.size());
        const std::string text =
            exists ? std::to_string(choice + 1) + ":" + choices[static_cast<std::size_t>(choice)] : std::string();
        writeRow(row + 2, text, choice == current ? pixelColor::orange : pixelColor::blue);
    }
    refreshScreen(false);
}

}  // namespace

int askChoice(const std::string &title, const std::vector<std::string> &choices) {
    const TextScreenCopy before = textScreenCopy();
    const int last = static_cast<int>(choices.size()) - 1;
    int current = 0, taken = -1;
    machine.rowColor.fill(pixelColor::blue);
    keyCode = 0;
    showChoices(title, choices, current);
    while (taken < 0) {
        const int key = waitPassKey(RunEnd::input);
        if (key == noKeyAnyMore) break;
        const int digit = digitOfKey(key);
        if (key == executeKey) taken = current;
        if (digit >= 1 && digit <= last + 1) taken = digit - 1;
        if (key == downKey) current = current == last ? 0 : current + 1;
        if (key == upKey) current = current == 0 ? last : current - 1;
        clearKey(key);
        showChoices(title, choices, current);
        if (taken < 0) waitPassPace(paceUnits::inputPass);
    }
    keyCode = 0;
    if (taken >= 0) textScreenRestore(before);
    return taken;
}

}  // namespace numalink
