// How a run ends by itself, and the passes of its waits.
#include <chrono>

#include "emulator/machine/key_port.h"
#include "emulator/machine/pace.h"
#include "emulator/machine/run_observer.h"
#include "emulator/machine/run_waits.h"
#include "platform/clock.h"
#include "platform/lock.h"
#include "platform/time_slice.h"

namespace numalink {

std::atomic<bool> runHalted = false;
std::uint64_t waitMilliseconds = 0;

namespace {

Lock wakeLock;  // so that a wake can't fall between the look and the sleep of a wait
Signal wakeCondition GUARDED_BY(wakeLock);
std::atomic<RunEnd> endCause = RunEnd::running;

}  // namespace

namespace {

// The active run thread's.
std::uint64_t workLimit = 0, workDone = 0;

// Of an expression beside the run.
bool aside = false, gaveUp = false;
std::uint64_t asideLeft = 0;

}  // namespace

void workBegin(std::uint64_t limit) {
    workLimit = limit;
    workDone = 0;
}

bool takeWork() {
    timeSlicePassed();
    if (aside) {
        gaveUp = gaveUp || asideLeft == 0;
        if (!gaveUp) asideLeft--;
        return !gaveUp;
    }
    if (workLimit != 0 && workDone++ >= workLimit) runHalt(RunEnd::limit);
    return workGoesOn();
}

bool workGoesOn() {
    if (observerLook.fromStatement.load(std::memory_order_relaxed) == 0 && !aside) {
        if (const RunObserver *observer = observing()) observer->within();
    }
    return runGoesOn();
}

std::uint64_t workDoneSoFar() { return workDone; }
void workDoneAgain(std::uint64_t done) { workDone = done; }

void beginAside(std::uint64_t evaluations) {
    aside = true;
    gaveUp = false;
    asideLeft = evaluations;
}
bool endAside() {
    aside = false;
    return gaveUp;
}
bool isAside() { return aside; }
void giveUpAside() { gaveUp = true; }

void runHalt(RunEnd cause) {
    RunEnd first = RunEnd::running;
    endCause.compare_exchange_strong(first, cause);
    runHalted = true;
}

void resetRunEnd(RunEnd cause) {
    endCause = cause;
    runHalted = false;
}

RunEnd runEndCause() { return endCause; }

void runWake() {
    const HoldLock hold(wakeLock);
    wakeCondition.notify_all();
}

int waitPassKey(RunEnd where) {
    if (!runGoesOn()) return noKeyAnyMore;
    const RunObserver *observer = observing();
    return observer == nullptr ? takeWaitKey(where) : observer->waitKey(where);
}

int takeGetKey() {
    if (aside) return keyCode;
    const RunObserver *observer = observing();
    return observer == nullptr ? keyPort.getKey() : observer->getKey();
}

std::uint64_t waitTicks() {
    const RunObserver *observer = observing();
    return observer == nullptr ? tickCount() : observer->ticks();
}

int takeWaitKey(RunEnd where) {
    const int key = keyPort.waitKey();
    if (key == noKeyAnyMore) runHalt(where);
    return key;
}

void clearKey(int seen) { keyCode.compare_exchange_strong(seen, 0); }

void waitPassSleep(std::uint64_t milliseconds) {
    if (runRepeats) return;
    waitMilliseconds += milliseconds;
    if (clockPort.sleepMilliseconds != systemClock.sleepMilliseconds) {
        sleepMilliseconds(milliseconds);
        return;
    }
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    HoldLock hold(wakeLock);
    while (runGoesOn() && std::chrono::steady_clock::now() < end) hold.waitUntil(wakeCondition, end);
}

void waitForWake(const std::atomic<bool> &due) {
    HoldLock hold(wakeLock);
    while (runGoesOn() && !due) hold.wait(wakeCondition);
}

void waitPassPace(int units) {
    if (runRepeats) return;
    if (fullSpeed) {
        waitPassSleep(static_cast<std::uint64_t>(units) * 3 / 10);
    } else {
        waitMilliseconds += static_cast<std::uint64_t>(units) * 3 / 10;
        paceSleep(units);
    }
}

}  // namespace numalink
