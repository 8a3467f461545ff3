// The programs of a run as cells. Filled before the run starts, then only read. The cells lie in blocks of their own
// that no view shares.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "calculator/item_kinds.h"
#include "emulator/machine/block_search.h"
#include "emulator/machine/cells.h"
#include "platform/bytes.h"

namespace numalink {

inline constexpr std::size_t programCellLimit = 1u << 20;  // cells of all programs and their strings

struct LoadedProgram {
    std::string name;                    // calculator codes, cut at 11
    ItemId item = noItem;                // where it comes from; noItem: not from the library
    std::uint64_t digest = 0;            // of its tokens' bytes: FNV-1a of 64 bits
    const ProgramCell *cells = nullptr;  // always ends in the token 0xFF
    int cellCount = 0;                   // the end mark included
    const int *terminators = nullptr;    // of each cell: the first terminator from there on
    const int *partners = nullptr;       // of each block statement: the cell of its partner, or noPartner
    const ProgramLabels *labels = nullptr;
};

// A program's cells, those of its strings beside them. The string cells point to the latter: moved, never copied.
struct ProgramCells {
    std::vector<ProgramCell> cells;  // the end mark is the last
    std::vector<ProgramCell> stringCells;
};
ProgramCells cellsOfImage(ByteView image);

void programsClear();
int programCount();
const LoadedProgram &loadedProgram(int index);  // 0 to programCount() - 1

// Translates a program image by prePass and appends it. False when the table or the room for cells is full: it is then
// left out, and the caller tells.
bool programAdd(std::string_view name, ByteView image, ItemId item = noItem);

// The cells of an expression that a string holds: its tokens with their digits made numbers.
std::vector<ProgramCell> cellsOfString(const ProgramCell &string);

// The first program whose name matches by sameProgramName, or -1.
int findProgram(std::string_view name);
// The first program named exactly f and the digit, or -1.
int findGraphFunction(int digit);

}  // namespace numalink
