// A run: its threads, the statement loop, the waits, the end. Started and stopped on the graphical thread; what runs,
// runs on run threads, of which one is active.
#pragma once

#include <cstdint>
#include <string_view>

namespace numalink {

enum class RunEnd { running, end, triangle, cursor, input, limit, memory, nothingToRun };

struct RunOptions {
    std::uint64_t statementLimit = 0;  // the run ends after so many; 0: no limit
};

// Starts the first run thread on program 0. machineStart and the loading come before; emulatorRunning is set here.
// False, with nothing started, when there is no program or a run is on.
bool runStart(const RunOptions &options = {});
// Clears emulatorRunning, wakes and joins every run thread, serving its calls to the user interface meanwhile.
// Harmless when none runs.
void runStop();
// Blocks until the run has ended by itself (the command line, tests); serves nothing.
void runWait();
RunEnd runEnded();  // where the last run was when it ended

// Prog: runs the program on a thread of its own and returns when it has ended. Run thread.
void callProgram(std::string_view name);

}  // namespace numalink
