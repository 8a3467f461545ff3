// Statements of the program on view: where one stands in the text, which one the caret is at, and marks on them. Lines
// count from 1, statements of a line from 0, as colons outside of quotes part them. Graphical thread only.
#pragma once

#include <optional>
#include <vector>

namespace numalink {

struct TextRange {
    int from = 0, to = 0;  // characters of the document
};
std::optional<TextRange> rangeOfStatement(int line, int statement);  // nothing where there is no such line

struct TextStatement {
    int line = 1, statement = 0;
};
TextStatement statementAtCaret();

enum class StatementLook {
    next,     // a run stands ahead of it
    calling,  // it has called what runs
    neverRun
};
struct StatementMark {
    int line = 1, statement = 0;
    StatementLook look = StatementLook::next;
};
// In place of the marks before; none: takes them away. A program that is opened has none.
void markStatements(const std::vector<StatementMark> &marks);
void showStatement(int line, int statement);  // in sight, without moving the caret

}  // namespace numalink
