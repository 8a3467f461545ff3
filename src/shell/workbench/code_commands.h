// Moving about in programs and changing them by what they mean: problems and their mends, names and their uses.
// Graphical thread only.
#pragma once

#include <cstddef>

#include "calculator/item_kinds.h"

namespace numalink {

void completeAtCaret();
void explainAtCaret();   // the signature of the command that the caret is in, or takes it away
void mendAtCaret();      // the problem at the caret, or the first of its line, where a mend is sure
void goToNextProblem();  // behind the caret, and from the start again

void goToDefinition();  // of the label or program whose name the caret is at
void goBack();          // to where one of these has left from
void goForward();
bool canVisitBack();
bool canVisitForward();
void findUses();       // of the name at the caret, in the pane
void renameAtCaret();  // a label with all its jumps; a program with all calls of its folder

// Selects a stretch of bytes of the text on view, in sight; where it came from can be gone back to.
void showBytes(std::size_t at, std::size_t length);
void showInItem(ItemId item, std::size_t at, std::size_t length);
void forgetCodeCommands();

}  // namespace numalink
