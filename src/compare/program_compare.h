// Two programs side by side: which lines they share, which have changed and in what tokens, and which have moved.
// Pure; any thread once the tables are loaded.
#pragma once

#include <vector>

#include "platform/bytes.h"
#include "text/text_faults.h"
#include "text/view_runs.h"

namespace numalink {

enum class RowKind : std::uint8_t {
    same,     // to the byte
    changed,  // a line of each side, alike enough to be one that was edited
    onlyLeft,
    onlyRight
};

struct MarkedText {
    std::size_t from = 0, size = 0;  // characters of the line
    bool operator==(const MarkedText &) const = default;
};

struct CompareRow {
    RowKind kind = RowKind::same;
    std::ptrdiff_t left = -1, right = -1;           // lines from 0, -1 for none
    std::ptrdiff_t moved = -1;                      // the line of the other side that this one is, at another place
    std::vector<MarkedText> leftMarks, rightMarks;  // the tokens that differ in a changed line
};

struct RowRange {
    std::size_t from = 0, count = 0;
};

struct ProgramComparison {
    std::vector<ViewLine> left, right;
    std::vector<CompareRow> rows;       // every line of either side once, in order
    std::vector<RowRange> differences;  // rows that aren't the same, each stretch of them once
};

ProgramComparison comparePrograms(ByteView leftImage, ByteView rightImage);

enum class CompareSide { left, right };

// The image of one side in which the lines of a difference are those of the other. difference is one of the list. What
// is no token, as a text can't be read back, is a fault and leaves image alone: it doesn't happen to lines that nobody
// has typed in.
std::vector<TextFault> takeOver(const ProgramComparison &comparison, std::size_t difference, CompareSide into,
                                Bytes &image);

}  // namespace numalink
