// What a new user is asked, once: what to begin with, and which calculator at which port. Graphical thread only.
#pragma once

namespace numalink {

// Shows the window, stores what was chosen and begins with it. Escape begins with an empty library and no port.
void askFirstStart();

}  // namespace numalink
