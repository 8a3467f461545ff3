// A run that is saved as it stands, and gone on with: what a moment holds is the last image of the record, and what
// came from outside since; going on repeats that stretch unseen. Commands come from the thread that starts runs.
#pragma once

#include "debugger/moment_form.h"

namespace numalink {

// The run that comes can be saved. Behind its loading, and behind debugBegin where it is followed; debugForget ends it.
void momentsFollow();

// Told with what momentAsk asked for: on the run thread, between two statements or in a wait, or at once where the run
// is stopped by the debugger. Empty: the run has no moment, since it is on its way back, or holds too much. Null:
// nobody is told. Set before the run starts.
extern void (*momentTaken)(const Bytes &moment);
// False when no run is on that can be saved.
bool momentAsk();
void momentAskAt(std::uint64_t statement);  // behind so many statements, of the run that comes; momentTaken once

// Of a run that has ended, or been stopped, as it stood then. Ahead of debugForget. Empty: none.
Bytes momentOfEndedRun();

bool momentFits(const Moment &moment);  // its programs are those that are loaded
// The run that comes begins with the moment, whose programs have to be those that are loaded (changed, if not). Behind
// momentsFollow.
MomentFault momentResume(Moment moment);

}  // namespace numalink
