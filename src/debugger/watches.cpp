#include "debugger/watches.h"

#include <algorithm>
#include <utility>

#include "calculator/charset.h"
#include "emulator/expressions/evaluator.h"
#include "emulator/expressions/vocabulary.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/pace.h"
#include "emulator/machine/programs.h"
#include "emulator/machine/run_waits.h"
#include "emulator/screens/display.h"
#include "telling/texts.h"
#include "text/lenient_text.h"
#include "text/view_edit.h"

namespace numalink {

namespace {

constexpr std::uint64_t evaluationLimit = 10000;  // within calls
constexpr char syntaxReport[] = "Syn ERROR";

// The machine as it was, put back at the end. Nothing is freed meanwhile that stood before, so that the elements in the
// pool needn't be kept.
class Untouched {
public:
    Untouched() {
        reportsCounted = &reports;
        beginAside(evaluationLimit);
    }
    ~Untouched() {
        endAside();
        machine = before;
        poolRestore(pool);
        randomGoOn(random);
        reportsCounted = outerReports;
        firstCounted = outerFirst;
        runRepeats = repeated;
        paceCounted = counted;
    }
    Untouched(const Untouched &) = delete;
    Untouched &operator=(const Untouched &) = delete;

    int reports = 0;

private:
    EmulatorMachine before = machine;
    PoolRecords pool = poolRecords();
    std::uint32_t random = randomPlace();
    int *outerReports = reportsCounted;
    const char *outerFirst = firstCounted;
    bool repeated = std::exchange(runRepeats, true);
    bool counted = std::exchange(paceCounted, false);
};

WatchValue faulty(const std::string &text, bool isLasting) {
    WatchValue value;
    value.text = text;
    value.isLasting = isLasting;
    return value;
}

WatchValue valueOf(const ProgramCell &cell) {
    WatchValue value;
    if (isNumber(cell)) {
        value.sort = WatchValue::Sort::number;
        value.number = cell.value;
    } else if (isArray(cell)) {
        value.sort = WatchValue::Sort::array;
        value.isList = cell.kind == CellKind::list;
        value.columns = cell.matrix->cols;
        value.rows = cell.matrix->rows;
        const double *elements = matrixElements(cell.matrix);
        value.elements.assign(elements, elements + matrixSize(cell.matrix));
    } else if (cell.kind == CellKind::string) {
        value.sort = WatchValue::Sort::text;
        value.text = utf8FromCalculator(valueText(cell));
    } else {
        return faulty(syntaxReport, true);
    }
    return value;
}

}  // namespace

WatchExpression readWatch(const std::string &text) {
    WatchExpression expression;
    LenientText whole = lenientTextOf(text);
    Bytes image;
    const std::vector<TextFault> faults = imageOfViewLines({lenientLine(whole, text)}, true, image);
    if (!faults.empty()) {
        expression.fault = wording(Text::watchUnreadable);
        return expression;
    }
    ProgramCells read = cellsOfImage(image);
    expression.cells = std::move(read.cells);
    expression.stringCells = std::move(read.stringCells);
    expression.cells.pop_back();  // the end mark
    if (expression.cells.empty()) expression.fault = wording(Text::watchEmpty);
    if (expression.cells.size() > statementLimit) expression.fault = wording(Text::watchTooLong);
    return expression;
}

WatchValue evaluateWatch(const WatchExpression &expression) {
    if (!expression.fault.empty()) return faulty(expression.fault, true);
    ProgramCell work[statementLimit];
    int count = static_cast<int>(expression.cells.size());
    std::ranges::copy(expression.cells, work);
    const Untouched machineAround;
    evaluate(work, 0, count);
    if (endAside()) return faulty(wording(Text::watchEndless), true);
    if (machineAround.reports > 0) return faulty(firstCounted, firstCounted == std::string_view(syntaxReport));
    return count == 1 ? valueOf(work[0]) : faulty(syntaxReport, true);
}

ValueText watchText(const WatchValue &value) {
    if (value.sort == WatchValue::Sort::number) return valueTextOf(value.number);
    if (value.sort != WatchValue::Sort::array) return {value.text, value.text, value.text};
    constexpr std::size_t shownElements = 20;
    ValueText text{"{", "{", "{"};
    for (std::size_t i = 0; i < value.elements.size() && i < shownElements; i++) {
        const ValueText element = elementTextOf(value.elements[i]);
        const bool startsRow = !value.isList && i > 0 && i % static_cast<std::size_t>(value.columns) == 0;
        const char *between = i == 0 ? "" : startsRow ? "; " : ", ";
        text.shown += between + element.shown;
        text.full += between + element.full;
        text.plain += between + element.plain;
    }
    const char *end = value.elements.size() > shownElements ? ", ...}" : "}";
    return {text.shown + end, text.full + end, text.plain + end};
}

}  // namespace numalink
