// What the run thread asks at each statement: breakpoints as the loaded programs have them, and the search through what
// has run before. Run thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "debugger/breakpoints.h"
#include "debugger/debugger.h"
#include "debugger/values.h"
#include "debugger/watches.h"

namespace numalink {

// Cells of a program, the end excluded.
struct CellRange {
    int program = -1, first = 0, end = 0;
    bool holds(int inProgram, int cell) const { return inProgram == program && cell >= first && cell < end; }
};
CellRange lineAround(const DebugPlace &place);  // the cells of its line

struct StatementStop {
    CellRange cells;
    int id = 0;
    std::uint64_t count = 0;
    std::optional<WatchExpression> condition;
};
struct DataStop {
    int id = 0;
    DebugTarget target;
    std::uint64_t count = 0;
    std::optional<WatchExpression> condition;
    std::optional<ComplexValue> last;
};

// The breakpoints that count, and where a run to a place ends.
struct Stops {
    std::uint64_t version = 0;
    std::vector<std::vector<std::uint8_t>> marks;
    std::vector<const std::uint8_t *> markPointers;
    std::vector<StatementStop> atStatements;
    std::vector<DataStop> ofData;
    CellRange goal;
};

bool stopsAreOld(const Stops &stops);
void stopsAdopt(Stops &stops);  // the breakpoints as they are, if they have changed
void stopsSetGoal(Stops &stops, const DebugPlace &place);
void stopsClearGoal(Stops &stops);
void stopsLookAtData(Stops &stops);  // changes count from here on

struct StopFound {
    StopReason reason = StopReason::none;
    int breakpoint = 0;
    std::string detail;
};
// Whether one stops ahead of this statement; hits are counted. A way that is gone once more counts none twice.
StopFound stopsFind(Stops &stops, int program, int cell);
StopFound stopsFindOfData(Stops &stops);  // what has changed alone

void hitsForget();                            // another run
void hitsShow(std::uint64_t statement);       // those up to there, which was gone back to
void hitsCutBehind(std::uint64_t statement);  // the run goes another way from there

// The way back to a statement, or to the last one that is asked for.
struct Search {
    bool isGoal = false;  // to the statement goal, which is known
    std::uint64_t goal = 0;
    DebugBack back = DebugBack::statement;
    int depth = 0;                      // of calls, where it began
    std::optional<DebugTarget> target;  // of a change
    std::uint64_t origin = 0;           // where it began
    bool isGivenUp = false;             // it goes there again
    std::uint64_t limit = 0;            // statements from here on have been looked at
    bool takesLimit = false;            // but this one
    std::optional<std::uint64_t> hit;   // the last one found
    StopReason reason = StopReason::step;
    int breakpoint = 0;
    // The statement before in this stretch, and what the target held ahead of it.
    std::uint64_t before = 0;
    std::optional<ComplexValue> value;
};
void searchBegin(Search &search);  // at an image
void searchLook(Search &search, Stops &stops, int program, int cell, std::uint64_t statement);

// The image from which the search goes on, behind the stretch from this one on.
std::size_t searchFurther(Search &search, std::size_t image);
std::size_t searchGiveUp(Search &search);

// A number into its place, without a word to the record.
DebugChange targetSet(const DebugTarget &target, const std::string &number);

}  // namespace numalink
