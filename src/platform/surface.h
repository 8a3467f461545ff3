// A rectangle of dots in memory. Drawing outside it is dropped. No lock: whoever shares a surface guards it.
#pragma once

#include <cstdint>
#include <vector>

namespace numalink {

// 0x00RRGGBB.
using Color = std::uint32_t;

namespace lcdColor {
inline constexpr Color background = 0xBEDCC8;  // 190, 220, 200: the calculator's screen
inline constexpr Color green = 0x009600;
inline constexpr Color orange = 0xFF6400;
inline constexpr Color blue = 0x0000C8;
inline constexpr Color black = 0x000000;
}  // namespace lcdColor

struct Surface {
    Surface() = default;
    Surface(int dotsWide, int dotsHigh, Color color = lcdColor::background);

    int width = 0;
    int height = 0;
    std::vector<Color> dots;  // row by row
};

void putDot(Surface &surface, int x, int y, Color color);
Color dotAt(const Surface &surface, int x, int y);  // background colour outside
void fillRectangle(Surface &surface, int left, int top, int right, int bottom, Color color);  // right, bottom excluded
void drawLine(Surface &surface, int fromX, int fromY, int toX, int toY, Color color);         // without its last dot
void copySurface(Surface &target, int x, int y, const Surface &source);

}  // namespace numalink
