// One walk ahead for pairs, one back for what depends on what follows.
#include "emulator/machine/block_search.h"

#include <algorithm>
#include <bit>
#include <optional>

namespace numalink {

namespace {

struct PairRow {
    Token opens, closes;
    bool opensLead = false, closesLead = false;  // whose partner is asked for
};
constexpr PairRow pairs[] = {
    {token::forWord, token::next, true, true},
    {token::whileWord, token::whileEnd, true, true},
    {token::doWord, token::loopWhile, false, true},
};

// The partners of all cells, being found.
struct Partners {
    std::span<const ProgramCell> cells;
    std::vector<int> found;

    int count() const { return static_cast<int>(cells.size()); }
    bool is(int i, Token which) const { return isToken(cells[static_cast<std::size_t>(i)], which); }
    void set(int i, int partner) { found[static_cast<std::size_t>(i)] = partner; }

    void findPairs(const PairRow &row);
    void findLoopEnds();
    void findBranches();
};

void Partners::findPairs(const PairRow &row) {
    std::vector<int> open;
    for (int i = 0; i < count(); i++) {
        if (is(i, row.opens)) open.push_back(i);
        if (!is(i, row.closes) || open.empty()) continue;
        if (row.opensLead) set(open.back(), i);
        if (row.closesLead) set(i, open.back());
        open.pop_back();
    }
}

// Seen from the end, the loop around a Break is closed by the nearest end whose beginning hasn't come yet.
void Partners::findLoopEnds() {
    std::vector<int> ends;
    for (int i = count() - 1; i >= 0; i--) {
        for (const PairRow &row : pairs) {
            if (is(i, row.closes)) ends.push_back(i);
            if (is(i, row.opens) && !ends.empty()) ends.pop_back();
        }
        if (is(i, token::breakWord) && !ends.empty()) set(i, ends.back());
    }
}

// Seen from the end: of each depth the nearest Else or IfEnd, the innermost depth last. An If whose IfEnd is missing
// leaves nothing behind it at the depth of those ahead of it.
void Partners::findBranches() {
    std::vector<int> nearest = {noPartner};
    for (int i = count() - 1; i >= 0; i--) {
        if (is(i, token::ifEnd)) nearest.push_back(i);
        if (is(i, token::ifWord) || is(i, token::elseWord)) set(i, nearest.back());
        if (is(i, token::elseWord)) nearest.back() = i;
        if (!is(i, token::ifWord)) continue;
        nearest.pop_back();
        if (nearest.empty()) nearest.push_back(noPartner);
    }
}

// Numbers by their value, tokens by their first byte; nothing else names a label.
std::optional<LabelPlace> labelNamed(const ProgramCell &name, int at) {
    if (name.kind == CellKind::token) return LabelPlace{name.kind, name.token1, at};
    if (!isNumber(name) || name.value.re != name.value.re) return std::nullopt;
    const double value = name.value.re == 0 ? 0 : name.value.re;  // one nought
    return LabelPlace{name.kind, std::bit_cast<std::uint64_t>(value), at};
}

}  // namespace

bool isTerminator(const ProgramCell &cell) {
    if (cell.kind != CellKind::token) return false;
    const std::uint8_t first = cell.token1;
    return first == token::newLine.first || first == token::colon.first || first == token::displayTriangle.first ||
           first == token::endOfProgram.first;
}

std::vector<int> findPartners(std::span<const ProgramCell> cells) {
    Partners partners{cells, std::vector<int>(cells.size(), noPartner)};
    for (const PairRow &row : pairs) partners.findPairs(row);
    partners.findLoopEnds();
    partners.findBranches();
    return std::move(partners.found);
}

ProgramLabels findLabels(std::span<const ProgramCell> cells) {
    ProgramLabels labels;
    for (std::size_t i = 0; i + 1 < cells.size(); i++) {
        if (!isToken(cells[i], token::label)) continue;
        if (const auto label = labelNamed(cells[i + 1], static_cast<int>(i))) labels.push_back(*label);
    }
    std::sort(labels.begin(), labels.end());
    return labels;
}

int findLabel(const ProgramLabels &labels, const ProgramCell &name) {
    const auto wanted = labelNamed(name, noPartner);
    if (!wanted) return noPartner;
    const auto found = std::lower_bound(labels.begin(), labels.end(), *wanted);
    return found != labels.end() && found->kind == wanted->kind && found->name == wanted->name ? found->at : noPartner;
}

int findTerminator(const ProgramCell *cells, int from) {
    int i = from;
    while (!isTerminator(cells[i])) i++;
    return i;
}

}  // namespace numalink
