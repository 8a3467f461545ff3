#include "emulator/machine/run_observer.h"

namespace numalink {

std::atomic<const RunObserver *> runObserver = nullptr;
ObserverLook observerLook;

namespace {

bool isLeft = false;  // run thread

}  // namespace

void runLeave() {
    isLeft = true;
    runHalted = true;
}

bool runIsLeft() { return isLeft; }

void runLeftBehind() {
    isLeft = false;
    runHalted = runEndCause() != RunEnd::running;
}

}  // namespace numalink
