// Copy, paste and drop of program text. Copied text is readable Unicode; inside the program it carries its bytes with
// it. Pasted text may be Unicode, the ASCII spellings, or exchange words. Graphical thread only.
#pragma once

#include "platform/bytes.h"

class QMimeData;

namespace numalink {

QMimeData *programSelection();  // of programEdit, for the clipboard or a drag
bool canPasteProgram(const QMimeData *source);
void pasteProgram(const QMimeData *source);  // over the selection, as one undo step

void insertTokens(ByteView tokens);  // over the selection as well; programEdit can be written

}  // namespace numalink
