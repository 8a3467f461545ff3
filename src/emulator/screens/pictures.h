// The six picture memories. They last as long as the process. Numbers other than 1 to 6 do nothing. Run thread;
// between runs the graphical thread.
#pragma once

#include "emulator/machine/machine.h"

namespace numalink {

void storePicture(int number);          // a copy of the graph screen
void recallPicture(int number);         // by putPixel over the graph screen, then mode 1
void recallPictureQuietly(int number);  // the same with the mode left alone
Surface *pictureMemory(int number);     // null outside 1 to 6

}  // namespace numalink
