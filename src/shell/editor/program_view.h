// The program on view: opening it, telling whether it was changed, its undo, and the line numbers beside it. Graphical
// thread only.
#pragma once

#include <QString>

#include "calculator/item_kinds.h"
#include "platform/bytes.h"

namespace numalink {

void makeProgramEdit();  // programEdit and lineNumberEdit, once clientArea is there
void connectProgramView();
void forgetProgramView();

// Shows a program as it was left, with the undo of its text, if it was left in this run and is still stored as it was
// then, and else as programToView does.
void openProgram(ItemId id, ByteView image);
// Keeps the text on view, which is stored as this image, to be opened again; of many programs the last ones. The view
// is empty then.
void keepProgram(ItemId id, ByteView image);
void forgetKeptPrograms();  // of a library that goes

// Replaces all text by a program's. It is unchanged then, with nothing to undo and the caret at its start.
void programToView(ByteView image);

// The text on view, lines joined by a line feed.
QString viewToText();

// Whether the text differs from the one that was opened or last stored.
bool programChanged();
void takeReference();  // the text on view is the stored one from now on

// Puts another text in the place of the one on view as an edit: lines that agree at both ends stay as they are.
void replaceProgramText(const QString &text);

// Reads and colours the line of the caret anew; the whole of it when the settings have changed.
void recolourLine();
void recolorProgram();

void putCaretAt(int position);  // or at the end of a shorter text, without a selection, in sight

// Selects a statement of a line, in sight: lines from 1, statements from 0, as colons outside of quotes part them. What
// isn't there leaves the caret.
void selectStatement(int line, int statement);

void undoInProgram();
void redoInProgram();

// The caret stands behind a command that was put in whole: a blank that is typed next is the one that ends it.
void commandPutIn();

// Puts a calculator character in at the selection, as if typed.
void typeSymbol(char code);

void updateLineNumbers();

}  // namespace numalink
