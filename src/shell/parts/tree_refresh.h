// When the tree is brought up to what the library holds: whoever changes items asks here, and the tree does it once
// nothing is open that it would disturb.
#pragma once

namespace numalink {

// By difference: selection, open view, expansion and scroll stay. Any thread. Postponed while a label edit, a drag, a
// menu or a box is open.
void refreshTree();

// At once when one of these has ended; else it comes within postponedMilliseconds. Graphical thread only, as all below.
void refreshTreeWhenFree();
inline constexpr int postponedMilliseconds = 100;

// The tree's share: refresh brings it up, busy tells whether it is being edited or dragged in.
void connectTreeRefresh(void (*refresh)(), bool (*busy)());
void forgetTreeRefresh();

}  // namespace numalink
