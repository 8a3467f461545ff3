// Where a run stands, told as an owner counts: program, line, statement of the line. While a run is loaded; any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "calculator/item_kinds.h"
#include "emulator/machine/cells.h"
#include "platform/bytes.h"

namespace numalink {

// A statement. Lines count from 1, statements of a line from 0, as colons part them; both count by the program's
// tokens, so that a line end within a string is none.
struct DebugPlace {
    ItemId item = noItem;  // of the library; noItem for a program from elsewhere
    int program = -1;      // of the run's programs, from 0
    int line = 0;
    int statement = 0;
    friend bool operator==(const DebugPlace &, const DebugPlace &) = default;
};

// Of the cell at which a statement of a loaded program begins, and back: -1 where there is no such statement.
DebugPlace placeOfCell(int program, int cell);
int cellOfPlace(int program, int line, int statement);
// The first loaded program of that item, or of that name (UTF-8), or -1.
int programOfItem(ItemId item);
int programNamed(const std::string &name);
std::string programNameShown(int program);  // UTF-8

// The cells at which the statements of a loaded program begin, in their order: those behind its terminators. What runs
// may begin later in one, behind Then or Else, and counts as that statement.
std::vector<int> statementCells(int program);
// A statement as text, UTF-8, on one line; numbers as short as they read back.
std::string statementText(int program, int cell);
std::string cellsText(const ProgramCell *cells, int count);  // the same of a formula

// A statement of a loaded program as it stands in a text of it that was edited since (program is that of the run, line
// and statement are the text's), and the other way round. Nothing where it isn't there any more.
std::optional<DebugPlace> placeInText(const DebugPlace &place, ByteView image);
std::optional<DebugPlace> placeInRun(const DebugPlace &place, ByteView image);

// "PROGRAM:LINE" or "PROGRAM:LINE:STATEMENT", statements counted from 1; nothing when it names no statement of a loaded
// program.
std::optional<DebugPlace> placeNamed(const std::string &text);

}  // namespace numalink
