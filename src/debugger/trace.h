// What a run does, statement by statement, for whoever writes it down. Called on the run thread; set between runs. A
// road of the run is told once, as it is first taken.
#pragma once

namespace numalink {

struct DebugTrace {
    void (*statement)(int program, int cell);  // it comes next
    void (*report)(const char *text);
    void (*screenMode)(int mode);
};
extern const DebugTrace *debugTrace;  // null: nobody

}  // namespace numalink
