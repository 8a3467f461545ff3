// Where a run's keys come from. The default reads keyCode as the window leaves it; the command line and tests put in
// keys of their own before a run starts. Run thread.
#pragma once

namespace numalink {

struct KeyPort {
    // What GetKey yields.
    int (*getKey)();
    // Called in each pass of a wait (for EXE, the graph cursor, number input), just ahead of its look at keyCode. It
    // may put a key into keyCode. False ends the run where it stands, as a stop does.
    bool (*beforeWaitTest)();
};

extern const KeyPort windowKeys;  // getKey gives keyCode, beforeWaitTest does nothing and gives true
extern KeyPort keyPort;           // windowKeys unless a front end has put in its own

}  // namespace numalink
