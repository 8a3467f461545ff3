// The files of tests/runs: what a program is and what it needs, read and run. How they are written stands in
// tests/runs/README.md.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "emulator/run/scripted_run.h"
#include "platform/clock.h"

namespace numalink {

using Lines = std::vector<std::string>;

std::string firstWord(const std::string &line);
std::string behindFirstWord(const std::string &line);
Lines wordsOf(const std::string &line);
std::string joined(const Lines &lines, const char *between);

// By keyword the lines that follow it, after what stands behind it; what may come several times has its operand with
// the keyword: "set FullSpeed 0", "program MAIN", "list 1/2 = 1 2 3", "dots text".
struct RunFile {
    std::vector<std::pair<std::string, Lines>> sections;

    const Lines *find(const std::string &keyword) const {
        for (const auto &[key, lines] : sections)
            if (key == keyword) return &lines;
        return nullptr;
    }
    std::string line(const std::string &keyword, const std::string &otherwise) const {
        const Lines *lines = find(keyword);
        if (lines == nullptr) return otherwise;
        return lines->empty() ? "" : lines->front();
    }
    // The operands of a keyword that may come several times, and their lines.
    std::vector<std::pair<std::string, Lines>> all(const std::string &keyword) const {
        std::vector<std::pair<std::string, Lines>> found;
        for (const auto &[key, lines] : sections)
            if (firstWord(key) == keyword) found.emplace_back(behindFirstWord(key), lines);
        return found;
    }
};

RunFile readRunFile(const std::string &path);
void takeLine(RunFile &file, const std::string &line);
std::vector<std::string> runFiles(const char *folder);  // their paths, sorted

// A machine as in a fresh process, with the settings of the file.
void freshMachine(const RunFile &file);
RunScript scriptOf(const RunFile &file);
bool loadPrograms(const RunFile &file);
RunReport runOf(const RunFile &file);

// Tables and fonts, once a process.
void prepareRuns();

// Waits for keys that a script puts in at once needn't be slept through.
struct RunClock {
    RunClock() {
        clockPort.sleepMilliseconds = [](std::uint64_t) {};
    }
    ~RunClock() { clockPort = systemClock; }
};

}  // namespace numalink
