// The Record command: what the display shows from then on, with the key pad or without, as a moving picture in a file.
// Graphical thread only.
#pragma once

#include <QString>

#include "platform/surface.h"

namespace numalink {

void toggleRecording();  // begins, or ends and asks for the file
bool isRecording();
QString recordingWords();  // how long and how large it is

bool recordsKeypad();
void toggleRecordsKeypad();  // for the recordings that begin from then on

void recordDisplay(const Surface &display);  // another one is shown; does nothing unless recording
void recordHeldKey();                        // a key of the key pad went down or up
void recordingEnds();                        // the run is over: the file is asked for soon, if it was recorded

}  // namespace numalink
