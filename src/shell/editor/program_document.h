// A program in Qt's text document: one code point a calculator code, a block a line, and on each character, as a
// property of its format, the byte that it comes from. Each block remembers the line it was opened with. Colours lie in
// the blocks' layouts only, so that undo knows nothing of them. Graphical thread only.
#pragma once

#include <QString>
#include <QTextBlock>
#include <QTextCursor>

#include "text/view_runs.h"

namespace numalink {

QString qtFromCodes(std::string_view codes);

// The characters of a block, or of a stretch of it, with their origins.
ViewLine lineOfBlock(const QTextBlock &block);

// Puts a line in at the cursor, with its origins and nothing of its surroundings' formats.
void insertLine(QTextCursor &cursor, const ViewLine &line);

// A block whose text is the remembered one reads as that line, whatever has happened to its characters.
LineReading readBlock(const QTextBlock &block, ViewLine &line);
void rememberLine(QTextBlock block, const ViewLine &line);

// Converts what was typed in a block, as a part of the undo step before it. Leaves the text alone where a character is
// no token.
void convertBlock(const QTextBlock &block);

// Colours a block by the settings; no colours with highlighting off.
void colorBlock(const QTextBlock &block);
void colorDocument();
void readColors();  // takes the eight colours and the switch from the settings
void forgetColors();

}  // namespace numalink
