// How a run ends by itself, and the passes of its waits.
#include <condition_variable>
#include <mutex>

#include "emulator/key_port.h"
#include "emulator/pace.h"
#include "emulator/run_state.h"
#include "emulator/run_waits.h"
#include "platform/clock.h"

namespace numalink {

std::atomic<bool> runHalted = false;

namespace {

std::mutex wakeMutex;
std::condition_variable wakeCondition;
std::atomic<RunEnd> endCause = RunEnd::running;

}  // namespace

void runHalt(RunEnd cause) {
    RunEnd first = RunEnd::running;
    endCause.compare_exchange_strong(first, cause);
    runHalted = true;
}

void runEndForget(RunEnd cause) {
    endCause = cause;
    runHalted = false;
}

RunEnd runEndCause() { return endCause; }

void runWake() {
    const std::lock_guard held(wakeMutex);
    wakeCondition.notify_all();
}

int waitPassKey(RunEnd where) {
    if (!runGoesOn()) return noKeyAnyMore;
    if (!keyPort.beforeWaitTest()) {
        runHalt(where);
        return noKeyAnyMore;
    }
    return keyCode.load();
}

void clearKey(int seen) { keyCode.compare_exchange_strong(seen, 0); }

void waitPassSleep(std::uint64_t milliseconds) {
    if (clockPort.sleepMilliseconds != systemClock.sleepMilliseconds) {
        sleepMilliseconds(milliseconds);
        return;
    }
    std::unique_lock held(wakeMutex);
    wakeCondition.wait_for(held, std::chrono::milliseconds(milliseconds), [] { return !runGoesOn(); });
}

void waitPassPace(int units) {
    if (fullSpeed) {
        waitPassSleep(static_cast<std::uint64_t>(units) * 3 / 10);
    } else {
        paceWait(units);
    }
}

}  // namespace numalink
