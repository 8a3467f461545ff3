// The dispatch of calls, and how they read their arguments.
#include "emulator/expressions/calls.h"

#include <algorithm>
#include <vector>

#include "emulator/expressions/evaluator.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"

namespace numalink {

void evaluateFunctionCall(ProgramCell *cells, int open, int count) {
    const OperatorRow *row = operatorRow(cells[open], Step::parentheses);
    const bool isCall = row != nullptr && row->call != nullptr;
    cells[open] = isCall ? row->call({cells, open + 1, count}) : refusedCall(synError);
    blankCells(cells, open + 1, open + 1 + count);
}

ProgramCell refusedCall(void (*report)()) {
    report();
    return numberCell({});
}

int evaluateArguments(const CallArguments &arguments) {
    int count = arguments.count;
    evaluate(arguments.cells, arguments.first, count);
    return std::max(count, 0);
}

bool readNumbers(const CallArguments &arguments, std::span<ComplexValue> values) {
    const int count = evaluateArguments(arguments);
    bool fits = count == 2 * static_cast<int>(values.size()) - 1;
    for (int i = 0; fits && i < count; i++) {
        const ProgramCell &cell = arguments.cells[arguments.first + i];
        fits = i % 2 == 0 ? isNumber(cell) : isToken(cell, token::comma);
        if (fits && i % 2 == 0) values[static_cast<std::size_t>(i / 2)] = cell.value;
    }
    if (!fits) synError();
    return fits;
}

int splitFields(const CallArguments &arguments, std::span<CallField> fields) {
    int depth = 0, found = 0, begin = arguments.first;
    for (int i = arguments.first; i <= arguments.end(); i++) {
        const bool isToken1 = i < arguments.end() && arguments.cells[i].kind == CellKind::token;
        if (isToken1) {
            const ProgramCell &cell = arguments.cells[i];
            if (factsOf(cell).opening != Opening::none || isToken(cell, token::openBracket) ||
                isToken(cell, token::openBrace))
                depth++;
            if (isToken(cell, token::closeParenthesis) || isToken(cell, token::closeBracket) ||
                isToken(cell, token::closeBrace))
                depth--;
        }
        const bool ends = i == arguments.end() || (depth == 0 && isToken(arguments.cells[i], token::comma));
        if (!ends) continue;
        if (found < static_cast<int>(fields.size()))
            fields[static_cast<std::size_t>(found)] = {arguments.cells + begin, i - begin};
        found++;
        begin = i + 1;
    }
    return found;
}

bool fieldValue(const CallField &field, ComplexValue &value) {
    const TemporariesOfOnePass pass;
    std::vector<ProgramCell> work(field.cells, field.cells + field.count);
    int count = field.count;
    evaluate(work.data(), 0, count);
    const bool fits = field.count <= statementLimit && count == 1 && isNumber(work[0]);
    if (!fits) {
        synError();
        return false;
    }
    value = work[0].value;
    return true;
}

ProgramCell listOfTwo(double first, double second) {
    MatrixDescriptor *list = matrixAllocate(ownedTemporarily, 1, 2);
    if (matrixSize(list) == 2) {
        matrixElements(list)[0] = first;
        matrixElements(list)[1] = second;
    }
    return arrayCell(CellKind::list, list);
}

}  // namespace numalink
