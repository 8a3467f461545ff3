// Texts that could not be stored when the program ended: files beside the library, offered at the next start. Graphical
// thread only.
#pragma once

#include <QString>

#include "store/item_store.h"

namespace numalink {

// Writes the text of an item; over the draft that is open, else into the first free file. False when it can't.
bool keepDraft(const ItemEntry &item, const QString &text);
void releaseDraft();  // the open draft is left as it lies, to be offered again
void forgetDraft();   // the open draft's text is stored or not wanted: its file goes

std::string draftFolder();

// Asks for each draft that lies there: open, delete, or ask again next time. The first that is opened ends the
// questions.
void offerDrafts();

}  // namespace numalink
