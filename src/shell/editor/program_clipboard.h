// Copy, paste and drop of program text. Copied text is readable Unicode; inside the program it carries its bytes with
// it. Pasted text may be Unicode, the ASCII spellings, or exchange words. Graphical thread only.
#pragma once

class QMimeData;

namespace numalink {

QMimeData *programSelection();  // of programEdit, for the clipboard or a drag
bool canPasteProgram(const QMimeData *source);
void pasteProgram(const QMimeData *source);  // over the selection, as one undo step

}  // namespace numalink
