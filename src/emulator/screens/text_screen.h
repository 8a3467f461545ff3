// The text screen: 8 rows of 21 characters, its cursor and its row colours. Text is calculator codes. Every writer
// brings the screen up (mode 2). Run thread.
#pragma once

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

// A report in blue at column 6 of row 8, where a scroll wipes it.
void showError(const char *text);

}  // namespace numalink
