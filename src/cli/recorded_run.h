// numalink-cli run --record: what the display shows, as a moving picture.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>

namespace numalink {

struct RecordedRun {
    std::string file;
    int zoom = 2;
    std::uint64_t statements = 0;  // a frame; 0: at the calculator's pace
    bool keypad = false;           // below the display, with the key that is held
};

void declareRecorded(CLI::App &command, RecordedRun &options);

// What can't be done, or empty.
std::string recordFault(const RecordedRun &options);
// Behind the loading of a run, and behind its end. False when the file wasn't written, which has been told.
void recordBegin(const RecordedRun &options);
bool recordEnd(const RecordedRun &options, bool mayReplace);

}  // namespace numalink
