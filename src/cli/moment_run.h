// Moments of a run on the command line: written to a file, and gone on with.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace numalink {

struct MomentRun {
    std::string save;    // FILE, or FILE@STATEMENTS
    std::string resume;  // a file to go on with

    bool isAsked() const { return !(save.empty() && resume.empty()); }
};

void declareMoment(CLI::App &command, MomentRun &options);

// Behind the loading of a run, and behind followBegin. Empty, or what can't be done; mayReplace as for momentEnd.
std::string momentBegin(const MomentRun &options, bool mayReplace);
// Behind the run, ahead of followEnd: writes the file. False when it wasn't written (told).
bool momentEnd(const MomentRun &options, bool mayReplace);

}  // namespace numalink
