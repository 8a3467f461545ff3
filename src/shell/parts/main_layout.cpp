#include "shell/parts/main_layout.h"

#include <algorithm>
#include <cmath>

namespace numalink {

MainLayout layoutFor(int width, int height, bool treeVisible, double scale) {
    const auto grown = [scale](int pixels) { return static_cast<int>(std::lround(pixels * scale)); };
    const int treeWidth = treeVisible ? grown(treeColumnWidth) : 0;
    const int numbersWidth = grown(lineNumberWidth);
    const int viewX = treeWidth + grown(toggleGap);
    const int clientWidth = std::max(0, width - viewX);
    return {
        .tree = {1, 0, treeWidth, height},
        .toggle = {treeWidth + 1, 1, grown(toggleWidth), std::max(0, height - 1)},
        .lineNumbers = {viewX, 0, numbersWidth, height},
        .program = {viewX + numbersWidth, 0, std::max(0, clientWidth - numbersWidth), height},
        .container = {viewX, 0, clientWidth, height},
    };
}

}  // namespace numalink
