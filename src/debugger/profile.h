// Where a run's time goes: of each statement how often it ran and what the calculator would take for it, by the table
// of the pace. Counts are exact: their sum is the number of statements that ran while the profile was on, each road of
// the run counted once as it was first taken.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "debugger/places.h"

namespace numalink {

struct ProfileRow {
    DebugPlace place;
    int cell = 0;
    std::uint64_t count = 0;
    std::uint64_t paceUnits = 0;  // of 0.3 ms on the calculator
};
inline double profileMilliseconds(std::uint64_t paceUnits) { return static_cast<double>(paceUnits) * 3 / 10; }

struct ProfileReport {
    std::vector<ProfileRow> rows;  // every statement of every program, in their order; never run ones with 0
    std::uint64_t count = 0, paceUnits = 0;
};

// Ahead of a run or in it, on the thread of the commands. A profiled run goes without plans.
void profileStart();
void profileStop();
bool profileIsOn();
// A copy as it stands; any thread.
ProfileReport profileReport();

std::string profileAsText(const ProfileReport &report);  // the costliest first, with shares
std::string profileAsJson(const ProfileReport &report);  // one object; see docs/formats.md
std::string coverageAsText(
    const ProfileReport &report);  // each program's statements with their counts, and the shares run

}  // namespace numalink
