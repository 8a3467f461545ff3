// The order in which the program comes up and goes down. Graphical thread only.
#pragma once

#include "shell/app/single_copy.h"

namespace numalink {

// Runs the start order, with the files of wish opened at its end. False when the program must end at once: the library
// can't be used (told). Everything is then gone again.
bool startUp(const StartWish &wish = {});

// Leaves the view, closes the library and ends the event loop; does nothing when the view can't be left. With a
// dialog open it raises that dialog instead.
void shutDown();

// The same without a question, for the end of the desktop session and signals: open dialogs are cancelled.
void shutDownAtOnce();

bool shuttingDown();  // from the closing of the library on: whoever waits for an answer does nothing more

// Frees the windows, after the event loop.
void tearDown();

}  // namespace numalink
