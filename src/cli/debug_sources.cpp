#include "cli/debug_sources.h"

#include <algorithm>
#include <vector>

namespace numalink {

namespace {

struct SourceStatement {
    int line = 0, statement = 0;
    std::string text;
};

std::vector<SourceStatement> statementsOf(int program) {
    std::vector<SourceStatement> statements;
    for (const int cell : statementCells(program)) {
        const DebugPlace place = placeOfCell(program, cell);
        statements.push_back({place.line, place.statement, statementText(program, cell)});
    }
    return statements;
}

int charactersOf(const std::string &utf8) {
    const auto begins = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; };
    return static_cast<int>(std::ranges::count_if(utf8, begins));
}

}  // namespace

std::string sourceText(int program) {
    std::string text;
    int line = 1;
    for (const SourceStatement &statement : statementsOf(program)) {
        if (statement.statement > 0) text += ':';
        for (; line < statement.line; line++) text += '\n';
        text += statement.text;
    }
    return text + "\n";
}

int columnOf(int program, int line, int statement) {
    int column = 1;
    for (const SourceStatement &each : statementsOf(program)) {
        if (each.line == line && each.statement < statement) column += charactersOf(each.text) + 1;
    }
    return column;
}

int statementAtColumn(int program, int line, int column) {
    int statement = 0;
    for (const SourceStatement &each : statementsOf(program)) {
        if (each.line == line && columnOf(program, line, each.statement) <= column) statement = each.statement;
    }
    return statement;
}

}  // namespace numalink
