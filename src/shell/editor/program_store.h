// How an edited program gets back into the library, and what happens when it can't. Graphical thread only.
#pragma once

#include "store/item_store.h"

namespace numalink {

// The program on view, as it was opened: where it goes when its item has gone meanwhile.
void takeOpenedProgram(const StoredItem &item);
void forgetOpenedProgram();

// Behind each edit: soon the text is written as a draft, which goes once it is stored.
void saveDraftSoon();

// The bytes of the text on view as it stands, without a checksum; of a line that can't be stored, what can be read.
Bytes imageOnView();

// Stores the text on view. False with the cause told where it can't be: a character without a code (a box names
// the line, the caret is put on the character), or a failed write. An item that has gone comes back under a free name.
bool storeEditedProgram();

enum class Leaving { view, program, atOnce };

// Stores an edited program, or asks: go back, discard changes, and at the end of the program keep as draft. False to go
// back. At once nothing is asked: what can't be stored becomes a draft.
bool leaveProgram(Leaving leaving);

// Ahead of commands that work on the stored program. Discarding shows the stored text again.
bool storeProgramFirst();

}  // namespace numalink
