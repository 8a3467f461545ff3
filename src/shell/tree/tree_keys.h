// Keys in the item tree. Graphical thread only.
#pragma once

class QKeyEvent;

namespace numalink {

// True when the key is used up. Every key that would change the selection first leaves the view.
bool treeKeyPressed(const QKeyEvent &key);
bool isKeepKey(const QKeyEvent &key);  // Ctrl+Space: keeps what is selected, and what not
void forgetTreeKeys();

}  // namespace numalink
