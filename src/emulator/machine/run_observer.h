// Whoever follows a run: asked ahead of statements and told of reports, waits and changes of the screen mode. With none
// a run pays one predictable branch.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "emulator/machine/run_waits.h"
#include "platform/bytes.h"

namespace numalink {

struct RunState;

// What an exchange with the far end of a line came to, and what was received in it.
struct LineOutcome {
    bool isGood = false;
    Bytes head, data;
    friend bool operator==(const LineOutcome &, const LineOutcome &) = default;
};

// All of it is called on the run thread, and no entry may be null.
struct RunObserver {
    // Ahead of the statement at state.position; machine.statementsRun counts those before it. Only where observerAsks
    // says so. It may block, as long as it ends with runGoesOn. False: the statement isn't run, since the run has ended
    // or is to be left (runLeave).
    bool (*beforeStatement)(RunState &state);
    // The run has been left: every program in progress is out, and what it did on its way out is of no account. Puts
    // machine and calls where the run is to go on (run_calls.h); false ends it.
    bool (*goesOnElsewhere)();
    // In a pass of long work within a statement, where observerLook.fromStatement is 0. It may block as
    // beforeStatement.
    void (*within)();
    void (*reported)(const char *text);  // behind each report
    void (*screenModeChanged)(int mode);
    // In the place of takeWaitKey, takeGetKey and the clock, so that they can be kept and given again.
    int (*waitKey)(RunEnd where);
    int (*getKey)();
    std::uint64_t (*ticks)();
    // In the place of an exchange with the far end of a line, for the same.
    LineOutcome (*lineOutcome)(const std::function<LineOutcome()> &exchange);
};

// Set on any thread. A run sees it within a statement that has no plan, a pass of a wait or 4,096 statements. The
// observer must outlast the run.
extern std::atomic<const RunObserver *> runObserver;
inline const RunObserver *observing() { return runObserver.load(std::memory_order_acquire); }

// Which statements the observer is asked ahead of: from a count of statements on, and those whose first cell has a
// mark. Run thread, or any while no run is on or the observer blocks.
struct ObserverLook {
    std::atomic<std::uint64_t> fromStatement = 0;  // of machine.statementsRun; any thread may set it to 0: at once
    const std::uint8_t *const *marks = nullptr;    // of each program, of each cell: not 0: ask. Null: no marks
};
extern ObserverLook observerLook;

inline bool observerAsks(int program, int cell) {
    return machine.statementsRun >= observerLook.fromStatement.load(std::memory_order_relaxed) ||
           (observerLook.marks != nullptr && observerLook.marks[program][cell] != 0);
}

// Leaves every program in progress, as a stop does, for goesOnElsewhere to be asked then. Run thread, within the
// observer.
void runLeave();
bool runIsLeft();
void runLeftBehind();  // the runner's: all are out

}  // namespace numalink
