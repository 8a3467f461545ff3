// Opening the library at the start, with the question what to do when it is gone or can't be used. Graphical thread.
#pragma once

namespace numalink {

// False when the program must end at once (told, or the user's choice).
bool openLibraryAtStart();

}  // namespace numalink
