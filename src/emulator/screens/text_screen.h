// The text screen: 8 rows of 21 characters, its cursor and its row colours. Text is calculator codes. Every writer
// brings the screen up (mode 2). Run thread.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "emulator/machine/machine.h"

namespace numalink {

const Surface &textScreen();
std::uint64_t textScreenChanges();  // grows with every write to the surface

std::string textRowCodes(int row);  // the 21 characters of row 1 to 8, blanks where nothing was written

void putText(int column, int row, std::string_view text, PixelColor color);  // a character place, both from 1
void printText(std::string_view text, PixelColor color, bool rightAligned);  // at the cursor, with line breaks
void scrollIfNeeded();                                                       // leaves the cursor on row 7 at most
void clearText();                                                            // empties the screen, cursor on row 1

// The screen with its cursor, row colours and mode, for what shows for a while and then goes.
struct TextScreenCopy {
    Surface surface;
    std::array<std::string, textRowCount> characters;
    std::array<PixelColor, textRowCount> rowColor{};
    int row = 1, column = 0, mode = textMode;
    bool shortCopy = false;
};
TextScreenCopy textScreenCopy();
void textScreenRestore(const TextScreenCopy &copy);

// A report in blue at column 6 of row 8, where a scroll wipes it.
void showError(const char *text);

}  // namespace numalink
