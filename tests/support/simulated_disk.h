// A disk behind the file port that remembers every step, and shows what it could hold had the power gone after any of
// them: what wasn't synced is there, absent, in another order, or torn into sectors. Any of its operations can be made
// to fail as well.
#pragma once

#include <map>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "platform/bytes.h"
#include "platform/file_port.h"

namespace numalink {

using Random = std::mt19937;

// Names in a folder and the files they stand for, by number.
struct DiskImage {
    std::map<std::string, int> names;
    std::map<int, Bytes> files;
};

enum class DiskAction { write, cut, sync, failedSync, create, remove, rename, syncFolder };

struct DiskStep {
    DiskAction action;
    int file;
    std::uint64_t offset;  // or size
    Bytes bytes;
    std::string name, newName;
};

struct SimulatedDisk {
    DiskImage start;              // on the disk for sure
    DiskImage now;                // as programs see it
    std::vector<DiskStep> steps;  // from start to now
    std::map<int, int> openFiles;
    bool dead = false;    // the power is off: nothing reaches the disk
    int operations = 0;   // of any sort so far, reads included
    int failingFrom = 0;  // the first of them that fails, counted from 1; 0 for none
    int lastSync = 0;     // which of them was the last sync of a file
    int failingCount = 0;
    bool remembers = true;  // the steps
};
inline SimulatedDisk simulatedDisk;

// What the file of this name holds now, to read or to put in; an empty one where there was none.
Bytes &diskFile(const std::string &path);

// Holds this image, with nothing open, no steps and no failures.
void diskLoad(const DiskImage &image);

// What that disk can hold when the power goes after these first steps.
DiskImage diskAfterCrash(const SimulatedDisk &of, std::size_t stepCount, Random &random);

enum class Steps { remembered, forgotten };

// In place of the system's files for the life of the object, from an empty disk. Without steps it is fast.
struct SimulatedFiles {
    explicit SimulatedFiles(Steps steps = Steps::remembered);
    ~SimulatedFiles();
    SimulatedFiles(const SimulatedFiles &) = delete;
    SimulatedFiles &operator=(const SimulatedFiles &) = delete;
};

}  // namespace numalink
