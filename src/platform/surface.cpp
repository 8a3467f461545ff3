#include "platform/surface.h"

#include <algorithm>
#include <cstdlib>

namespace numalink {

namespace {

std::size_t placeOf(const Surface &surface, int x, int y) {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(surface.width) + static_cast<std::size_t>(x);
}

bool inside(const Surface &surface, int x, int y) {
    return x >= 0 && y >= 0 && x < surface.width && y < surface.height;
}

}  // namespace

Surface::Surface(int dotsWide, int dotsHigh, Color color)
    : width(std::max(0, dotsWide)),
      height(std::max(0, dotsHigh)),
      dots(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), color) {}

void putDot(Surface &surface, int x, int y, Color color) {
    if (inside(surface, x, y)) surface.dots[placeOf(surface, x, y)] = color;
}

Color dotAt(const Surface &surface, int x, int y) {
    return inside(surface, x, y) ? surface.dots[placeOf(surface, x, y)] : lcdColor::background;
}

void fillRectangle(Surface &surface, int left, int top, int right, int bottom, Color color) {
    left = std::max(left, 0);
    right = std::min(right, surface.width);
    for (int y = std::max(top, 0); y < std::min(bottom, surface.height); y++) {
        if (left < right)
            std::fill_n(surface.dots.begin() + static_cast<std::ptrdiff_t>(placeOf(surface, left, y)), right - left,
                        color);
    }
}

void drawLine(Surface &surface, int fromX, int fromY, int toX, int toY, Color color) {
    const int steps = std::max(std::abs(toX - fromX), std::abs(toY - fromY));
    const int stepX = toX < fromX ? -1 : 1;
    const int stepY = toY < fromY ? -1 : 1;
    const int longX = std::abs(toX - fromX);
    const int longY = std::abs(toY - fromY);
    int x = fromX, y = fromY, restX = steps / 2, restY = steps / 2;
    for (int step = 0; step < steps; step++) {
        putDot(surface, x, y, color);
        restX -= longX;
        restY -= longY;
        if (restX < 0) {
            x += stepX;
            restX += steps;
        }
        if (restY < 0) {
            y += stepY;
            restY += steps;
        }
    }
}

void copySurface(Surface &target, int x, int y, const Surface &source) {
    for (int row = 0; row < source.height; row++) {
        for (int column = 0; column < source.width; column++) {
            putDot(target, x + column, y + row, dotAt(source, column, row));
        }
    }
}

}  // namespace numalink
