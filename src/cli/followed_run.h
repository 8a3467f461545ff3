// What a run on the command line tells beside its end: profile, coverage, trace, and values at places.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace numalink {

struct FollowedRun {
    std::string profile, coverage, trace;  // files to write
    std::vector<std::string> breaks;       // PROGRAM:LINE[:STATEMENT]
    std::vector<std::string> watches;      // expressions
    bool replace = false;

    bool isFollowed() const { return !(profile.empty() && coverage.empty() && trace.empty() && breaks.empty()); }
};

void declareFollowed(CLI::App &command, FollowedRun &options);

// Behind the loading of each run. Empty, or what can't be done.
std::string followBegin(const FollowedRun &options);
// Behind the last run: writes the files. False when one wasn't written (told).
bool followEnd(const FollowedRun &options);

}  // namespace numalink
