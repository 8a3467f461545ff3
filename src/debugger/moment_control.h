// What the commands of moments and the run thread share.
#pragma once

#include <atomic>
#include <memory>

#include "debugger/moments.h"

namespace numalink {

inline constexpr std::uint64_t noMomentAsked = UINT64_MAX;

struct MomentControl {
    std::atomic<bool> isOn = false;  // the run can be saved; set while none is on
    std::atomic<bool> asked = false;
    std::atomic<std::uint64_t> askedAt = noMomentAsked;  // also behind so many statements
    std::unique_ptr<Moment> resume;                      // what the run begins with; the run thread's while one is on
};
extern MomentControl momentControl;

// The moment of a run that stands behind so many statements, or within the one that follows; isWhole: all inputs of the
// record are still to come. Run thread, or any while the run is stopped or over.
Bytes momentNow(std::uint64_t statement, bool isWithin, RunEnd waitsAt, bool isWhole);

// The run thread's side: where a run that is over stood.
struct MomentPlace {
    bool isThere = false;
    std::uint64_t statement = 0;
    RunEnd waitsAt = RunEnd::running;
    bool isWhole = false;
};
MomentPlace momentPlaceOfEnd();

}  // namespace numalink
