#include "shell/parts/main_layout.h"

#include <algorithm>

namespace numalink {

MainLayout layoutFor(int width, int height, bool treeVisible) {
    const int treeWidth = treeVisible ? treeColumnWidth : 0;
    const int viewX = treeWidth + toggleGap;
    const int clientWidth = std::max(0, width - treeWidth - toggleGap);
    return {
        .tree = {1, 0, treeWidth, height},
        .toggle = {treeWidth + 1, 1, toggleWidth, std::max(0, height - 1)},
        .lineNumbers = {viewX, 0, lineNumberWidth, height},
        .program = {viewX + lineNumberWidth, 0, std::max(0, clientWidth - lineNumberWidth), height},
        .container = {viewX, 0, clientWidth, height},
    };
}

}  // namespace numalink
