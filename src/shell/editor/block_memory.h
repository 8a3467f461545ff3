// What a block of the program's document remembers beside its text: how deep it stands and how it folds. It lies in
// Qt's user state of the block, moves with the block, and is no part of what can be undone. Graphical thread only.
#pragma once

#include <QTextBlock>
#include <algorithm>

namespace numalink {

struct BlockMemory {
    int depth = 0;          // levels of indentation
    bool foldable = false;  // a block of the program opens here
    bool folded = false;    // and its lines are hidden
    friend bool operator==(const BlockMemory &, const BlockMemory &) = default;
};

inline BlockMemory blockMemory(const QTextBlock &block) {
    const int state = std::max(0, block.userState());  // -1: nothing yet
    return {state & 0xFF, (state & 0x100) != 0, (state & 0x200) != 0};
}

inline void setBlockMemory(QTextBlock block, const BlockMemory &memory) {
    block.setUserState(std::min(memory.depth, 0xFF) | (memory.foldable ? 0x100 : 0) | (memory.folded ? 0x200 : 0));
}

}  // namespace numalink
