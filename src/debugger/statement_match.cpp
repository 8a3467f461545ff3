#include "debugger/statement_match.h"

#include <algorithm>
#include <bit>

#include "emulator/machine/programs.h"

namespace numalink {

namespace {

std::uint64_t mixed(std::uint64_t digest, std::uint64_t word) {
    digest = (digest ^ word) * 1099511628211u;
    return digest ^ digest >> 31;
}

std::uint64_t digestOf(const ProgramCell *cells, int count) {
    std::uint64_t digest = 14695981039346656037u;
    for (int i = 0; i < count; i++) {
        const ProgramCell &cell = cells[i];
        digest = mixed(digest, static_cast<std::uint64_t>(cell.kind));
        if (isNumber(cell)) digest = mixed(digest, std::bit_cast<std::uint64_t>(cell.value.re));
        if (cell.kind == CellKind::token) digest = mixed(digest, cell.token1 * 256u + cell.token2);
        if (cell.kind == CellKind::string) digest = mixed(digest, digestOf(cell.stringCells, cell.stringLength));
    }
    return digest == 0 ? 1 : digest;
}

// Of the statement at a place, the one that is missing for a place outside.
std::uint64_t digestAt(const std::vector<StatementOfText> &text, std::size_t place) {
    return place < text.size() ? text[place].digest : 1;
}

KnownStatement knownAt(const std::vector<StatementOfText> &text, std::size_t place) {
    return {text[place].line, text[place].statement, text[place].digest, digestAt(text, place - 1),
            digestAt(text, place + 1)};
}

// How well the statement at a place fits: its own tokens count most, then its neighbours'. 0: it isn't the one.
int fitOf(const KnownStatement &known, const KnownStatement &found) {
    const bool isOwn = found.own == known.own, hasAhead = found.ahead == known.ahead;
    const bool hasBehind = found.behind == known.behind;
    if (!isOwn && !(hasAhead && hasBehind)) return 0;  // a statement between the same two was edited
    return (isOwn ? 4 : 0) + (hasAhead ? 1 : 0) + (hasBehind ? 1 : 0);
}

std::size_t placeOf(const KnownStatement &known, const std::vector<StatementOfText> &text) {
    const auto isThere = [&](const StatementOfText &each) {
        return each.line == known.line && each.statement == known.statement;
    };
    return static_cast<std::size_t>(std::ranges::find_if(text, isThere) - text.begin());
}

std::size_t bestFit(const KnownStatement &known, const std::vector<StatementOfText> &text, std::size_t near) {
    std::size_t best = text.size(), bestDistance = 0;
    int fitOfBest = 0;
    for (std::size_t place = 0; place < text.size(); place++) {
        const int fit = fitOf(known, knownAt(text, place));
        const std::size_t distance = place > near ? place - near : near - place;
        if (fit < fitOfBest || fit == 0 || (fit == fitOfBest && distance >= bestDistance)) continue;
        best = place;
        fitOfBest = fit;
        bestDistance = distance;
    }
    return best;
}

}  // namespace

std::vector<StatementOfText> statementsOfText(const ProgramCell *cells, int count) {
    std::vector<StatementOfText> statements;
    StatementOfText next;
    while (next.cell + 1 < count) {
        const int end = findTerminator(cells, next.cell);
        next.digest = digestOf(cells + next.cell, end - next.cell);
        statements.push_back(next);
        next.statement++;
        if (!isToken(cells[end], token::colon)) next = {next.line + 1, 0};
        next.cell = end + 1;
    }
    return statements;
}

int findStatement(KnownStatement &known, const std::vector<StatementOfText> &text) {
    const std::size_t here = placeOf(known, text);
    const std::size_t place = known.own == 0 ? here : bestFit(known, text, here);
    if (place == text.size()) return -1;
    known = knownAt(text, place);
    return static_cast<int>(place);
}

}  // namespace numalink
