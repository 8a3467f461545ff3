// numalink-cli run: the keys of a run, as options or as a file of recorded keys. Graphical thread.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "calculator/item_kinds.h"
#include "emulator/run/scripted_run.h"

namespace numalink {

struct RunKeyOptions {
    std::vector<std::string> keys, getKeys;  // 31, or 0*120: so many in a row
    std::string playFile, recordFile;
};

void declareRunKeys(CLI::App &command, RunKeyOptions &options);

// The keys into the script; those of a file with the settings and the beginning that belong to them. What can't be
// done, or empty. That they are another program's is told.
std::string takeRunKeys(const RunKeyOptions &options, ItemId item, RunScript &script);

// Behind the run: those that it has taken, into the file asked for. False when it wasn't written (told).
bool writeRunKeys(const RunKeyOptions &options, ItemId item, bool mayReplace);

}  // namespace numalink
