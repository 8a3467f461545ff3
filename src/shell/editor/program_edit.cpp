#include "shell/editor/program_edit.h"

#include "shell/editor/program_clipboard.h"

namespace numalink {

QMimeData *ProgramEdit::createMimeDataFromSelection() const { return programSelection(); }
bool ProgramEdit::canInsertFromMimeData(const QMimeData *source) const { return canPasteProgram(source); }
void ProgramEdit::insertFromMimeData(const QMimeData *source) { pasteProgram(source); }

}  // namespace numalink
