// All that a run has made of the machine, kept so that it can be brought back to the bit: values, arrays, screens, the
// programs in progress. Parts that are alike in successive images are kept once. Run thread.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "emulator/machine/arrays.h"
#include "emulator/machine/graph_memory.h"
#include "emulator/machine/statistics_memory.h"
#include "emulator/run/run_calls.h"

namespace numalink {

inline constexpr std::size_t imagePageSize = 2048;  // bytes

struct ImagePage {
    ImagePage();
    ~ImagePage();
    ImagePage(const ImagePage &) = delete;
    ImagePage &operator=(const ImagePage &) = delete;
    std::array<std::uint8_t, imagePageSize> bytes;
};

struct KeptGraphs;  // what graphs and sequences are made of

struct MachineImage {
    std::vector<std::shared_ptr<const ImagePage>> pages;
    std::shared_ptr<const KeptGraphs> graphs;
    std::vector<CallPlace> calls;
};

// The same part by part. Pointers to arrays are to rows of the table, which never move.
struct MachineState {
    EmulatorMachine machine;
    PoolRecords pool;
    std::vector<double> elements;
    StatisticsMemory statistics;
    GraphSettings graphs;
    std::array<std::array<char, textColumnCount>, textRowCount> textRows{};
    Surface text, graph, matrices, display;
    std::array<Surface, memoryCount> pictures;
    std::uint64_t workDone = 0;
    std::uint32_t random = 0;
    std::vector<CallPlace> calls;
};

// Between two statements. Pages that haven't changed since the last image was taken or brought back are shared with it.
MachineImage takeImage();
// The machine is as it was when the image was taken; the calls are the caller's to carry on from.
void bringBack(const MachineImage &image);
MachineState stateOf(const MachineImage &image);
// As bringBack; the reports that were kept stay.
void bringBackState(const MachineState &state);
// The next image shares nothing: ahead of a run.
void forgetImages();

std::size_t imageBytes();                             // that all pages take
std::size_t bytesOfImage(const MachineImage &image);  // beside its pages

// A digest of all that a program can see or an owner could, of the programs in progress too. Whatever way a run took to
// a state, it is the same.
std::uint64_t machineDigest();

}  // namespace numalink
