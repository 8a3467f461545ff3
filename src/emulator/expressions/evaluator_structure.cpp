// The steps that build or take apart: arrays, subscripts, literals, parentheses and calls.
#include <algorithm>
#include <vector>

#include "emulator/expressions/calls.h"
#include "emulator/expressions/evaluator.h"
#include "emulator/expressions/evaluator_steps.h"
#include "emulator/expressions/recording.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/graph_memory.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

// The elements of the literals being gathered, those of an inner literal behind those of the outer one.
std::vector<double> literalElements;

CellKind arrayKind(const ProgramCell &cell) {
    if (isToken(cell, token::list)) return CellKind::list;
    return isToken(cell, token::matrix) ? CellKind::matrix : CellKind::blank;
}

// The array at p + 1 for its token at p: a copy, or, where a subscript seems to follow, the array itself for the time
// up to the end of the subscripts (makeCopiesOfBorrowed).
MatrixDescriptor *arrayForExpression(const Stretch &stretch, int p, MatrixDescriptor *array) {
    const bool isSubscripted = isToken(stretch.cellOrNothing(p + 2), token::openBracket);
    if (isSubscripted && !evaluateWithoutShortcuts && matrixBorrow(array)) return array;
    return matrixCopy(ownedTemporarily, array);
}

// F Result and R Result: the matrix that the last table has left.
void resolveResults(Stretch &stretch) {
    for (int p = stretch.first; p < stretch.end(); p++) {
        const bool isTable = isToken(stretch.cells[p], {0x7F, 0x90});
        if (!isTable && !isToken(stretch.cells[p], {0x7F, 0x94})) continue;
        if (refusesRecording()) return;
        MatrixDescriptor *result = isTable ? graphs.tableResult : graphs.recursionResult;
        if (result == nullptr) {
            dimError();
        } else {
            makeArray(stretch.cells[p], CellKind::matrix, matrixCopy(ownedTemporarily, result));
        }
    }
}

// While an expression is recorded: the array stands for itself until its subscripts are read.
void recordArrayAt(Stretch &stretch, int p, CellKind kind) {
    MatrixDescriptor *array = recordArray(kind, stretch.cells[p + 1]);
    if (array == nullptr) return;
    makeArray(stretch.cells[p], kind, array);
    stretch.blank(p + 1);
    stretch.compact();
}

// Only subscripts may read a variable's own array: what they have left gets the copy that all else works on.
void makeCopiesOfBorrowed(Stretch &stretch) {
    for (int p = stretch.first; p < stretch.end(); p++) {
        ProgramCell &cell = stretch.cells[p];
        if (isArray(cell) && refusesRecording()) return;
        if (isArray(cell) && cell.matrix->owner == ownedByVariable) cell.matrix = matrixUnborrow(cell.matrix);
    }
}

// The element that the subscript cells from p + 2 on name; 0 after a report.
ComplexValue subscriptedElement(const Stretch &stretch, int p) {
    const ProgramCell &array = stretch.cells[p];
    const ProgramCell &firstSubscript = stretch.cellOrNothing(p + 2);
    const ProgramCell &secondSubscript = stretch.cellOrNothing(p + 4);
    const bool isList = array.kind == CellKind::list;
    if (!isNumber(firstSubscript) ||
        (!isList && (!isToken(stretch.cellOrNothing(p + 3), token::comma) || !isNumber(secondSubscript))))
        synError();
    if (recording != nullptr)
        return recordElement(array.matrix, array.kind, firstSubscript.value, secondSubscript.value);
    const int row = cutToInteger(firstSubscript.value.re) - 1;
    const int column = isList ? 0 : cutToInteger(secondSubscript.value.re) - 1;
    return complexReal(matrixElement(array.matrix, column, row));
}

// p is an array, p + 1 the bracket, and p + 3 lies in the stretch.
void resolveSubscriptAt(Stretch &stretch, int p) {
    int depth = 1;
    int close = p + 3;
    for (; close < stretch.end(); close++) {
        if (isToken(stretch.cells[close], token::openBracket)) depth++;
        if (isToken(stretch.cells[close], token::closeBracket) && --depth == 0) break;
    }
    if (depth > 1) synError();
    const int countBefore = stretch.count;
    evaluateWithin(stretch, p + 2, close - 1);
    close -= countBefore - stretch.count;
    const bool leftOpen = depth > 0;
    const int lastSubscript = stretch.cells[p].kind == CellKind::list ? p + 2 : p + 4;
    makeNumber(stretch.cells[p], subscriptedElement(stretch, p));
    blankCells(stretch.cells, p + 1, std::min(leftOpen ? lastSubscript + 1 : close + 1, stretch.end()));
    stretch.compact();
}

// The elements of one literal: those from base on.
struct Gathering {
    std::size_t base = literalElements.size();
    int count = 0;
};

// The 301st element reports, for a matrix literal with its box; it and those behind it are dropped.
void gather(Gathering &gathering, double value, CellKind kind) {
    if (gathering.count < elementLimit) literalElements.push_back(value);
    if (gathering.count == elementLimit) {
        synError();
        if (kind == CellKind::matrix) failWith(Text::literalTooLong);
    }
    gathering.count++;
}

// The cell at p becomes the array of the elements gathered; the cells behind it up to end, excluded, go.
void finishLiteral(Stretch &stretch, int p, int end, CellKind kind, const Gathering &gathering, int rows) {
    const auto first = literalElements.begin() + static_cast<std::ptrdiff_t>(gathering.base);
    const int gathered = static_cast<int>(literalElements.end() - first);
    MatrixDescriptor *array = matrixAllocate(ownedTemporarily, rows > 0 ? gathered / rows : 1, rows);
    std::copy_n(first, matrixSize(array), matrixElements(array));
    literalElements.resize(gathering.base);
    makeArray(stretch.cells[p], kind, array);
    blankCells(stretch.cells, p + 1, std::min(end, stretch.end()));
    stretch.compact();
}

// Takes every second cell from p + 1 on, until the brace stands behind one.
void makeListLiteral(Stretch &stretch, int p) {
    int close = findToken(token::closeBrace, stretch.cells, p, stretch.end() - p);
    if (close < 0) return synError();
    const int countBefore = stretch.count;
    evaluateWithin(stretch, p + 1, close - 1);
    close -= countBefore - stretch.count;
    Gathering gathering;
    for (int i = p + 1;; i += 2) {
        if (i >= close) {  // no element is left, but no brace stood behind one
            synError();
            break;
        }
        if (!isNumber(stretch.cells[i])) synError();
        gather(gathering, stretch.cells[i].value.re, CellKind::list);
        if (i + 1 == close) break;
    }
    finishLiteral(stretch, p, close + 1, CellKind::list, gathering, std::min(gathering.count, elementLimit));
}

// Evaluates the cells from q up to separator as an element of its own.
double matrixLiteralElement(Stretch &stretch, int q, int separator) {
    int count = separator - q;
    evaluate(stretch.cells, q, count);
    if (count != 1 || !isNumber(stretch.cells[q])) synError();
    const ComplexValue value = count > 0 ? stretch.cells[q].value : ComplexValue{};
    if (value.im != 0) maError();
    return value.re;
}

// secondBracket is the second 0x5B of the pass; the cell before it becomes the matrix.
void makeMatrixLiteral(Stretch &stretch, int secondBracket) {
    Gathering gathering;
    const int end = stretch.end();
    int rows = 0;
    int q = secondBracket + 1;
    while (q < end) {
        int separator = q + 1;  // what stands at q belongs to the element, a comma or bracket too
        while (separator < end && !isToken(stretch.cells[separator], token::comma) &&
               !isToken(stretch.cells[separator], token::closeBracket))
            separator++;
        const bool rowEnds = separator == end || isToken(stretch.cells[separator], token::closeBracket);
        if (separator == end) synError();  // a row without its bracket ends with the stretch
        gather(gathering, matrixLiteralElement(stretch, q, separator), CellKind::matrix);
        rows += rowEnds;
        q = separator + 1;
        if (isToken(stretch.cellOrNothing(q), token::closeBracket)) break;
        if (isToken(stretch.cellOrNothing(q), token::openBracket)) q++;
    }
    if (rows == 0) synError();  // closed behind a comma, or opened at the very end
    finishLiteral(stretch, secondBracket - 1, q + 1, CellKind::matrix, gathering, std::max(rows, 1));
}

struct OpenParenthesis {
    int at = 0;
    Opening sort = Opening::none;
};

// The parentheses open at one time in one scan.
struct ParenStack {
    OpenParenthesis entries[parenthesisLimit];
    int depth = 0;
};

// close is the place of the closing parenthesis, or the end of the stretch where it is missing.
void closePair(Stretch &stretch, OpenParenthesis open, int close) {
    int inner = close - open.at - 1;
    if (open.sort == Opening::function && refusesRecording()) {
        blankCells(stretch.cells, open.at, std::min(close, stretch.end()));
    } else if (open.sort == Opening::function) {
        evaluateFunctionCall(stretch.cells, open.at, inner);
    } else {
        evaluate(stretch.cells, open.at + 1, inner);
        stretch.blank(open.at);
        blankCells(stretch.cells, open.at + 1 + inner, std::min(close, stretch.end()));
    }
    if (close < stretch.end()) stretch.blank(close);
    stretch.compact();
}

// The place of the parenthesis that closes the one at p, or the end of the stretch where it is missing.
int findClosing(const Stretch &stretch, int p) {
    int depth = 0;
    for (int i = p; i < stretch.end(); i++) {
        const ProgramCell &cell = stretch.cells[i];
        if (cell.kind != CellKind::token) continue;
        if (factsOf(cell).opening != Opening::none) depth++;
        if (isToken(cell, token::closeParenthesis) && --depth == 0) return i;
    }
    return stretch.end();
}

void removeWithReport(Stretch &stretch, int p) {
    synError();
    stretch.blank(p);
    stretch.compact();
}

// One scan, up to the first closing or fault. False when nothing was left to close.
bool closeInnermost(Stretch &stretch) {
    ParenStack stack;
    for (int p = stretch.first; p < stretch.end(); p++) {
        const ProgramCell &cell = stretch.cells[p];
        if (cell.kind != CellKind::token) continue;
        if (const Opening sort = factsOf(cell).opening; sort != Opening::none) {
            if (stack.depth == parenthesisLimit) {
                removeWithReport(stretch, p);
                return true;
            }
            stack.entries[stack.depth++] = {p, sort};
        } else if (isToken(cell, token::closeParenthesis)) {
            if (stack.depth == 0) {
                removeWithReport(stretch, p);
            } else {
                closePair(stretch, stack.entries[stack.depth - 1], p);
            }
            return true;
        }
    }
    if (stack.depth == 0) return false;
    closePair(stretch, stack.entries[stack.depth - 1], stretch.end());
    return true;
}

}  // namespace

// Outermost first: what stands within is written out, not evaluated.
void closeQuotedCalls(Stretch &stretch) {
    for (int p = stretch.first; p < stretch.end(); p++) {
        const OperatorRow *row = operatorRow(stretch.cells[p], Step::quotedCalls);
        if (row == nullptr) continue;
        if (refusesRecording()) return;
        const int close = findClosing(stretch, p);
        stretch.cells[p] = row->call({stretch.cells, p + 1, close - p - 1});
        blankCells(stretch.cells, p + 1, std::min(close + 1, stretch.end()));
        stretch.compact();
    }
}

void resolveArrays(Stretch &stretch) {
    resolveResults(stretch);
    for (int p = stretch.first; p + 1 < stretch.end(); p++) {
        const CellKind kind = arrayKind(stretch.cells[p]);
        if (kind == CellKind::blank) continue;
        if (recording != nullptr) {
            recordArrayAt(stretch, p, kind);
            continue;
        }
        const MatrixSlot *slot =
            kind == CellKind::list ? listSlotRef(stretch.cells, p + 1) : matrixSlotRef(stretch.cells, p + 1);
        if (slot == nullptr) continue;
        if (*slot == nullptr) {
            dimError();
            continue;
        }
        makeArray(stretch.cells[p], kind, arrayForExpression(stretch, p, *slot));
        stretch.blank(p + 1);
        stretch.compact();
    }
}

void resolveSubscripts(Stretch &stretch) {
    for (int p = stretch.first; p + 3 < stretch.end(); p++) {
        if (isArray(stretch.cells[p]) && isToken(stretch.cells[p + 1], token::openBracket))
            resolveSubscriptAt(stretch, p);
    }
    makeCopiesOfBorrowed(stretch);
}

void makeLiterals(Stretch &stretch) {
    int brackets = 0;
    for (int p = stretch.first; p < stretch.end(); p++) {
        const bool opens = isToken(stretch.cells[p], token::openBrace) || isToken(stretch.cells[p], token::openBracket);
        if (opens && refusesRecording()) return;
        if (isToken(stretch.cells[p], token::openBrace)) {
            makeListLiteral(stretch, p);
        } else if (isToken(stretch.cells[p], token::openBracket) && ++brackets == 2) {
            makeMatrixLiteral(stretch, p);
            brackets = 0;
            p--;  // the cell behind the matrix has come to stand at p
        }
    }
}

void closeParentheses(Stretch &stretch) {
    while (closeInnermost(stretch)) {
    }
}

}  // namespace numalink
