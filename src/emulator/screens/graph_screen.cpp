// The graph screen. Everything drawn in a colour goes through putPixel, but for the straight lines and small text.
#include "emulator/screens/graph_screen.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "drawing/dot_fonts.h"
#include "emulator/machine/pace.h"
#include "emulator/machine/run_waits.h"
#include "emulator/screens/pictures.h"

namespace numalink {

namespace {

constexpr double lineStep = 0.1;         // dots
constexpr double circleStep = 0.05;      // radians
constexpr double circleEnd = 6.2831853;  // radians
constexpr int lineBottom = 128;          // a line's dots from there down aren't tried
constexpr int textReach = 500 * 6;       // dots that the longest text may reach to the right
constexpr int variableX = 'X' - 'A', variableY = 'Y' - 'A';

Surface surface(displayWidth, displayHeight);
std::uint64_t changes = 0;

bool isOnScreen(int x, int y) { return x >= 0 && x < displayWidth && y >= 0 && y < displayHeight; }

Color &dotOf(int x, int y) {
    return surface.dots[static_cast<std::size_t>(y) * displayWidth + static_cast<std::size_t>(x)];
}

void writeDot(int x, int y, PixelColor color) {
    if (!isOnScreen(x, y) || dotOf(x, y) == colorOf(color)) return;
    dotOf(x, y) = colorOf(color);
    changes++;
}

void emptyScreen() {
    std::fill(surface.dots.begin(), surface.dots.end(), lcdColor::background);
    changes++;
}

void putLineDot(double x, double y, StyledDots &dots) {
    pace(paceUnits::lineDot);
    if (y < lineBottom) dots.put(cutToInteger(x), cutToInteger(y));
}

// The walks go by tenths of a dot or of a degree as the calculators' do: how these add up is part of the picture.
// Behind the lower or right edge a walk meets no dot any more.
void walkDown(double x, double fromY, double toY, StyledDots &dots) {
    // NOLINTNEXTLINE(cert-flp30-c): see above; a step too small to count ends it
    for (double y = fromY; y <= toY && y < lineBottom && runGoesOn(); y += lineStep) {
        if (y + lineStep == y) return;
        putLineDot(x, y, dots);
    }
}

void walkRight(PlotPoint from, PlotPoint to, StyledDots &dots) {
    const double slope = (from.y - to.y) / (from.x - to.x);
    double y = from.y;
    // NOLINTNEXTLINE(cert-flp30-c): see above; a step too small to count ends it
    for (double x = from.x; x <= to.x && x < displayWidth && runGoesOn(); x += lineStep) {
        if (x + lineStep == x) return;
        putLineDot(x, y, dots);
        y += slope / 10;
    }
}

// The mode is left alone. Other numbers than those of the memories recall nothing.
void recallQuietly(int number) {
    const Surface *memory = pictureMemory(number);
    if (!memory) return;
    for (int y = 0; y < displayHeight; y++) {
        for (int x = 0; x < displayWidth; x++) {
            const Color dot = dotAt(*memory, x, y);
            if (dot != lcdColor::background) putPixel(x, y, pixelColorOf(dot));
        }
    }
}

}  // namespace

Surface &graphScreen() { return surface; }
std::uint64_t graphScreenChanges() { return changes; }
void graphScreenTouch() { changes++; }

double mapX(double x) {
    const double left = machine.window[xMin].re;
    return (x - left) / (machine.window[xMax].re - left) * 127 + 1;
}

double mapY(double y) {
    const double bottom = machine.window[yMin].re;
    return (1 - (y - bottom) / (machine.window[yMax].re - bottom)) * 63 + 1;
}

void putPixel(int x, int y, PixelColor color) {
    if (isOnScreen(x, y) && color < pixelColorOf(dotOf(x, y))) writeDot(x, y, color);
}

PixelColor pixelAt(int x, int y) { return isOnScreen(x, y) ? pixelColorOf(dotOf(x, y)) : pixelColor::background; }

void StyledDots::put(int x, int y, void (*putDot)(int x, int y, PixelColor color)) {
    if (x == lastX && y == lastY) return;
    lastX = x;
    lastY = y;
    const int at = count++;
    constexpr int dashLength = 4;
    if (style == LineStyle::dotted && at % 2 != 0) return;
    if (style == LineStyle::broken && at / dashLength % 2 != 0) return;
    putDot(x, y, color);  // as it is: it may lie outside
    if (style != LineStyle::thick && style != LineStyle::broken) return;
    putDot(x, y + 1, color);
    if (x >= lastColumn) return;
    putDot(x + 1, y, color);
    putDot(x + 1, y + 1, color);
}

void plotPoint(double x, double y, PixelColor color) {
    machine.variables[variableX] = complexReal(x);
    machine.variables[variableY] = complexReal(y);
    machine.plotPrevious = std::exchange(machine.plotCurrent, {x, y});
    const int column = cutToInteger(mapX(x));
    const int row = cutToInteger(mapY(y));
    if (color == pixelColor::background) {
        writeDot(column, row, color);
    } else {
        putPixel(column, row, color);
    }
}

void pixelOn(double x, double y, PixelColor color) { putPixel(cutToInteger(x), cutToInteger(y), color); }
void pixelOff(double x, double y) { writeDot(cutToInteger(x), cutToInteger(y), pixelColor::background); }

void pixelChange(double x, double y, PixelColor color) {
    if (pixelTest(x, y)) {
        pixelOff(x, y);
    } else {
        pixelOn(x, y, color);
    }
}

bool pixelTest(double x, double y) { return pixelAt(cutToInteger(x), cutToInteger(y)) != pixelColor::background; }

void drawLine(double x1, double y1, double x2, double y2, PixelColor color) {
    PlotPoint from{mapX(x1), mapY(y1)};
    PlotPoint to{mapX(x2), mapY(y2)};
    if (!std::isfinite(from.x) || !std::isfinite(from.y) || !std::isfinite(to.x) || !std::isfinite(to.y)) return;
    StyledDots dots(color, graphs.sketchStyle);
    if (from.x == to.x) {
        walkDown(from.x, std::min(from.y, to.y), std::max(from.y, to.y), dots);
    } else {
        if (to.x < from.x) std::swap(from, to);
        walkRight(from, to, dots);
    }
}

void drawLastLine(PixelColor color) {
    drawLine(machine.plotPrevious.x, machine.plotPrevious.y, machine.plotCurrent.x, machine.plotCurrent.y, color);
}

void drawCircle(double x, double y, double radius, PixelColor color) {
    StyledDots dots(color, graphs.sketchStyle);
    // NOLINTNEXTLINE(cert-flp30-c,clang-analyzer-security.FloatLoopCounter): see the walks of a line
    for (double t = 0; t < circleEnd; t += circleStep) {
        const double column = mapX(std::sin(t) * radius + x);
        const double row = mapY(std::cos(t) * radius + y);
        dots.put(cutToInteger(column), cutToInteger(row));
    }
}

// As a pen of the window system draws: the last dot is left out.
void drawVertical(double x, PixelColor color) {
    pace(paceUnits::straightLine);
    const int column = cutToInteger(mapX(x));
    StyledDots dots(color, graphs.sketchStyle);
    for (int y = 0; y < displayHeight - 1; y++) dots.put(column, y, writeDot);
}

void drawHorizontal(double y, PixelColor color) {
    pace(paceUnits::straightLine);
    const int row = cutToInteger(mapY(y));
    StyledDots dots(color, graphs.sketchStyle);
    for (int x = 0; x < displayWidth - 1; x++) dots.put(x, row, writeDot);
}

void graphText(double first, double second, std::string_view text, PixelColor color) {
    const int x = cutToInteger(second);
    const int y = cutToInteger(first);
    if (x < -textReach || x >= displayWidth || y < -smallCharHeight - 1 || y >= displayHeight) return;
    drawSmallText(surface, x, y + 1, text, colorOf(color), lcdColor::background);
    changes++;
}

void storePicture(int number) {
    if (Surface *memory = pictureMemory(number)) *memory = graphScreen();
}

void recallPicture(int number) {
    if (!pictureMemory(number)) return;
    recallQuietly(number);
    setScreenMode(graphMode);
}

void clearGraph() {
    emptyScreen();
    setScreenMode(graphMode);
    if (machine.backgroundPicture != 0) recallPicture(machine.backgroundPicture);
}

void clearScreen() {
    emptyScreen();
    if (machine.backgroundPicture != 0) recallQuietly(machine.backgroundPicture);
}

}  // namespace numalink
