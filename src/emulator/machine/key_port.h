// Where a run's keys come from. The default reads keyCode as the window leaves it; the command line and tests put in
// keys of their own before a run starts. Run thread.
#pragma once

namespace numalink {

inline constexpr int noKeyAnyMore = -1;

struct KeyPort {
    // What GetKey yields.
    int (*getKey)();
    // What a pass of a wait (for EXE, the graph cursor, number input) finds; it may put a key into keyCode, too.
    // noKeyAnyMore ends the run where it stands, as a stop does.
    int (*waitKey)();
};

extern const KeyPort windowKeys;  // both give keyCode
extern KeyPort keyPort;           // windowKeys unless a front end has put in its own

}  // namespace numalink
