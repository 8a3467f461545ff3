// What enables, marks and words the commands lies in many rooms; the menus above them are told here that it has
// changed. Graphical thread only.
#pragma once

namespace numalink {

// Called after a change of what is selected, on view or running. Does nothing while there are no menus.
inline void (*commandStatesChanged)() = [] {};

}  // namespace numalink
