// A tour through the program in its own window: step by step with what is to be done, which the reader does or has done
// for him. It has a library of its own; when it is left, at any step, the user's is open again as it was. Graphical
// thread only.
#pragma once

namespace numalink {

void startTour();  // the Tour command; the tour that is on is shown again
bool tourIsOn();
void forgetTour();  // at the program's end, once the library is closed: settings as they were, the tour's library gone

}  // namespace numalink
