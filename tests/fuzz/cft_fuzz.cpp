// Both font readers over any bytes, then every character drawn from what they took in, near and beyond the edges, and
// so far away that nothing of it may show.
#include <climits>

#include "drawing/dot_fonts.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace numalink;
    if (size == 0) return 0;
    const int x = data[0] % 16 - 8, y = data[0] / 16 - 8;
    const ByteView file(data + 1, size - 1);
    setLargeFont(file);
    setSmallFont(file);
    Surface surface(9, 7);
    for (int character = 0; character < 256; character++) {
        drawLargeChar(surface, x, y, static_cast<std::uint8_t>(character), 1, 2);
        const int advance =
            drawSmallChar(surface, x, y, static_cast<std::uint8_t>(character), 1, 2, character % 2 == 0);
        if (advance < 1 || advance > smallCharWidthLimit + 1) __builtin_trap();
    }
    const std::string_view text(reinterpret_cast<const char *>(data), size < 64 ? size : 64);
    drawLargeText(surface, x, y, text, 1, 2);
    drawSmallText(surface, x, y, text, 1, 2);
    drawDigitText(surface, x, y, text, 1);
    const std::vector<Color> before = surface.dots;
    for (const int far : {INT_MIN, INT_MAX}) {
        drawLargeText(surface, far, y, text, 1, 2);
        drawSmallText(surface, x, far, text, 1, 2);
        drawDigitText(surface, far, far, text, 1);
        for (const int digit : {-1, 8, 13}) drawDigit(surface, far, y, digit, 1);
    }
    if (surface.dots != before) __builtin_trap();
    return 0;
}
