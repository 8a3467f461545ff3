#include "emulator/screens/curves.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>

#include "drawing/dot_fonts.h"
#include "emulator/machine/named_values.h"

namespace numalink {

namespace {

constexpr int halfWidth = 63, partingColumn = 64;
constexpr int firstRow = 0, lastRow = displayHeight - 1;
constexpr int axesSwitchOfLabels = 4;
constexpr double marksLimit = 64;  // of an axis: closer ones would run into each other

// As the calculators are initialised.
constexpr double firstWindow[] = {-6.3, 6.3, 1, -3.1, 3.1, 1, 0, 2 * std::numbers::pi, std::numbers::pi / 50};

bool isEmpty(double low, double high) { return !(std::fabs(high - low) > 0) || !std::isfinite(high - low); }

// The window has a size, and T a range.
void completeWindow() {
    const ViewWindow &window = machine.window;
    const auto initialise = [](std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end; i++) machine.window[i] = complexReal(firstWindow[i]);
    };
    if (isEmpty(window[xMin].re, window[xMax].re) || isEmpty(window[yMin].re, window[yMax].re))
        initialise(xMin, tThetaMin);
    if (window[tThetaMin].re == window[tThetaMax].re && window[tThetaPitch].re == 0)
        initialise(tThetaMin, windowValueCount);
}

GraphFrame frameOf(int left, int width, const ViewWindow &window) {
    return {left,
            width,
            window[xMin].re,
            window[xMax].re,
            window[xScale].re,
            window[yMin].re,
            window[yMax].re,
            window[yScale].re,
            window[tThetaMin].re,
            window[tThetaMax].re,
            window[tThetaPitch].re};
}

GraphFrame frameOfWindow(int left, int width) {
    completeWindow();
    return frameOf(left, width, machine.window);
}

double dotColumn(const GraphFrame &frame, double x) {
    return frame.left + 1 + (x - frame.xLow) / (frame.xHigh - frame.xLow) * frame.width;
}

int firstColumn(const GraphFrame &frame) { return frame.left + 1; }
int lastColumn(const GraphFrame &frame) { return frame.left + frame.width; }

int floorOf(double value) { return static_cast<int>(std::floor(std::clamp(value, -1e6, 1e6))); }

bool isInside(const GraphFrame &frame, int column, int row) {
    return column >= firstColumn(frame) && column <= lastColumn(frame) && row >= firstRow && row <= lastRow;
}

void putInside(const GraphFrame &frame, int column, int row) {
    if (isInside(frame, column, row)) putPixel(column, row, pixelColor::blue);
}

// The multiples of the scale from low to high, none where they stand too close.
struct Marks {
    int first = 0, last = -1;
    Marks(double low, double high, double scale) {
        if (!(scale > 0) || !(std::fabs(high - low) / scale <= marksLimit)) return;
        first = static_cast<int>(std::ceil(std::min(low, high) / scale));
        last = static_cast<int>(std::floor(std::max(low, high) / scale));
    }
};

// A place that lies ahead of a dot by no more than rounding belongs to it.
constexpr double roundingRoom = 1e-9;
int markColumn(const GraphFrame &frame, int mark) {
    return floorOf(dotColumn(frame, mark * frame.xScale) + roundingRoom);
}
int markRow(const GraphFrame &frame, int mark) { return floorOf(rowOf(frame, mark * frame.yScale) + roundingRoom); }

// Cuts the line to the frame (Liang and Barsky); false where nothing of it is left.
bool clip(const GraphFrame &frame, double &x0, double &y0, double &x1, double &y1) {
    const double dx = x1 - x0, dy = y1 - y0;
    const double edges[][2] = {{-dx, x0 - firstColumn(frame)},
                               {dx, lastColumn(frame) + 0.999 - x0},
                               {-dy, y0 - firstRow},
                               {dy, lastRow + 0.999 - y0}};
    double from = 0, to = 1;
    for (const auto &[toward, room] : edges) {
        if (toward == 0 && room < 0) return false;
        if (toward < 0) from = std::max(from, room / toward);
        if (toward > 0) to = std::min(to, room / toward);
    }
    if (!(from <= to)) return false;
    x1 = x0 + to * dx;
    y1 = y0 + to * dy;
    x0 += from * dx;
    y0 += from * dy;
    return true;
}

void drawGrid(const GraphFrame &frame, const Marks &columns, const Marks &rows) {
    for (int i = columns.first; i <= columns.last; i++) {
        for (int j = rows.first; j <= rows.last; j++) putInside(frame, markColumn(frame, i), markRow(frame, j));
    }
}

void drawNames(const GraphFrame &frame, int axisColumn, int axisRow) {
    constexpr int nameWidth = 4, nameHeight = 6;
    const bool isAbove = axisRow > nameHeight + 1;
    graphText(isAbove ? axisRow - nameHeight - 2 : axisRow + 1, lastColumn(frame) - nameWidth, "x", pixelColor::blue);
    const bool isRight = axisColumn + nameWidth + 2 <= lastColumn(frame);
    graphText(0, isRight ? axisColumn + 3 : axisColumn - nameWidth - 2, "y", pixelColor::blue);
}

}  // namespace

GraphFrame wholeFrame() { return frameOfWindow(0, displayWidth - 1); }
GraphFrame leftFrame() { return frameOfWindow(0, halfWidth); }

GraphFrame rightFrame() {
    completeWindow();
    ViewWindow window;
    for (std::size_t i = 0; i < windowValueCount; i++) window[i] = namedValue(rightWindow[i]);
    if (window[tThetaPitch].re == 0) std::copy_n(machine.window.begin() + tThetaMin, 3, window.begin() + tThetaMin);
    return frameOf(partingColumn, halfWidth, window);
}

void drawParting() {
    for (int row = firstRow; row <= lastRow; row++) putPixel(partingColumn, row, pixelColor::blue);
}

bool hasSize(const GraphFrame &frame) { return !isEmpty(frame.xLow, frame.xHigh) && !isEmpty(frame.yLow, frame.yHigh); }

double columnX(const GraphFrame &frame, int column) {
    return frame.xLow + (frame.xHigh - frame.xLow) * (column - 1) / frame.width;
}

double rowY(const GraphFrame &frame, int row) {
    return frame.yHigh - (frame.yHigh - frame.yLow) * (row - 1) / (displayHeight - 1);
}

double rowOf(const GraphFrame &frame, double y) {
    return (1 - (y - frame.yLow) / (frame.yHigh - frame.yLow)) * (displayHeight - 1) + 1;
}

void drawAxes(const GraphFrame &frame) {
    if (!hasSize(frame)) return;
    const Marks columns(frame.xLow, frame.xHigh, frame.xScale), rows(frame.yLow, frame.yHigh, frame.yScale);
    if (graphs.showsGrid) drawGrid(frame, columns, rows);
    if (graphs.hidesAxes) return;
    const int axisColumn = floorOf(dotColumn(frame, 0) + roundingRoom),
              axisRow = floorOf(rowOf(frame, 0) + roundingRoom);
    for (int column = firstColumn(frame); column <= lastColumn(frame); column++) putInside(frame, column, axisRow);
    for (int row = firstRow; row <= lastRow; row++) putInside(frame, axisColumn, row);
    for (const int beside : {-1, 1}) {
        for (int i = columns.first; i <= columns.last; i++) putInside(frame, markColumn(frame, i), axisRow + beside);
        for (int i = rows.first; i <= rows.last; i++) putInside(frame, axisColumn + beside, markRow(frame, i));
    }
    if (machine.graphSwitches[axesSwitchOfLabels]) drawNames(frame, axisColumn, axisRow);
}

void CurvePen::toDot(double column, double row) {
    if (!std::isfinite(column) || !std::isfinite(row)) return lift();
    double x0 = joins && isDown ? penColumn : column, y0 = joins && isDown ? penRow : row;
    double x1 = penColumn = column, y1 = penRow = row;
    isDown = true;
    if (!clip(frame, x0, y0, x1, y1)) return;
    const int fromX = floorOf(x0 + roundingRoom), fromY = floorOf(y0 + roundingRoom);
    const int wayX = floorOf(x1 + roundingRoom) - fromX, wayY = floorOf(y1 + roundingRoom) - fromY;
    const int steps = std::max(std::abs(wayX), std::abs(wayY));
    for (int i = 0; i <= steps; i++) {
        const double share = steps == 0 ? 0 : static_cast<double>(i) / steps;
        dots.put(fromX + floorOf(wayX * share + 0.5), fromY + floorOf(wayY * share + 0.5));
    }
}

void CurvePen::to(double x, double y) { toDot(dotColumn(frame, x), rowOf(frame, y)); }

// The middle of the column, so that a rise is shared by both columns.
void CurvePen::toColumn(int column, double y) { toDot(frame.left + column + 0.5, rowOf(frame, y)); }

void shadeColumn(const GraphFrame &frame, int column, double fromRow, double toRow, PixelColor color) {
    if (column % 2 != 0 || std::isnan(fromRow) || std::isnan(toRow)) return;
    const int from = std::max(floorOf(std::min(fromRow, toRow)), firstRow);
    const int to = std::min(floorOf(std::max(fromRow, toRow)), lastRow);
    for (int row = from; row <= to; row++) putPixel(frame.left + column, row, color);
}

void graphCaption(std::string_view text, PixelColor color) {
    drawLargeText(graphScreen(), 1, displayHeight - 8, text, colorOf(color), lcdColor::background);
    graphScreenTouch();
}

}  // namespace numalink
