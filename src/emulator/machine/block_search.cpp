// The walks that take the place of a stack of blocks.
#include "emulator/machine/block_search.h"

namespace numalink {

namespace {

bool isEnd(const ProgramCell &cell) { return isToken(cell, token::endOfProgram); }

int walkForward(const ProgramCell *cells, int at, Token opens, Token closes) {
    int depth = 1;
    for (int i = at + 1; !isEnd(cells[i]); i++) {
        if (isToken(cells[i], opens)) depth++;
        if (isToken(cells[i], closes)) depth--;
        if (depth == 0) return i;
    }
    return noPartner;
}

int walkBack(const ProgramCell *cells, int at, Token opens, Token closes) {
    int depth = 1;
    for (int i = at - 1; i >= 0; i--) {
        if (isToken(cells[i], opens)) depth--;
        if (isToken(cells[i], closes)) depth++;
        if (depth == 0) return i;
    }
    return noPartner;
}

bool isSameLabel(const ProgramCell &left, const ProgramCell &right) {
    if (left.kind != right.kind) return false;
    return isNumber(left) ? left.value.re == right.value.re
                          : left.kind == CellKind::token && left.token1 == right.token1;
}

}  // namespace

bool isTerminator(const ProgramCell &cell) {
    if (cell.kind != CellKind::token) return false;
    const std::uint8_t first = cell.token1;
    return first == token::newLine.first || first == token::colon.first || first == token::displayTriangle.first ||
           first == token::endOfProgram.first;
}

int findNext(const ProgramCell *cells, int at) { return walkForward(cells, at, token::forWord, token::next); }
int findFor(const ProgramCell *cells, int at) { return walkBack(cells, at, token::forWord, token::next); }
int findWhileEnd(const ProgramCell *cells, int at) { return walkForward(cells, at, token::whileWord, token::whileEnd); }
int findWhile(const ProgramCell *cells, int at) { return walkBack(cells, at, token::whileWord, token::whileEnd); }
int findDo(const ProgramCell *cells, int at) { return walkBack(cells, at, token::doWord, token::loopWhile); }

int findLoopEnd(const ProgramCell *cells, int at) {
    int depth = 1;
    for (int i = at + 1; !isEnd(cells[i]); i++) {
        const auto is = [&](Token which) { return isToken(cells[i], which); };
        if (is(token::forWord) || is(token::whileWord) || is(token::doWord)) depth++;
        if ((is(token::next) || is(token::whileEnd) || is(token::loopWhile)) && --depth == 0) return i;
    }
    return noPartner;
}

int findFalseBranch(const ProgramCell *cells, int at) {
    int depth = 1;
    for (int i = at + 1; !isEnd(cells[i]); i++) {
        if (isToken(cells[i], token::ifWord)) depth++;
        if (isToken(cells[i], token::elseWord) && depth == 1) return i;
        if (isToken(cells[i], token::ifEnd)) {
            if (depth == 1) return i;
            depth--;
        }
    }
    return noPartner;
}

int findIfEnd(const ProgramCell *cells, int at) {
    int depth = 1;
    for (int i = at + 1; !isEnd(cells[i]); i++) {
        if (isToken(cells[i], token::ifWord)) depth++;
        if (isToken(cells[i], token::elseWord) && depth == 1) return i;
        if (isToken(cells[i], token::ifEnd) && --depth == 0) return i;
    }
    return noPartner;
}

int findLabel(const ProgramCell *cells, const ProgramCell &name) {
    for (int i = 0; !isEnd(cells[i]); i++) {
        if (isToken(cells[i], token::label) && isSameLabel(cells[i + 1], name)) return i;
    }
    return noPartner;
}

int findTerminator(const ProgramCell *cells, int from) {
    int i = from;
    while (!isTerminator(cells[i])) i++;
    return i;
}

}  // namespace numalink
