// Lines first, then the tokens of the lines that have changed. Lines and tokens are compared by their bytes, as letters
// and a command may look alike.
#include "compare/program_compare.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <unordered_map>

#include "compare/sequence_diff.h"
#include "text/view_edit.h"

namespace numalink {

namespace {

constexpr std::size_t pairsTried = 4096;     // of lines in one difference; a larger one is paired in order
constexpr std::size_t candidateLimit = 16;   // places that a line may have moved from
constexpr std::size_t movedTokensAlone = 8;  // of a single line that counts as moved; a shorter one is there by chance
constexpr std::size_t movedTokensTogether = 6;  // of several lines

struct ReadLine {
    std::vector<ViewToken> tokens;
    std::vector<std::uint32_t> numbers;  // of the tokens, by their bytes
    std::uint32_t number = 0;            // of the line, alike for alike bytes
};

std::uint32_t numberOf(const ViewToken &token) {
    const std::uint32_t kind = (token.isMark ? 4u : 0u) | token.length;
    return kind << 16 | static_cast<std::uint32_t>(token.length > 1 ? token.bytes[1] : 0) << 8 | token.bytes[0];
}

using LineNumbers = std::unordered_map<std::u32string, std::uint32_t>;

std::vector<ReadLine> readLines(const std::vector<ViewLine> &lines, LineNumbers &known) {
    std::vector<ReadLine> read(lines.size());
    for (std::size_t i = 0; i < lines.size(); i++) {
        read[i].tokens = readLine(lines[i], false).tokens;
        std::u32string key;
        for (const ViewToken &token : read[i].tokens) {
            read[i].numbers.push_back(numberOf(token));
            key.push_back(read[i].numbers.back());
        }
        read[i].number = known.try_emplace(std::move(key), static_cast<std::uint32_t>(known.size())).first->second;
    }
    return read;
}

std::vector<std::uint32_t> numbersOf(const std::vector<ReadLine> &lines) {
    std::vector<std::uint32_t> numbers;
    numbers.reserve(lines.size());
    for (const ReadLine &line : lines) numbers.push_back(line.number);
    return numbers;
}

// How much of both lines is shared, whatever its order, in hundredths.
unsigned likeness(const ReadLine &left, const ReadLine &right) {
    if (left.numbers.empty() || right.numbers.empty()) return 0;
    std::vector<std::uint32_t> a = left.numbers, b = right.numbers, shared;
    std::ranges::sort(a);
    std::ranges::sort(b);
    std::ranges::set_intersection(a, b, std::back_inserter(shared));
    return static_cast<unsigned>(200 * shared.size() / (a.size() + b.size()));
}

constexpr unsigned leastLikeness = 40;

std::vector<MarkedText> marksOf(const ReadLine &line, const std::vector<bool> &isShared) {
    std::vector<MarkedText> marks;
    for (std::size_t i = 0; i < line.tokens.size(); i++) {
        if (isShared[i]) continue;
        const ViewToken &token = line.tokens[i];
        if (!marks.empty() && marks.back().from + marks.back().size == token.from) {
            marks.back().size += token.size;
        } else {
            marks.push_back({token.from, token.size});
        }
    }
    return marks;
}

struct Comparer {
    ProgramComparison &result;
    std::vector<ReadLine> left, right;
    std::vector<std::ptrdiff_t> movedLeft, movedRight;  // by line: where it stands on the other side, or -1

    void markMoved(std::size_t x, std::size_t y, std::size_t count) {
        for (std::size_t i = 0; i < count; i++) {
            movedLeft[x + i] = static_cast<std::ptrdiff_t>(y + i);
            movedRight[y + i] = static_cast<std::ptrdiff_t>(x + i);
        }
    }

    // Lines of both sides from x and y on that are alike, and free.
    std::size_t aliveRun(std::size_t x, std::size_t y, const std::vector<bool> &freeLeft,
                         const std::vector<bool> &freeRight) const {
        std::size_t count = 0;
        while (x + count < left.size() && y + count < right.size() && freeLeft[x + count] && freeRight[y + count] &&
               movedLeft[x + count] < 0 && left[x + count].number == right[y + count].number)
            count++;
        return count;
    }

    bool isWorthTelling(std::size_t y, std::size_t count) const {
        std::size_t tokens = 0;
        for (std::size_t i = 0; i < count; i++) tokens += right[y + i].tokens.size();
        return tokens >= (count == 1 ? movedTokensAlone : movedTokensTogether);
    }

    void findMoves(const std::vector<CommonStretch> &common) {
        movedLeft.assign(left.size(), -1);
        movedRight.assign(right.size(), -1);
        std::vector<bool> freeLeft(left.size(), true), freeRight(right.size(), true);
        for (const CommonStretch &stretch : common) {
            for (std::size_t i = 0; i < stretch.count; i++) {
                freeLeft[stretch.left + i] = false;
                freeRight[stretch.right + i] = false;
            }
        }
        std::unordered_map<std::uint32_t, std::vector<std::size_t>> places;
        for (std::size_t x = 0; x < left.size(); x++)
            if (auto &of = places[left[x].number]; freeLeft[x] && of.size() < candidateLimit) of.push_back(x);
        for (std::size_t y = 0; y < right.size();) {
            std::size_t best = 0, from = 0;
            const auto found = freeRight[y] ? places.find(right[y].number) : places.end();
            if (found != places.end()) {
                for (const std::size_t x : found->second) {
                    const std::size_t count = aliveRun(x, y, freeLeft, freeRight);
                    if (count > best) {
                        best = count;
                        from = x;
                    }
                }
            }
            if (best > 0 && isWorthTelling(y, best)) markMoved(from, y, best);
            y += std::max<std::size_t>(best, 1);
        }
    }

    void addRow(RowKind rowKind, std::ptrdiff_t x, std::ptrdiff_t y) {
        CompareRow row;
        row.kind = rowKind;
        row.left = x;
        row.right = y;
        if (rowKind == RowKind::onlyLeft) row.moved = movedLeft[static_cast<std::size_t>(x)];
        if (rowKind == RowKind::onlyRight) row.moved = movedRight[static_cast<std::size_t>(y)];
        result.rows.push_back(std::move(row));
    }

    void addChanged(std::size_t x, std::size_t y) {
        addRow(RowKind::changed, static_cast<std::ptrdiff_t>(x), static_cast<std::ptrdiff_t>(y));
        std::vector<bool> sharedLeft(left[x].tokens.size()), sharedRight(right[y].tokens.size());
        for (const CommonStretch &stretch : commonStretches(left[x].numbers, right[y].numbers)) {
            for (std::size_t i = 0; i < stretch.count; i++) {
                sharedLeft[stretch.left + i] = true;
                sharedRight[stretch.right + i] = true;
            }
        }
        result.rows.back().leftMarks = marksOf(left[x], sharedLeft);
        result.rows.back().rightMarks = marksOf(right[y], sharedRight);
    }

    // The pairs of lines that are one line edited, in order, with as much likeness in all as can be.
    std::vector<std::array<std::size_t, 2>> pairLines(const std::vector<std::size_t> &xs,
                                                      const std::vector<std::size_t> &ys) const {
        std::vector<std::array<std::size_t, 2>> pairs;
        const std::size_t rows = xs.size(), columns = ys.size();
        if (rows * columns > pairsTried) {
            for (std::size_t i = 0; i < std::min(rows, columns); i++)
                if (likeness(left[xs[i]], right[ys[i]]) >= leastLikeness) pairs.push_back({xs[i], ys[i]});
            return pairs;
        }
        std::vector<unsigned> own(rows * columns), best((rows + 1) * (columns + 1));
        const auto bestAt = [&](std::size_t i, std::size_t j) -> unsigned & { return best[i * (columns + 1) + j]; };
        for (std::size_t i = rows; i-- > 0;) {
            for (std::size_t j = columns; j-- > 0;) {
                const unsigned alike = likeness(left[xs[i]], right[ys[j]]);
                own[i * columns + j] = alike >= leastLikeness ? alike : 0;
                bestAt(i, j) = std::max(bestAt(i + 1, j), bestAt(i, j + 1));
                if (own[i * columns + j] > 0)
                    bestAt(i, j) = std::max(bestAt(i, j), own[i * columns + j] + bestAt(i + 1, j + 1));
            }
        }
        for (std::size_t i = 0, j = 0; i < rows && j < columns;) {
            const unsigned alike = own[i * columns + j];
            if (alike > 0 && bestAt(i, j) == alike + bestAt(i + 1, j + 1)) {
                pairs.push_back({xs[i++], ys[j++]});
            } else if (bestAt(i, j) == bestAt(i + 1, j)) {
                i++;
            } else {
                j++;
            }
        }
        return pairs;
    }

    void addDifference(std::size_t x, std::size_t xEnd, std::size_t y, std::size_t yEnd) {
        if (x == xEnd && y == yEnd) return;
        result.differences.push_back({result.rows.size(), xEnd - x + yEnd - y});
        std::vector<std::size_t> xs, ys;
        for (std::size_t i = x; i < xEnd; i++)
            if (movedLeft[i] < 0) xs.push_back(i);
        for (std::size_t i = y; i < yEnd; i++)
            if (movedRight[i] < 0) ys.push_back(i);
        auto pairs = pairLines(xs, ys);
        pairs.push_back({xEnd, yEnd});
        for (const auto &[pairLeft, pairRight] : pairs) {
            for (; x < pairLeft; x++) addRow(RowKind::onlyLeft, static_cast<std::ptrdiff_t>(x), -1);
            for (; y < pairRight; y++) addRow(RowKind::onlyRight, -1, static_cast<std::ptrdiff_t>(y));
            if (pairLeft < xEnd && pairRight < yEnd) addChanged(x++, y++);
        }
        result.differences.back().count = result.rows.size() - result.differences.back().from;
    }

    void compare() {
        std::vector<CommonStretch> common = commonStretches(numbersOf(left), numbersOf(right));
        findMoves(common);
        common.push_back({left.size(), right.size(), 0});
        std::size_t x = 0, y = 0;
        for (const CommonStretch &stretch : common) {
            addDifference(x, stretch.left, y, stretch.right);
            for (std::size_t i = 0; i < stretch.count; i++)
                addRow(RowKind::same, static_cast<std::ptrdiff_t>(stretch.left + i),
                       static_cast<std::ptrdiff_t>(stretch.right + i));
            x = stretch.left + stretch.count;
            y = stretch.right + stretch.count;
        }
    }
};

}  // namespace

ProgramComparison comparePrograms(ByteView leftImage, ByteView rightImage) {
    ProgramComparison result{
        .left = viewLines(leftImage), .right = viewLines(rightImage), .rows = {}, .differences = {}};
    LineNumbers known;
    Comparer comparer{.result = result, .left = {}, .right = {}, .movedLeft = {}, .movedRight = {}};
    comparer.left = readLines(result.left, known);
    comparer.right = readLines(result.right, known);
    comparer.compare();
    return result;
}

std::vector<TextFault> takeOver(const ProgramComparison &comparison, std::size_t difference, CompareSide into,
                                Bytes &image) {
    const RowRange range = comparison.differences.at(difference);
    std::vector<ViewLine> lines;
    for (std::size_t i = 0; i < comparison.rows.size(); i++) {
        const bool isTaken = i >= range.from && i < range.from + range.count;
        const CompareSide from = (into == CompareSide::left) == isTaken ? CompareSide::right : CompareSide::left;
        const std::ptrdiff_t line = from == CompareSide::left ? comparison.rows[i].left : comparison.rows[i].right;
        if (line < 0) continue;
        lines.push_back(
            (from == CompareSide::left ? comparison.left : comparison.right)[static_cast<std::size_t>(line)]);
    }
    if (lines.empty()) lines.emplace_back();
    return imageOfViewLines(lines, false, image);
}

}  // namespace numalink
