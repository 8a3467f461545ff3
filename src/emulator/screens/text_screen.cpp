// The text screen and its cursor. Row 8 is what a scroll brings in, and where the errors stand.
#include "emulator/screens/text_screen.h"

#include <algorithm>
#include <array>

#include "drawing/dot_fonts.h"

namespace numalink {

namespace {

constexpr int rowHeight = 8;
constexpr int errorColumn = 6;
constexpr int drawableColumns = 1000;  // beyond it to either side no character of any text reaches the screen

constexpr char blankRow[] = "                     ";
static_assert(sizeof blankRow - 1 == textColumnCount);

Surface surface(displayWidth, displayHeight);
std::array<std::string, textRowCount> characters = [] {
    std::array<std::string, textRowCount> rows;
    rows.fill(blankRow);
    return rows;
}();
std::uint64_t changes = 0;

bool isDrawable(int column, int row) {
    return column > -drawableColumns && column < drawableColumns && row >= 0 && row <= textRowCount + 1;
}

PixelColor colorInRow(int row, PixelColor color) {
    if (row < 1 || row > textRowCount) return color;
    const PixelColor ofRow = machine.rowColor[static_cast<std::size_t>(row - 1)];
    return ofRow == pixelColor::blue ? color : ofRow;
}

void keepCharacters(int column, int row, std::string_view text) {
    if (row < 1 || row > textRowCount) return;
    std::string &kept = characters[static_cast<std::size_t>(row - 1)];
    for (const char c : text) {
        if (column >= 1 && column <= textColumnCount) kept[static_cast<std::size_t>(column - 1)] = c;
        column++;
    }
}

// The last report on the screen, and what the screen was then. The same again leaves it as it is: a faulty expression
// may report hundreds of times, and drawing a text takes longer than evaluating one.
struct ShownReport {
    const char *text = nullptr;
    PixelColor rowColor = 0;
    std::uint64_t screenChanges = 0;
    friend bool operator==(const ShownReport &, const ShownReport &) = default;
};
ShownReport shownReport;  // run thread

}  // namespace

std::string textRowCodes(int row) { return characters[static_cast<std::size_t>(row - 1)]; }

const Surface &textScreen() { return surface; }
std::uint64_t textScreenChanges() { return changes; }

void putText(int column, int row, std::string_view text, PixelColor color) {
    if (isDrawable(column, row)) {
        const int x = (column - 1) * largeCharAdvance + 1;
        drawLargeText(surface, x, (row - 1) * rowHeight, text, colorOf(colorInRow(row, color)), lcdColor::background);
        keepCharacters(column, row, text);
        changes++;
    }
    setScreenMode(textMode);
}

void scrollIfNeeded() {
    if (machine.textRow != textRowCount) return;
    std::copy(surface.dots.begin() + std::ptrdiff_t{rowHeight} * displayWidth, surface.dots.end(),
              surface.dots.begin());
    std::rotate(characters.begin(), characters.begin() + 1, characters.end());
    machine.textRow = textRowCount - 1;
    putText(1, textRowCount, blankRow, pixelColor::background);
}

void printText(std::string_view text, PixelColor color, bool rightAligned) {
    for (std::size_t start = 0; start < text.size(); start += textColumnCount) {
        scrollIfNeeded();
        const std::string_view rest = text.substr(start);
        const int length = static_cast<int>(rest.size());
        if (rightAligned) {
            putText(textColumnCount + 1 - length, machine.textRow, rest, color);
        } else {
            putText(1, machine.textRow, rest, color);
            machine.textColumn = length;
        }
        machine.textRow++;
    }
    if (text.size() % textColumnCount == 0) {
        scrollIfNeeded();
        machine.textRow++;
    }
}

void showError(const char *text) {
    const PixelColor rowColor = machine.rowColor[textRowCount - 1];
    if (shownReport == ShownReport{text, rowColor, textScreenChanges()}) return setScreenMode(textMode);
    putText(errorColumn, textRowCount, text, pixelColor::blue);
    shownReport = {text, rowColor, textScreenChanges()};
}

TextScreenCopy textScreenCopy() {
    return {surface,          characters, machine.rowColor, machine.textRow, machine.textColumn, machine.screenMode,
            machine.shortCopy};
}

void textScreenRestore(const TextScreenCopy &copy) {
    surface = copy.surface;
    characters = copy.characters;
    machine.rowColor = copy.rowColor;
    machine.textRow = copy.row;
    machine.textColumn = copy.column;
    machine.screenMode = copy.mode;
    machine.shortCopy = copy.shortCopy;
    changes++;
}

void clearText() {
    std::fill(surface.dots.begin(), surface.dots.end(), lcdColor::background);
    characters.fill(blankRow);
    changes++;
    machine.textRow = 1;
    setScreenMode(textMode);
}

}  // namespace numalink
