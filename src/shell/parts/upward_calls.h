// What the rooms of the window tell those above them, which they don't know: the start-up fills the table, and until
// then the entries do nothing. Graphical thread only.
#pragma once

#include "calculator/item_kinds.h"

class QMenu;

namespace numalink {

struct UpwardCalls {
    void (*selectionChanged)(ItemKind selected) = [](ItemKind) {};  // kind::none when nothing is selected
    void (*programShown)(bool shown) = [](bool) {};                 // a program's text comes on view, or any view goes
    void (*viewClosed)() = [] {};
    void (*runChanged)(bool running) = [](bool) {};
    bool (*deletePressed)() = [] { return false; };        // Delete in the tree; true when the key is used up
    void (*fillGroundMenu)(QMenu &menu) = [](QMenu &) {};  // the context menu of the tree's empty ground
    void (*endProgram)() = [] {};                          // as the window's close button does
    bool (*programEnds)() = [] { return false; };          // from the closing of the library on
};

extern UpwardCalls upwardCalls;

}  // namespace numalink
