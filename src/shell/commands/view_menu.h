// What the View menu holds beside the tree: the Symbols window and the zoom of drawn views. Graphical thread only.
#pragma once

namespace numalink {

void buildViewMenu();

}  // namespace numalink
