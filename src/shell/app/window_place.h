// Where the main window stands, and how large it and its panes are, from one run to the next. Graphical thread only.
#pragma once

namespace numalink {

// As the last run left it, moved to where a screen is. Ahead of the window's showing, the settings read.
void restoreWindowPlace();

// While the window is there, once no other thread asks for settings: they are read anew, since another copy may have
// written them, and written only where something has changed.
void rememberWindowPlace();

}  // namespace numalink
