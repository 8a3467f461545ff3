#include "drawing/dot_text.h"

namespace numalink {

namespace {

constexpr const char *blocks[] = {" ", "\u2580", "\u2584", "\u2588"};  // by upper dot + 2 * lower dot

bool isSet(const Surface &surface, int x, int y) { return dotAt(surface, x, y) != lcdColor::background; }

}  // namespace

std::string dotText(const Surface &surface) {
    std::string text;
    for (int y = 0; y < surface.height; y += 2) {
        std::string line;
        std::size_t end = 0;  // behind the last dot
        for (int x = 0; x < surface.width; x++) {
            const int block = (isSet(surface, x, y) ? 1 : 0) + (isSet(surface, x, y + 1) ? 2 : 0);
            line += blocks[block];
            if (block != 0) end = line.size();
        }
        text += line.substr(0, end) + "\n";
    }
    return text;
}

}  // namespace numalink
