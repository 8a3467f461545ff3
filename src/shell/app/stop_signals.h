// SIGTERM, SIGINT, SIGHUP and the end of the desktop session end the program as its Exit command does. Graphical thread
// only.
#pragma once

namespace numalink {

void watchStopSignals();
void forgetStopSignals();

}  // namespace numalink
