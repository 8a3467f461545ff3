// The Record command: what the display shows from then on, as a moving picture in a file. Graphical thread only.
#pragma once

#include "platform/surface.h"

namespace numalink {

void toggleRecording();  // begins, or ends and asks for the file
bool isRecording();

void recordDisplay(const Surface &display);  // another one is shown; does nothing unless recording
void recordingEnds();                        // the run is over: the file is asked for soon, if it was recorded

}  // namespace numalink
