// The text on view as a program: its bytes, its structure and its problems, read again a moment after a change. What
// needs no moment asks for it at once. Graphical thread only.
#pragma once

#include <vector>

#include "language/problems.h"
#include "language/program_text.h"

namespace numalink {

struct ProgramReading {
    ProgramText text;
    ProgramStructure structure;
};
// Of the document as it is.
const ProgramReading &programReading();
// The last one that was made, for what has to be there at once; of an older text perhaps.
const ProgramReading &programReadingBefore();

std::size_t byteAtPosition(const ProgramReading &reading, int position);
int positionOfByte(const ProgramReading &reading, std::size_t at);
struct TextStretch {
    int from = 0, to = 0;  // characters of the document
};
TextStretch stretchOfTokens(const ProgramReading &reading, std::size_t first, std::size_t count);

// As they were found last; of an older text perhaps.
const std::vector<Problem> &problemsOnView();
const std::vector<Problem> &problemsNow();  // of the document as it is, for what acts on their places
// Names of the programs of the folder, calculator codes, its own too; read as a program is opened.
const std::vector<std::string> &programsOfFolder();

void programTextChanged();  // by whatever changes the document
void programTextOpened();   // another document, or another item's text
void forgetProgramReading();

// For who shows what was read: a moment after a change, and half a second later when the problems are found.
inline void (*readingChanged)() = [] {};
inline void (*problemsChanged)() = [] {};

}  // namespace numalink
