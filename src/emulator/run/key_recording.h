// The keys of a run: the window keeps them from the first statement on, so that any run can be played again to the bit,
// and takes them from such a record instead of the keyboard while one is played. Graphical thread, but for keysSpoil.
#pragma once

#include <cstdint>

#include "emulator/machine/key_port.h"
#include "emulator/machine/key_runs.h"
#include "emulator/run/run_beginning.h"

namespace numalink {

struct RunKeys {
    RunBeginning begins;
    KeyRuns waits, getKeys;        // of the passes of waits and of the reads of GetKey
    std::uint64_t statements = 0;  // that had begun by the last of them, or by the end of the run
    bool isCut = false;            // later ones aren't in it: there were too many, or the debugger has gone back
};

// Between machineStart and runStart: the keys of the run that begins are kept, as they come from a port.
void keysBegin(const KeyPort &from = windowKeys);
// The same; the run begins as that of the record did, and has its keys. Behind their end they are the keyboard's.
void keysBeginPlaying(RunKeys played);

RunKeys keysTaken();   // of the run that is on, or of the last one
bool keysArePlayed();  // keys of a record are left

// The run has left the road on which its keys would lead it: those that come aren't kept. Any thread.
void keysSpoil();

}  // namespace numalink
