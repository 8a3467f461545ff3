// The question mark on the text screen.
#include "emulator/screens/number_input.h"

#include <algorithm>
#include <array>

#include "emulator/machine/pace.h"
#include "emulator/machine/run_waits.h"
#include "emulator/screens/display.h"
#include "emulator/screens/text_screen.h"

namespace numalink {

namespace {

constexpr std::array<int, 10> digitKeys = {71, 72, 62, 52, 73, 63, 53, 74, 64, 54};  // 0 to 9
constexpr int minusKey = 32, signKey = 41;
constexpr std::uint64_t blinkMilliseconds = 600;

struct Input {
    int column = 1;
    double value = 0;
    bool isNegative = false;
    bool cursorShown = false;
    std::uint64_t nextBlink = 0;
};

void write(int column, std::string_view text) { putText(column, machine.textRow, text, pixelColor::blue); }

// Behind the text that the statement has just printed, else on a row of its own.
void writeQuestionMark() {
    scrollIfNeeded();
    if (machine.textColumn != 0 && machine.textColumn < textColumnCount) {
        putText(machine.textColumn + 1, machine.textRow - 1, "?", pixelColor::blue);
        return;
    }
    write(1, "?");
    machine.textRow++;
    scrollIfNeeded();
}

void takeKey(Input &input, int key) {
    if (const int digit = digitOfKey(key); digit >= 0) {
        input.value = input.value * 10 + digit;
        const char text = static_cast<char>('0' + digit);
        write(input.column++, {&text, 1});
        return;
    }
    if (key != minusKey && key != signKey) return;
    input.isNegative = true;
    write(input.column++, "-");
}

void blink(Input &input) {
    const std::uint64_t now = waitTicks();
    if (now < input.nextBlink) return;
    input.nextBlink = now + blinkMilliseconds;
    input.cursorShown = !input.cursorShown;
    write(input.column, input.cursorShown ? "_" : " ");
}

}  // namespace

int digitOfKey(int key) {
    const auto found = std::ranges::find(digitKeys, key);
    return found == digitKeys.end() ? -1 : static_cast<int>(found - digitKeys.begin());
}

ComplexValue readNumber() {
    if (isAside()) {
        giveUpAside();
        return {};
    }
    writeQuestionMark();
    Input input;
    keyCode = 0;
    for (int key = waitPassKey(RunEnd::input); key != executeKey && key != noKeyAnyMore;
         key = waitPassKey(RunEnd::input)) {
        clearKey(key);
        waitPassPace(paceUnits::inputPass);
        takeKey(input, key);
        blink(input);
        refreshScreen(false);
    }
    write(input.column, " ");
    machine.textRow++;
    keyCode = 0;
    return complexReal(input.isNegative ? -input.value : input.value);
}

}  // namespace numalink
