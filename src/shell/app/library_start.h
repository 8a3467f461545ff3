// How the library is opened: as it is, from a copy, or begun anew, as the user wishes. Graphical thread only.
#pragma once

#include "store/item_store.h"
#include "telling/texts.h"

namespace numalink {

// The library of the library folder, which is made where it is missing. Where a copy may take the place of one that is
// lost or damaged, the user is asked, and declines by the button of that text. False when it can't be used (told).
bool openLibraryFolder(WhenEmptied whenEmptied, Text refusal);

// The same at the start, where that ends the program, which is told too.
bool openLibraryAtStart();

// With the earlier forms beside it. Harmless when closed.
void closeLibrary();

void tellLibrary();  // in the status bar: which one is open, and whether it can be written

}  // namespace numalink
