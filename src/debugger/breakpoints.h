// Where runs are to stop. One list a process, kept beside the library (breakpoint_file.h). Each breakpoint remembers
// the statement that it stands at, so that it finds it again after an edit. Any thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "debugger/places.h"
#include "debugger/statement_match.h"
#include "platform/bytes.h"

namespace numalink {

// As a statement it has the place and the digests of where it stands in its item's text; not seen yet with own 0.
struct Breakpoint : KnownStatement {
    int id = 0;  // from 1, never given twice in a process
    bool enabled = true;
    bool isLost = false;  // its statement is gone from the program; it stops nothing
    // At a statement: of this item. Else of data.
    ItemId item = noItem;
    std::string program;      // UTF-8; the name where item is noItem
    std::string target;       // stops when this changes: a name of values.h; empty: at a statement
    std::string condition;    // an expression that must be other than 0; empty: always
    std::uint64_t count = 0;  // stops from this hit on; 0 and 1: from the first
    std::uint64_t hits = 0;   // in this run

    bool isOfData() const { return !target.empty(); }
};

std::vector<Breakpoint> breakpoints();
// What keeps an expression from being a condition, in the user's language; empty: nothing. Its value is looked at too,
// but for a run that goes on meanwhile, which tells what is wrong where the condition is met. While no run is on, the
// machine is started anew for it. On the thread of the commands.
std::string conditionFault(const std::string &condition);
// Adds it (id, hits and digests are set here) and gives its id; or 0 for what has neither line nor target, whose
// target isn't known, or whose condition has a fault.
int breakpointAdd(Breakpoint breakpoint);
bool breakpointChange(const Breakpoint &breakpoint);  // the one of its id; false as above
void breakpointRemove(int id);
void breakpointsClear();
// Sets one at the place, or removes those that stand there; the id of a new one, else 0.
int breakpointToggle(ItemId item, int line, int statement);
std::vector<Breakpoint> breakpointsOfItem(ItemId item);
// All at once, with the ids that they have or new ones for 0: from a file. What is wrong with a condition is told where
// it is met, so that none is lost.
void breakpointsSet(std::vector<Breakpoint> list);

// The program of that item holds this image now: its breakpoints look for their statements and move there, or are lost.
// True when any has changed. Called when a view opens or has stored, and ahead of each run.
bool breakpointsFollow(ItemId item, ByteView image);
void breakpointsFollowLoaded();           // the same for all programs of the run that is loaded
void breakpointsForgetItem(ItemId item);  // it is deleted

// The run's: how often it has come there, as far as it stands now; a new run counts anew.
void breakpointSetHits(int id, std::uint64_t hits);
void breakpointsCountAnew();

// Grows with each change of the list, hits excluded.
std::uint64_t breakpointsVersion();
// Called after each change, on the thread that made it. Null: nobody.
extern void (*breakpointsChanged)();

}  // namespace numalink
