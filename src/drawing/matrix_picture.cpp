// The table of a matrix: heads, bracket, cells.
#include "drawing/matrix_picture.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "drawing/dot_fonts.h"

namespace numalink {

namespace {

constexpr int columnWidth = 28, rowHeight = 8;
constexpr int columnReach = 45, rowReach = 17;  // dots from the start of a column or row to the end of what is drawn
constexpr int cellDigits = 6, pickedDigits = 15;
constexpr std::size_t cellTextLimit = 6;
constexpr char minusCode = '\x87', plusCode = '\x89', exponentCode = '\xDF';

// At most so many significant digits, plain from 0.0001 on while they reach, else with a sign and three exponent
// digits.
std::string generalText(double value, int digits) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-Inf" : "Inf";
    char buffer[40];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, digits);
    std::string text(buffer, end.ptr);
    const std::size_t mark = text.find('e');
    if (mark == std::string::npos) return text;
    while (text.size() < mark + 5) text.insert(mark + 2, 1, '0');
    return text;
}

// Six characters of "1.23456e+012": the exponent keeps its digits, without leading zeros, and the digits ahead of it
// are cut.
void squeeze(std::string &text, std::size_t mark) {
    const std::size_t digits = std::min(text.find_first_not_of('0', mark + 2), text.size() - 1);
    const std::string tail = (text[mark + 1] == '-' ? "e-" : "e") + text.substr(digits);
    text.resize(std::min(mark, cellTextLimit - tail.size()));
    text += tail;
}

bool holds(const MatrixPicture &picture, int row, int column) {
    const std::size_t place =
        static_cast<std::size_t>(row) * static_cast<std::size_t>(picture.columns) + static_cast<std::size_t>(column);
    return row >= 0 && column >= 0 && row < picture.rows && column < picture.columns && place < picture.values.size();
}

double valueAt(const MatrixPicture &picture, int row, int column) {
    return picture.values[static_cast<std::size_t>(row) * static_cast<std::size_t>(picture.columns) +
                          static_cast<std::size_t>(column)];
}

// The first column or row, from 0, of which something lies at or behind a dot; the end of their range is reach.
int firstReaching(int dot, int step, int reach) { return std::max(0, (dot - reach) / step); }

void drawHeads(Surface &surface, const MatrixPicture &picture, int columns) {
    for (int c = firstReaching(picture.left, columnWidth, columnReach); c < columns; c++) {
        const int x = c * columnWidth - picture.left;
        if (x >= surface.width) return;
        drawLine(surface, x + 18, 7 - picture.top, x + 43, 7 - picture.top, lcdColor::green);
        drawDigitText(surface, x + 32, 1 - picture.top, std::to_string(c + 1), lcdColor::blue);
    }
}

void drawBracket(Surface &surface, const MatrixPicture &picture, int rows) {
    const int top = (rows == 1 ? 12 : 11) - picture.top;
    const int bottom = rows * rowHeight + 7 - picture.top;
    const int x = 15 - picture.left;
    drawLine(surface, x + 2, top, x, top, lcdColor::green);
    drawLine(surface, x, top, x, bottom, lcdColor::green);
    drawLine(surface, x, bottom, x + 3, bottom, lcdColor::green);
}

void drawCell(Surface &surface, const MatrixPicture &picture, int row, int column) {
    const int x = column * columnWidth - picture.left;
    const int y = row * rowHeight - picture.top;
    const bool isPicked = row == picture.pickedRow - 1 && column == picture.pickedColumn - 1;
    if (isPicked) fillRectangle(surface, x + 18, y + 9, x + 43, y + 17, lcdColor::blue);
    const Color color = isPicked ? lcdColor::background : lcdColor::blue;
    drawDigitText(surface, x + 44, y + 11, matrixCellText(valueAt(picture, row, column)), color);
}

void drawRow(Surface &surface, const MatrixPicture &picture, int row, int columns) {
    drawDigitText(surface, 12 - picture.left, row * rowHeight - picture.top + 11, std::to_string(row + 1),
                  lcdColor::blue);
    for (int column = firstReaching(picture.left, columnWidth, columnReach);
         column < columns && column * columnWidth - picture.left < surface.width; column++) {
        if (holds(picture, row, column)) drawCell(surface, picture, row, column);
    }
}

}  // namespace

std::string matrixCellText(double value) {
    std::string text = generalText(value, cellDigits);
    const std::size_t mark = text.find('e');
    if (mark != std::string::npos) squeeze(text, mark);
    return text.substr(0, cellTextLimit);
}

std::string matrixPickedText(double value) {
    std::string text = generalText(value, pickedDigits);
    const std::size_t mark = text.find('e');
    if (mark != std::string::npos) {
        const std::size_t digits = text.find_first_not_of('0', mark + 2);
        text.erase(mark + 2, digits - mark - 2);
        text[mark] = exponentCode;
    }
    if (text.starts_with('-')) text[0] = minusCode;
    if (const std::size_t minus = text.find('-'); minus != std::string::npos) text[minus] = minusCode;
    if (const std::size_t plus = text.find('+'); plus != std::string::npos) text[plus] = plusCode;
    return text;
}

int matrixPictureWidth(int columns) { return columns * columnWidth + 15; }
int matrixPictureHeight(int rows) { return rows * rowHeight + 30; }

void drawMatrix(Surface &surface, const MatrixPicture &picture) {
    fillRectangle(surface, 0, 0, surface.width, surface.height, lcdColor::background);
    const int columns = std::min(picture.columns, matrixPictureLimit);
    const int rows = std::min(picture.rows, matrixPictureLimit);
    drawHeads(surface, picture, columns);
    drawBracket(surface, picture, rows);
    for (int row = firstReaching(picture.top, rowHeight, rowReach);
         row < rows && row * rowHeight - picture.top < surface.height; row++)
        drawRow(surface, picture, row, columns);
}

void drawPickedValue(Surface &surface, const MatrixPicture &picture, int tableWidth, int tableHeight) {
    if (!holds(picture, picture.pickedRow - 1, picture.pickedColumn - 1)) return;
    const std::string text = matrixPickedText(valueAt(picture, picture.pickedRow - 1, picture.pickedColumn - 1));
    drawLargeText(surface, tableWidth - static_cast<int>(text.size()) * largeCharAdvance - picture.left,
                  tableHeight - 20 - picture.top, text, lcdColor::blue, lcdColor::background);
}

}  // namespace numalink
