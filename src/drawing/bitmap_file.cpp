#include "drawing/bitmap_file.h"

namespace numalink {

namespace {

constexpr std::uint32_t informationSize = 40;
constexpr std::size_t bytesPerDot = 3;

void writeHead(Bytes &file, const Surface &surface, std::size_t dotsSize) {
    file[0] = 'B';
    file[1] = 'M';
    writeLittle32(file, 2, static_cast<std::uint32_t>(file.size()));
    writeLittle32(file, 10, bitmapHeadSize);
    writeLittle32(file, 14, informationSize);
    writeLittle32(file, 18, static_cast<std::uint32_t>(surface.width));
    writeLittle32(file, 22, static_cast<std::uint32_t>(surface.height));
    file[26] = 1;                                           // plane
    file[28] = static_cast<std::uint8_t>(8 * bytesPerDot);  // bits a dot
    writeLittle32(file, 34, static_cast<std::uint32_t>(dotsSize));
}

}  // namespace

Bytes bitmapBytes(const Surface &surface) {
    const std::size_t rowSize = (static_cast<std::size_t>(surface.width) * bytesPerDot + 3) / 4 * 4;
    const std::size_t dotsSize = rowSize * static_cast<std::size_t>(surface.height);
    Bytes file(bitmapHeadSize + dotsSize);
    writeHead(file, surface, dotsSize);
    for (int y = 0; y < surface.height; y++) {
        std::size_t at = bitmapHeadSize + static_cast<std::size_t>(surface.height - 1 - y) * rowSize;
        for (int x = 0; x < surface.width; x++) {
            const Color color = dotAt(surface, x, y);
            file[at++] = static_cast<std::uint8_t>(color);
            file[at++] = static_cast<std::uint8_t>(color >> 8);
            file[at++] = static_cast<std::uint8_t>(color >> 16);
        }
    }
    return file;
}

}  // namespace numalink
