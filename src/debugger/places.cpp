#include "debugger/places.h"

#include <algorithm>
#include <charconv>
#include <span>

#include "calculator/charset.h"
#include "debugger/statement_match.h"
#include "emulator/machine/programs.h"
#include "text/token_table.h"

namespace numalink {

namespace {

bool isLoaded(int program) { return program >= 0 && program < programCount(); }

bool endsLine(const ProgramCell &cell) {
    return isToken(cell, token::newLine) || isToken(cell, token::displayTriangle);
}

void addToken(std::string &text, const ProgramCell &cell) {
    const std::uint8_t bytes[] = {cell.token1, cell.token2};
    std::string_view shown;
    tokenToText(ByteView(bytes, isTwoByteLead(bytes[0]) ? 2 : 1), shown);
    text += shown;
}

void addNumber(std::string &text, double value) {
    char digits[40];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

using Statements = std::vector<StatementOfText>;

Statements statementsOfLoaded(int program) {
    const LoadedProgram &loaded = loadedProgram(program);
    return statementsOfText(loaded.cells, loaded.cellCount);
}

Statements statementsOfImage(ByteView image) {
    const ProgramCells cells = cellsOfImage(image);
    return statementsOfText(cells.cells.data(), static_cast<int>(cells.cells.size()));
}

std::optional<DebugPlace> placeFromTo(DebugPlace place, const Statements &from, const Statements &to) {
    KnownStatement known{.line = place.line, .statement = place.statement};
    if (findStatement(known, from) < 0 || findStatement(known, to) < 0) return std::nullopt;
    place.line = known.line;
    place.statement = known.statement;
    return place;
}

}  // namespace

DebugPlace placeOfCell(int program, int cell) {
    if (!isLoaded(program)) return {};
    const LoadedProgram &loaded = loadedProgram(program);
    DebugPlace place{.item = loaded.item, .program = program, .line = 1};
    for (int i = 0; i < std::min(cell, loaded.cellCount); i++) {
        if (isTerminator(loaded.cells[i])) place.statement++;
        if (!endsLine(loaded.cells[i])) continue;
        place.line++;
        place.statement = 0;
    }
    return place;
}

// One walk: a program may have as many statements as cells.
int cellOfPlace(int program, int line, int statement) {
    if (!isLoaded(program)) return -1;
    const LoadedProgram &loaded = loadedProgram(program);
    int atLine = 1, atStatement = 0;
    for (int cell = 0; cell < loaded.cellCount; cell = loaded.terminators[cell] + 1) {
        if (atLine == line && atStatement == statement) return cell;
        atStatement++;
        if (!endsLine(loaded.cells[loaded.terminators[cell]])) continue;
        atLine++;
        atStatement = 0;
    }
    return -1;
}

int programOfItem(ItemId item) {
    for (int program = 0; item != noItem && program < programCount(); program++) {
        if (loadedProgram(program).item == item) return program;
    }
    return -1;
}

int programNamed(const std::string &name) { return findProgram(calculatorFromUtf8(name)); }

std::string programNameShown(int program) {
    return isLoaded(program) ? utf8FromCalculator(loadedProgram(program).name) : std::string();
}

std::vector<int> statementCells(int program) {
    std::vector<int> cells;
    if (!isLoaded(program)) return cells;
    const LoadedProgram &loaded = loadedProgram(program);
    for (int cell = 0; cell + 1 < loaded.cellCount; cell = loaded.terminators[cell] + 1) cells.push_back(cell);
    return cells;
}

std::string statementText(int program, int cell) {
    if (!isLoaded(program) || cell < 0 || cell >= loadedProgram(program).cellCount) return {};
    const LoadedProgram &loaded = loadedProgram(program);
    return cellsText(loaded.cells + cell, loaded.terminators[cell] - cell);
}

std::string cellsText(const ProgramCell *cells, int count) {
    std::string text;
    for (const ProgramCell &part : std::span(cells, static_cast<std::size_t>(std::max(count, 0)))) {
        if (part.kind == CellKind::token) addToken(text, part);
        if (part.kind == CellKind::number) addNumber(text, part.value.re);
        if (part.kind != CellKind::string) continue;
        text += '"';
        for (int k = 0; k < part.stringLength; k++) addToken(text, part.stringCells[k]);
        text += '"';
    }
    return utf8FromCalculator(text);
}

std::optional<DebugPlace> placeInText(const DebugPlace &place, ByteView image) {
    if (!isLoaded(place.program)) return std::nullopt;
    return placeFromTo(place, statementsOfLoaded(place.program), statementsOfImage(image));
}

std::optional<DebugPlace> placeInRun(const DebugPlace &place, ByteView image) {
    if (!isLoaded(place.program)) return std::nullopt;
    return placeFromTo(place, statementsOfImage(image), statementsOfLoaded(place.program));
}

std::optional<DebugPlace> placeNamed(const std::string &text) {
    std::vector<std::string> parts = {""};
    for (const char c : text) {
        if (c == ':') {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    if (parts.size() < 2 || parts.size() > 3) return std::nullopt;
    int numbers[2] = {0, 1};
    for (std::size_t i = 1; i < parts.size(); i++) {
        const char *const end = parts[i].data() + parts[i].size();
        if (std::from_chars(parts[i].data(), end, numbers[i - 1]).ptr != end || parts[i].empty()) return std::nullopt;
    }
    const int program = programNamed(parts[0]);
    const int cell = cellOfPlace(program, numbers[0], numbers[1] - 1);
    return cell < 0 ? std::nullopt : std::optional(placeOfCell(program, cell));
}

}  // namespace numalink
