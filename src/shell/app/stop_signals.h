// SIGTERM, SIGINT, SIGHUP and the end of the desktop session end the program. Graphical thread
// only.
#pragma once

namespace numalink {

void watchStopSignals(void (*stop)());  // stop: ends the program without a question
void forgetStopSignals();

}  // namespace numalink
