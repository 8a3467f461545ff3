// Blocks of the program on view folded to their first lines. The lines behind are blocks of the document that aren't
// visible: the text knows nothing of it, so that what is copied, stored and undone is whole. Whatever puts the caret
// into hidden lines shows them. A column at the text's left edge has a sign for each. Graphical thread only.
#pragma once

#include <QTextBlock>

namespace numalink {

struct ProgramReading;

void connectFolding();  // makes the column; once programEdit is there
void forgetFolding();
// By the structure as it was read: what opens no block any more has nothing folded.
void foldLines(const ProgramReading &reading);

void foldAtCaret();    // the innermost block around the caret that isn't folded yet
void unfoldAtCaret();  // the one that opens in the line of the caret
void foldAll();
void unfoldAll();
bool someLinesFolded();

void showBlock(const QTextBlock &block);  // unfolds what hides it
void showHiddenCaret();                   // the same for both ends of the selection

void repaintFolding();

}  // namespace numalink
