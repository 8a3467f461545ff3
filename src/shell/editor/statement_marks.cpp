#include "shell/editor/statement_marks.h"

#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>

#include "shell/editor/folding.h"
#include "shell/editor/program_document.h"
#include "shell/editor/text_marks.h"
#include "shell/parts/color_contrast.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/own_colors.h"

namespace numalink {

namespace {

// The characters of a line at which its statements end: its colons, and its end.
std::vector<int> statementEnds(const QTextBlock &block) {
    std::vector<int> ends;
    ViewLine text;
    bool inString = false;
    for (const ViewToken &token : readBlock(block, text).tokens) {
        const std::uint8_t code = token.length == 1 ? token.bytes[0] : 0;
        if (code == '"') inString = !inString;
        if (code == ':' && !inString) ends.push_back(static_cast<int>(token.from));
    }
    ends.push_back(block.length() - 1);
    return ends;
}

// Told by shape as well: the next one has a ground, a calling one a line of dashes below, one that never ran a dotted
// one, and is as faint as can still be read.
QTextCharFormat formatOf(StatementLook look) {
    const QPalette &palette = programEdit->palette();
    QTextCharFormat format;
    switch (look) {
        case StatementLook::next:
            format.setBackground(ownColor(OwnColor::nextStatement, palette));
            format.setForeground(readableOn(format.background().color(), palette.color(QPalette::Text)));
            break;
        case StatementLook::calling:
            format.setUnderlineStyle(QTextCharFormat::DashUnderline);
            format.setUnderlineColor(palette.color(QPalette::Text));
            break;
        case StatementLook::neverRun:
            format.setForeground(
                readableOn(palette.color(QPalette::Base), palette.color(QPalette::Disabled, QPalette::Text)));
            format.setUnderlineStyle(QTextCharFormat::DotLine);
            break;
    }
    return format;
}

}  // namespace

std::optional<TextRange> rangeOfStatement(int line, int statement) {
    const QTextBlock block = programEdit->document()->findBlockByNumber(line - 1);
    if (!block.isValid()) return std::nullopt;
    const std::vector<int> ends = statementEnds(block);
    const auto wanted = static_cast<std::size_t>(statement);
    const bool isThere = wanted < ends.size();
    const int start = wanted == 0 ? 0 : (isThere ? ends[wanted - 1] : ends.size() > 1 ? ends[ends.size() - 2] : -1) + 1;
    return TextRange{block.position() + start, block.position() + (isThere ? ends[wanted] : ends.back())};
}

TextStatement statementAtCaret() {
    const QTextCursor cursor = programEdit->textCursor();
    TextStatement found{.line = cursor.blockNumber() + 1, .statement = 0};
    for (const int end : statementEnds(cursor.block()))
        if (end < cursor.positionInBlock()) found.statement++;
    return found;
}

void markStatements(const std::vector<StatementMark> &marks) {
    QList<QTextEdit::ExtraSelection> selections;
    for (const StatementMark &mark : marks) {
        const std::optional<TextRange> range = rangeOfStatement(mark.line, mark.statement);
        if (!range) continue;
        QTextCharFormat format = formatOf(mark.look);
        format.setProperty(QTextFormat::FullWidthSelection, range->from == range->to);
        selections << textMark(range->from, range->to, format);
    }
    setTextMarks(MarkLayer::statements, std::move(selections));
}

void showStatement(int line, int statement) {
    const std::optional<TextRange> range = rangeOfStatement(line, statement);
    if (!range) return;
    QTextCursor place(programEdit->document());
    place.setPosition(range->from);
    showBlock(place.block());
    const QRect where = programEdit->cursorRect(place);
    const QRect room = programEdit->viewport()->rect();
    if (room.contains(where)) return;
    // Scrolls by lines: to a third of the height.
    const int lines = room.height() / std::max(1, where.height());
    programEdit->verticalScrollBar()->setValue(std::max(0, place.block().firstLineNumber() - lines / 3));
    const QRect now = programEdit->cursorRect(place);
    QScrollBar *across = programEdit->horizontalScrollBar();
    if (now.left() < 0 || now.left() > room.width()) across->setValue(across->value() + now.left() - room.width() / 3);
}

}  // namespace numalink
