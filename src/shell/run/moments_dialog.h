// The moments of the program that runs, else of the selected one, with their pictures. Graphical thread only.
#pragma once

namespace numalink {

// What it saves is the run as it stood when the dialog opened; behind it the run goes on.
void showMoments();

}  // namespace numalink
