// The ProgramTable, and prePass: token bytes to cells, then cells to numbers and strings.
#include "emulator/machine/programs.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "calculator/program_info.h"

namespace numalink {

namespace {

struct ProgramBlock : ProgramCells {
    std::vector<int> terminators;
    std::vector<int> partners;
    ProgramLabels labels;
};

std::array<LoadedProgram, programLimit> table;
std::array<ProgramBlock, programLimit> blocks;
int count = 0;
std::size_t cellsUsed = 0;

constexpr std::uint8_t minusByte = 0x99, plusByte = 0x89, negativeByte = 0x87;
constexpr int exponentDigits = 2;
constexpr std::uint8_t secondOfNothing = 0xFF;  // behind 0x7F or 0xF7 as the last byte: no token has it

bool isDigit(const ProgramCell &cell) {
    return cell.kind == CellKind::token && cell.token1 >= '0' && cell.token1 <= '9';
}

std::vector<ProgramCell> cellsOfTokens(ByteView tokens) {
    std::vector<ProgramCell> cells;
    cells.reserve(tokens.size() + 1);
    for (std::size_t i = 0; i < tokens.size(); i++) {
        Token next{tokens[i]};
        if (isTwoByteLead(tokens[i])) next.second = i + 1 < tokens.size() ? tokens[++i] : secondOfNothing;
        cells.push_back(tokenCell(next));
    }
    cells.push_back(tokenCell(token::endOfProgram));
    return cells;
}

std::uint64_t digestOf(ByteView tokens) {
    std::uint64_t digest = 0xCBF29CE484222325;
    for (const std::uint8_t byte : tokens) digest = (digest ^ byte) * 0x100000001B3;
    return digest;
}

// Walks the tokens of one program. The last of them is the end mark, so that a look at the next one is always sound.
struct PrePass {
    const std::vector<ProgramCell> &tokens;
    ProgramCells &block;
    std::size_t at = 0;

    void run();
    void takeString();
    void takeNumber();
    double takeMantissa();
    double takeExponent();
    bool numberBegins() const {
        return isDigit(tokens[at]) || (isToken(tokens[at], token::point) && isDigit(tokens[at + 1]));
    }
};

void PrePass::run() {
    while (at + 1 < tokens.size()) {
        if (isToken(tokens[at], token::quote)) {
            takeString();
        } else if (numberBegins()) {
            takeNumber();
        } else {
            block.cells.push_back(tokens[at++]);
        }
    }
    block.cells.push_back(tokens[at]);
}

// A string of more than 255 cells keeps those, and two quotation marks behind it, which no statement takes, bring
// the Syn ERROR when it is met. Its place in stringCells is kept as a length until all strings are there.
void PrePass::takeString() {
    ProgramCell cell;
    cell.kind = CellKind::string;
    int length = 0;
    for (at++; at + 1 < tokens.size() && !isToken(tokens[at], token::quote); at++) {
        if (length < stringLimit) block.stringCells.push_back(tokens[at]);
        length++;
    }
    if (at + 1 < tokens.size()) at++;
    cell.stringLength = static_cast<std::uint8_t>(std::min(length, stringLimit));
    block.cells.push_back(cell);
    if (length > stringLimit) block.cells.insert(block.cells.end(), 2, tokenCell(token::quote));
}

double PrePass::takeMantissa() {
    double value = 0;
    int place = 0;  // behind the last point, from 1; 0 ahead of the first
    bool behindPoint = false;
    for (; isDigit(tokens[at]) || isToken(tokens[at], token::point); at++) {
        if (isToken(tokens[at], token::point)) {
            behindPoint = true;
            place = 0;
            continue;
        }
        const int digit = tokens[at].token1 - '0';
        value = behindPoint ? value + digit / std::pow(10.0, ++place) : value * 10 + digit;
    }
    return value;
}

// Behind the exponent mark: a sign and at most two digits.
double PrePass::takeExponent() {
    const ProgramCell &sign = tokens[at];
    const bool isNegative = isToken(sign, {negativeByte}) || isToken(sign, {minusByte});
    if (isNegative || isToken(sign, {plusByte})) at++;
    int exponent = 0;
    for (int digits = 0; digits < exponentDigits && isDigit(tokens[at]); digits++, at++)
        exponent = exponent * 10 + (tokens[at].token1 - '0');
    return isNegative ? -exponent : exponent;
}

void PrePass::takeNumber() {
    const std::size_t begin = at;
    double value = takeMantissa();
    const std::size_t length = at - begin;
    const auto isPoint = [](const ProgramCell &cell) { return isToken(cell, token::point); };
    const bool isWhole = std::none_of(tokens.begin() + static_cast<std::ptrdiff_t>(begin),
                                      tokens.begin() + static_cast<std::ptrdiff_t>(at), isPoint) &&
                         !isToken(tokens[at], token::exponent);
    if (isToken(tokens[at], token::exponent)) {
        at++;
        value *= std::pow(10.0, takeExponent());
    }
    block.cells.push_back(numberCell(complexReal(value)));
    if (isWhole && length <= stringLimit) block.cells.back().stringLength = static_cast<std::uint8_t>(length);
}

void placeStrings(ProgramCells &block) {
    const ProgramCell *next = block.stringCells.data();
    for (ProgramCell &cell : block.cells) {
        if (cell.kind != CellKind::string) continue;
        cell.stringCells = next;
        next += cell.stringLength;
    }
}

void markTerminators(ProgramBlock &block) {
    block.terminators.resize(block.cells.size());
    int next = static_cast<int>(block.cells.size()) - 1;
    for (int i = next; i >= 0; i--) {
        if (isTerminator(block.cells[static_cast<std::size_t>(i)])) next = i;
        block.terminators[static_cast<std::size_t>(i)] = next;
    }
}

}  // namespace

void programsClear() {
    for (int i = 0; i < count; i++) {
        table[static_cast<std::size_t>(i)] = {};
        blocks[static_cast<std::size_t>(i)] = {};
    }
    count = 0;
    cellsUsed = 0;
}

int programCount() { return count; }
const LoadedProgram &loadedProgram(int index) { return table[static_cast<std::size_t>(index)]; }

ProgramCells cellsOfImage(ByteView image) {
    ProgramCells made;
    PrePass{cellsOfTokens(programTokens(image)), made}.run();
    placeStrings(made);
    return made;
}

bool programAdd(std::string_view name, ByteView image, ItemId item) {
    const std::vector<ProgramCell> tokens = cellsOfTokens(programTokens(image));
    if (count >= programLimit || tokens.size() > programCellLimit - cellsUsed) return false;
    ProgramBlock &block = blocks[static_cast<std::size_t>(count)];
    block = {};
    PrePass{tokens, block}.run();
    placeStrings(block);
    markTerminators(block);
    block.partners = findPartners(block.cells);
    block.labels = findLabels(block.cells);
    cellsUsed += tokens.size();
    table[static_cast<std::size_t>(count)] = {
        .name = std::string(name.substr(0, programNameSize)),
        .item = item,
        .digest = digestOf(programTokens(image)),
        .cells = block.cells.data(),
        .cellCount = static_cast<int>(block.cells.size()),
        .terminators = block.terminators.data(),
        .partners = block.partners.data(),
        .labels = &block.labels,
    };
    count++;
    return true;
}

std::vector<ProgramCell> cellsOfString(const ProgramCell &string) {
    std::vector<ProgramCell> tokens(string.stringCells, string.stringCells + string.stringLength);
    tokens.push_back(tokenCell(token::endOfProgram));
    ProgramBlock block;
    PrePass{tokens, block}.run();
    block.cells.pop_back();
    return block.cells;
}

int findProgram(std::string_view name) {
    for (int i = 0; i < count; i++) {
        if (sameProgramName(loadedProgram(i).name, name)) return i;
    }
    return -1;
}

int findGraphFunction(int digit) {
    const char name[] = {'f', static_cast<char>('0' + digit)};
    for (int i = 0; i < count; i++) {
        if (loadedProgram(i).name == std::string_view(name, sizeof name)) return i;
    }
    return -1;
}

}  // namespace numalink
