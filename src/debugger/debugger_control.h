// What the two sides of the debugger share: the commands, and the run thread that follows the run. What the lock guards
// belongs to both; all else of the run thread's side may be touched by a command while the run is stopped.
#pragma once

#include <atomic>
#include <cstdint>

#include "debugger/debugger.h"
#include "debugger/following.h"
#include "emulator/machine/run_observer.h"
#include "platform/lock.h"

namespace numalink {

struct DebugCommand {
    enum class Sort { step, search } sort = Sort::step;
    DebugStep step = DebugStep::onward;
    DebugPlace place;  // to stop at too; program -1: none
    Search search;
};

struct DebugControl {
    Lock lock;
    DebugState state GUARDED_BY(lock) = DebugState::off;
    DebugStop stop GUARDED_BY(lock);
    std::uint64_t stops GUARDED_BY(lock) = 0;  // so far
    DebugOptions options GUARDED_BY(lock);
    DebugCommand command GUARDED_BY(lock);
    std::atomic<bool> commandDue = false, pauseWanted = false;
    std::atomic<RunEnd> waitsAt = RunEnd::running;
    std::atomic<std::uint64_t> optionsVersion = 1;
};
extern DebugControl control;

// Whatever is asked for from outside is seen ahead of the next statement, or in the next pass of a wait.
inline void drawAttention() { observerLook.fromStatement = 0; }

// The run thread's side.
extern const RunObserver followingObserver;
void followAnew(bool stopsAtEntry);  // the next run; none is on
// Of a stopped run: it stands at the end of its record, and goes on as a new one; what was told up to a count of
// statements isn't told again.
void followLive(std::uint64_t toldUpTo);

}  // namespace numalink
