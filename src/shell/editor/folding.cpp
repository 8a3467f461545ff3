// Which lines fold is asked of the structure each time; that a line is folded is remembered by its block. So folds
// stay with their lines while others are edited, and with a document that is left and opened again.
#include "shell/editor/folding.h"

#include <QAbstractTextDocumentLayout>
#include <QAccessible>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QTextLayout>
#include <algorithm>
#include <vector>

#include "shell/editor/block_column.h"
#include "shell/editor/block_memory.h"
#include "shell/editor/line_numbers.h"
#include "shell/editor/program_edit.h"
#include "shell/editor/program_reading.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr int columnWidth = 12, signSize = 7;  // pixels

QWidget *column = nullptr;  // the edit's

// Blocks of the document by number. The one that closes stays in sight, as the one that opens does.
struct FoldRange {
    int opens = 0, closes = 0;

    bool hides(int block) const { return block > opens && block < closes; }
    bool holds(int block) const { return block >= opens && block <= closes; }
};

// By rising blocks; outer ones ahead of those within.
std::vector<FoldRange> rangesOf(const ProgramReading &reading) {
    std::vector<int> blockOfLine(reading.structure.lineStarts.size(), -1);
    for (std::size_t number = 0; number < reading.text.lines.size(); number++) {
        int &block = blockOfLine[lineOf(reading.structure, reading.text.lines[number].at)];
        if (block < 0) block = static_cast<int>(number);
    }
    std::vector<FoldRange> ranges;
    for (const FoldableLines &lines : foldableLines(reading.structure)) {
        const FoldRange range{blockOfLine[lines.opens], blockOfLine[lines.closes]};
        if (range.opens >= 0 && range.closes > range.opens + 1) ranges.push_back(range);
    }
    return ranges;
}

std::vector<FoldRange> rangesNow() { return rangesOf(programReading()); }

QTextBlock blockAt(int number) { return programEdit->document()->findBlockByNumber(number); }
bool isFolded(const FoldRange &range) { return blockMemory(blockAt(range.opens)).folded; }

void setFolded(const FoldRange &range, bool folded) {
    const QTextBlock block = blockAt(range.opens);
    BlockMemory memory = blockMemory(block);
    memory.foldable = true;
    memory.folded = folded;
    setBlockMemory(block, memory);
}

// A hidden block has no lines for the scroll bar either.
bool setVisible(QTextBlock block, bool visible) {
    if (block.isVisible() == visible) return false;
    block.setVisible(visible);
    block.setLineCount(visible ? std::max(1, block.layout()->lineCount()) : 0);
    return true;
}

void tellHiddenLines() {
    int hidden = 0;
    for (QTextBlock block = programEdit->document()->begin(); block.isValid(); block = block.next())
        hidden += block.isVisible() ? 0 : 1;
    programEdit->setAccessibleDescription(hidden > 0 ? textOf(Text::foldedCount, {std::to_string(hidden)}) : QString());
}

// The document's size counts lines: the scroll bars follow it.
void layOutAnew() {
    auto *layout = programEdit->document()->documentLayout();
    Q_EMIT layout->documentSizeChanged(layout->documentSize());
    Q_EMIT layout->update();
    tellHiddenLines();
    repaintFolding();
    repaintLineNumbers();
}

void applyRanges(const std::vector<FoldRange> &ranges) {
    std::size_t next = 0;
    int hiddenUpTo = 0;  // the first block that is in sight again
    bool changed = false;
    for (QTextBlock block = programEdit->document()->begin(); block.isValid(); block = block.next()) {
        const int number = block.blockNumber();
        const BlockMemory before = blockMemory(block);
        BlockMemory memory = before;
        memory.foldable = next < ranges.size() && ranges[next].opens == number;
        memory.folded = memory.foldable && before.folded;
        changed = setVisible(block, number >= hiddenUpTo) || changed;
        if (memory.folded) hiddenUpTo = std::max(hiddenUpTo, ranges[next].closes);
        if (memory.foldable) next++;
        if (memory == before) continue;
        setBlockMemory(block, memory);
        changed = true;
    }
    if (changed) layOutAnew();
}

void unfoldAround(int number, const std::vector<FoldRange> &ranges) {
    for (const FoldRange &range : ranges)
        if (range.hides(number) && isFolded(range)) setFolded(range, false);
}

// A caret among lines that are to be hidden goes to the line that stays.
void leaveHiddenLines(const std::vector<FoldRange> &ranges) {
    QTextCursor cursor = programEdit->textCursor();
    const int anchor = programEdit->document()->findBlock(cursor.anchor()).blockNumber();
    const auto outer = std::ranges::find_if(ranges, [&](const FoldRange &range) {
        return isFolded(range) && (range.hides(cursor.blockNumber()) || range.hides(anchor));
    });
    if (outer == ranges.end()) return;
    const QTextBlock block = blockAt(outer->opens);
    cursor.setPosition(block.position() + block.length() - 1);
    programEdit->setTextCursor(cursor);
}

// Read out by a screen reader, too.
void announce(Text text, const std::vector<std::string> &arguments = {}) {
    statusLine(StatusPart::item, text, arguments);
    QAccessibleEvent event(itemField, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

void announceLines(Text text, const FoldRange &range) {
    announce(text, {std::to_string(range.opens + 2), std::to_string(range.closes)});
}

void turn(const FoldRange &range, const std::vector<FoldRange> &ranges, bool folded) {
    setFolded(range, folded);
    if (folded) leaveHiddenLines(ranges);
    applyRanges(ranges);
    announceLines(folded ? Text::foldedLines : Text::unfoldedLines, range);
}

void turnBlock(const QTextBlock &block) {
    const std::vector<FoldRange> ranges = rangesNow();
    const auto range = std::ranges::find(ranges, block.blockNumber(), &FoldRange::opens);
    if (range != ranges.end()) turn(*range, ranges, !isFolded(*range));
}

// A triangle that points to what is folded, or down to what is shown.
void paintSign(QPainter &painter, const QRect &row, bool folded) {
    const double size = grown(signSize);
    const QPointF middle(row.center().x() + 0.5, row.center().y() + 0.5);
    const double half = size / 2, flat = size / 4;
    const QPolygonF right({middle + QPointF(-flat, -half), middle + QPointF(flat, 0), middle + QPointF(-flat, half)});
    const QPolygonF down({middle + QPointF(-half, -flat), middle + QPointF(half, -flat), middle + QPointF(0, flat)});
    painter.drawPolygon(folded ? right : down);
}

void paintColumn() {
    QPainter painter(column);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(column->rect(), programEdit->palette().color(QPalette::Base));
    painter.setPen(Qt::NoPen);
    painter.setBrush(programEdit->palette().color(QPalette::Text));
    eachShownBlock(*column, [&](const QTextBlock &block, const QRect &row) {
        const BlockMemory memory = blockMemory(block);
        if (memory.foldable) paintSign(painter, row, memory.folded);
    });
}

QString tipAt(const QTextBlock &block) {
    const std::vector<FoldRange> ranges = rangesNow();
    const auto range = std::ranges::find(ranges, block.isValid() ? block.blockNumber() : -1, &FoldRange::opens);
    if (range == ranges.end()) return {};
    const std::vector<std::string> lines = {std::to_string(range->opens + 2), std::to_string(range->closes)};
    return textOf(isFolded(*range) ? Text::foldedLines : Text::foldHere, lines);
}

bool columnEvent(QWidget *, QEvent *event) { return serveBlockColumn(column, event, {paintColumn, turnBlock, tipAt}); }

bool editEvent(QWidget *, QEvent *event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show)
        column->setGeometry(0, 0, grown(columnWidth), programEdit->viewport()->height());
    return false;
}

// The dots behind a folded line unfold it.
bool viewportEvent(QWidget *, QEvent *event) {
    if (event->type() != QEvent::MouseButtonPress) return false;
    const QPoint at = static_cast<QMouseEvent *>(event)->position().toPoint();
    const QTextBlock block = programEdit->cursorForPosition(at).block();
    const bool isOnDots =
        blockMemory(block).folded && static_cast<ProgramEdit *>(programEdit)->foldedDots(block).contains(at);
    if (isOnDots) turnBlock(block);
    return isOnDots;
}

}  // namespace

void connectFolding() {
    auto *edit = static_cast<ProgramEdit *>(programEdit);
    edit->reserveLeft(grown(columnWidth));
    column = new QWidget(edit);
    column->setObjectName(QStringLiteral("foldColumn"));
    column->setAccessibleName(textOf(Text::foldColumnName));
    column->setFocusPolicy(Qt::NoFocus);
    hookEvents(column, columnEvent);
    hookEvents(edit, editEvent);
    hookEvents(edit->viewport(), viewportEvent);
}

void forgetFolding() { column = nullptr; }

void foldLines(const ProgramReading &reading) {
    const std::vector<FoldRange> ranges = rangesOf(reading);
    const QTextCursor cursor = programEdit->textCursor();
    unfoldAround(cursor.blockNumber(), ranges);
    applyRanges(ranges);
}

void foldAtCaret() {
    const std::vector<FoldRange> ranges = rangesNow();
    const int number = programEdit->textCursor().blockNumber();
    const FoldRange *innermost = nullptr;
    for (const FoldRange &range : ranges)
        if (range.holds(number) && !isFolded(range)) innermost = &range;
    if (innermost == nullptr) return announce(Text::nothingToFold);
    turn(*innermost, ranges, true);
    programEdit->ensureCursorVisible();
}

void unfoldAtCaret() {
    const std::vector<FoldRange> ranges = rangesNow();
    const auto range = std::ranges::find(ranges, programEdit->textCursor().blockNumber(), &FoldRange::opens);
    if (range == ranges.end() || !isFolded(*range)) return announce(Text::nothingToFold);
    turn(*range, ranges, false);
}

void foldAll() {
    const std::vector<FoldRange> ranges = rangesNow();
    if (ranges.empty()) return announce(Text::nothingToFold);
    for (const FoldRange &range : ranges) setFolded(range, true);
    leaveHiddenLines(ranges);
    applyRanges(ranges);
    programEdit->ensureCursorVisible();
    announce(Text::plainText, {programEdit->accessibleDescription().toStdString()});
}

void unfoldAll() {
    const std::vector<FoldRange> ranges = rangesNow();
    for (const FoldRange &range : ranges) setFolded(range, false);
    applyRanges(ranges);
    programEdit->ensureCursorVisible();
    announce(Text::allUnfolded);
}

bool someLinesFolded() { return !programEdit->accessibleDescription().isEmpty(); }

void showBlock(const QTextBlock &block) {
    if (!block.isValid() || block.isVisible()) return;
    const std::vector<FoldRange> ranges = rangesNow();
    const auto outer = std::ranges::find_if(
        ranges, [&](const FoldRange &range) { return range.hides(block.blockNumber()) && isFolded(range); });
    unfoldAround(block.blockNumber(), ranges);
    applyRanges(ranges);  // also where no fold hides it any more, since its block has gone with an edit
    if (outer != ranges.end()) announceLines(Text::unfoldedLines, *outer);
}

void showHiddenCaret() {
    const QTextCursor cursor = programEdit->textCursor();
    showBlock(cursor.block());
    showBlock(programEdit->document()->findBlock(cursor.anchor()));
}

void repaintFolding() {
    if (column != nullptr) column->update();
}

}  // namespace numalink
