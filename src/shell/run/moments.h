// The moments of emulated programs: saving the run that is on into a slot, going on from one, and what is kept of a run
// that is stopped. Graphical thread only.
#pragma once

#include <string>

#include "calculator/item_kinds.h"
#include "debugger/moment_files.h"

namespace numalink {

void connectMoments();  // once the library is open; those of programs that are gone go
void forgetMoments();

// For the start of a run, behind its loading and whoever follows runs: it can be saved, begins with the moment where
// there is one, and else offers to go on where the program was stopped. False when it can't go on from there (told).
bool momentsBegin(ItemId program, const Moment *from);
// Behind a stop: keeps where the run stood, if that is wanted, unless it was at its end, and tells runIsOver.
void keepWhereStopped(ItemId program);

ItemId programOfMoments();  // the one that runs, else the selected one; noItem for none
bool hasProgramOfMoments();
bool canSaveMoment();  // a run is on
void saveMoment();     // into the next free slot; where there is none, it asks whether the oldest may go
void goOnFromNewest();
void goOnFromSlot(ItemId program, int slot);

// What saveMoment saves, asked for ahead of a choice of its place: taken is told with it, empty when the run has none.
void askForMoment(void (*taken)(const Bytes &moment));
bool keepMoment(ItemId program, int slot, const Bytes &moment);  // false when it wasn't kept (told)

std::string slotName(int slot);
std::string momentTimeText(std::uint64_t time);
std::string momentStateText(const KeptMoment &moment);  // its time, or that it can't be read

}  // namespace numalink
