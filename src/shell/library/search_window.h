// Searching the library, with what a replacement would make of each place. Its window stays open beside the main one.
// Graphical thread only.
#pragma once

namespace numalink {

void showSearchWindow();
void searchLibraryChanged();  // the places found are of a library that goes
void forgetSearchWindow();

}  // namespace numalink
