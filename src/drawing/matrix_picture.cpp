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

// Six characters of "1.23456e+012": the exponent keeps its digits and takes the place of the last ones ahead of it.
void squeeze(std::string &text, std::size_t mark) {
    const bool isNegative = text[mark + 1] == '-';
    const char tens = text[mark + 3];
    const char ones = text[mark + 4];
    std::string tail = isNegative ? "e-" : "e";
    if (tens != '0') tail += tens;
    tail += ones;
    text.resize(std::max(text.size(), cellTextLimit), ' ');
    std::copy(tail.begin(), tail.end(), text.begin() + static_cast<std::ptrdiff_t>(cellTextLimit - tail.size()));
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

void drawHeads(Surface &surface, int columns) {
    for (int c = 0; c < columns && c * columnWidth < surface.width; c++) {
        drawLine(surface, c * columnWidth + 18, 7, c * columnWidth + 43, 7, lcdColor::green);
        drawDigitText(surface, c * columnWidth + 32, 1, std::to_string(c + 1), lcdColor::blue);
    }
}

void drawBracket(Surface &surface, int rows) {
    const int top = rows == 1 ? 12 : 11;
    const int bottom = rows * rowHeight + 7;
    drawLine(surface, 17, top, 15, top, lcdColor::green);
    drawLine(surface, 15, top, 15, bottom, lcdColor::green);
    drawLine(surface, 15, bottom, 18, bottom, lcdColor::green);
}

void drawCell(Surface &surface, const MatrixPicture &picture, int row, int column) {
    const int x = column * columnWidth;
    const int y = row * rowHeight;
    const bool isPicked = row == picture.pickedRow - 1 && column == picture.pickedColumn - 1;
    if (isPicked) fillRectangle(surface, x + 18, y + 9, x + 43, y + 17, lcdColor::blue);
    const Color color = isPicked ? lcdColor::background : lcdColor::blue;
    drawDigitText(surface, x + 44, y + 11, matrixCellText(valueAt(picture, row, column)), color);
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
    drawHeads(surface, columns);
    drawBracket(surface, rows);
    for (int row = 0; row < rows && row * rowHeight < surface.height; row++) {
        drawDigitText(surface, 12, row * rowHeight + 11, std::to_string(row + 1), lcdColor::blue);
        for (int column = 0; column < columns && column * columnWidth < surface.width; column++) {
            if (holds(picture, row, column)) drawCell(surface, picture, row, column);
        }
    }
}

void drawPickedValue(Surface &surface, const MatrixPicture &picture, int surfaceWidth, int surfaceHeight) {
    if (!holds(picture, picture.pickedRow - 1, picture.pickedColumn - 1)) return;
    const std::string text = matrixPickedText(valueAt(picture, picture.pickedRow - 1, picture.pickedColumn - 1));
    drawLargeText(surface, surfaceWidth - static_cast<int>(text.size()) * largeCharAdvance, surfaceHeight - 20, text,
                  lcdColor::blue, lcdColor::background);
}

}  // namespace numalink
