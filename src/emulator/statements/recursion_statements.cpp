// The statements of sequences: their formulas, tables and graphs.
#include <cmath>

#include "emulator/expressions/sampled_function.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/named_values.h"
#include "emulator/machine/programs.h"
#include "emulator/machine/run_waits.h"
#include "emulator/screens/display.h"
#include "emulator/statements/graph_drawing.h"
#include "emulator/statements/statement_groups.h"

namespace numalink {

namespace {

// The tokens of a, those of b at the same places: at n, n + 1, n + 2, the first terms 0 to 2, the start of webs, and
// the sums at n and n + 1.
struct SequenceTokens {
    Token terms[3], firstTerms[3], webStart, sum, nextSum;
};
constexpr SequenceTokens tokensOf[sequenceCount] = {{{{0x7F, 0xA0}, {0x7F, 0xA1}, {0x7F, 0xA2}},
                                                     {{0x7F, 0xA4}, {0x7F, 0xA5}, {0x7F, 0xA6}},
                                                     {0x7F, 0xAD},
                                                     {0x7F, 0x8C},
                                                     {0x7F, 0xB5}},
                                                    {{{0x7F, 0xA7}, {0x7F, 0xA8}, {0x7F, 0xA9}},
                                                     {{0x7F, 0xAA}, {0x7F, 0xAB}, {0x7F, 0xAC}},
                                                     {0x7F, 0xAE},
                                                     {0x7F, 0x8D},
                                                     {0x7F, 0xB6}}};
constexpr Token indexToken{0x7F, 0xA3}, startToken{0x7F, 0x95}, endToken{0x7F, 0x96}, pitchToken{0x7F, 0x97};

constexpr int rowLimit = elementLimit;

double &valueOf(Token which) { return namedValue(which).re; }

// Which sequence and which of its terms the cell names; number -1 for none.
struct TermName {
    int number = -1;
    int ahead = 0;  // of n
};
TermName termNamed(const RunState &state, int cell) {
    for (int number = 0; number < sequenceCount; number++) {
        for (int ahead = 0; ahead < 3; ahead++) {
            if (hasCell(state, cell) && isToken(state.statement[cell], tokensOf[number].terms[ahead]))
                return {number, ahead};
        }
    }
    return {};
}

SequenceFormula &sequence(int number) { return graphs.sequences[static_cast<std::size_t>(number)]; }
bool isTaken(int number) { return sequence(number).isSelected && !sequence(number).formula.empty(); }

int orderOf(SequenceType type) { return static_cast<int>(type); }  // terms that the next one is made of

// The index of the first term told: 0, or 1 where the table begins later and the term 0 is left at 0 while the last one
// that a start at 1 needs is told.
int firstIndex() {
    const int order = orderOf(graphs.sequenceType);
    if (valueOf(startToken) < 1) return 0;
    for (int number = 0; number < sequenceCount; number++) {
        const auto &first = tokensOf[number].firstTerms;
        if (isTaken(number) && (valueOf(first[0]) != 0 || valueOf(first[order]) == 0)) return 0;
    }
    return 1;
}

// One sequence on its way: its terms at n and ahead of it, and the sum up to n.
struct Walk {
    double terms[3] = {};
    double sum = 0;
};

// Leaves what the formulas may name.
void nameTerms(int n, const Walk (&walks)[sequenceCount]) {
    valueOf(indexToken) = n;
    for (int number = 0; number < sequenceCount; number++) {
        const Walk &walk = walks[number];
        valueOf(tokensOf[number].terms[0]) = walk.terms[0];
        valueOf(tokensOf[number].terms[1]) = walk.terms[1];
        valueOf(tokensOf[number].sum) = walk.sum;
        valueOf(tokensOf[number].nextSum) = walk.sum + walk.terms[1];
    }
}

// The term of that order ahead, of each sequence taken, from what is named. False after a report or a stop.
bool takeNextTerms(int order, Walk (&walks)[sequenceCount]) {
    if (!takeWork()) return false;
    for (int number = 0; number < sequenceCount; number++) {
        ComplexValue value;
        if (isTaken(number) && !fieldValue(fieldOf(sequence(number).formula), value)) return false;
        walks[number].terms[order] = value.re;
    }
    return true;
}

using Columns = std::vector<std::vector<double>>;

void takeRow(int n, const Walk (&walks)[sequenceCount], Columns &columns) {
    std::size_t column = 0;
    columns[column++].push_back(n);
    for (int number = 0; number < sequenceCount; number++) {
        if (!isTaken(number)) continue;
        columns[column++].push_back(walks[number].terms[0]);
        if (graphs.showsSums) columns[column++].push_back(walks[number].sum);
    }
}

// n, then of each sequence taken its term and, where they are shown, its sum: from R Start to R End.
bool makeColumns(Columns &columns) {
    const int order = orderOf(graphs.sequenceType);
    const double start = valueOf(startToken), end = valueOf(endToken);
    const int pitch = std::max(cutToInteger(valueOf(pitchToken)), 1);
    const int first = order == 0 ? cutToInteger(start) : firstIndex(), last = cutToInteger(end);
    const int shown = std::max(cutToInteger(start), first);
    if (columns.size() == 1 || shown > last || (std::int64_t{last} - shown) / pitch >= rowLimit) {
        argError();
        return false;
    }
    Walk walks[sequenceCount];
    for (int number = 0; number < sequenceCount; number++) {
        for (int i = 0; i < order; i++) walks[number].terms[i] = valueOf(tokensOf[number].firstTerms[first + i]);
    }
    for (int n = first; n <= last; n++) {
        nameTerms(n, walks);
        if (order == 0 && !takeNextTerms(0, walks)) return false;
        for (Walk &walk : walks) walk.sum += walk.terms[0];
        if (n >= shown && (n - shown) % pitch == 0) takeRow(n, walks, columns);
        if (n == last) break;
        nameTerms(n, walks);
        if (order > 0 && !takeNextTerms(order, walks)) return false;
        for (Walk &walk : walks) std::copy(walk.terms + 1, walk.terms + 3, walk.terms);
    }
    return true;
}

bool makeSequences() {
    std::size_t count = 1;
    for (int number = 0; number < sequenceCount; number++) count += isTaken(number) ? 1 + graphs.showsSums : 0;
    Columns columns(count);
    if (!makeColumns(columns)) return false;
    keepColumns(columns, graphs.recursionResult);
    return true;
}

WayOut runShowSequences(RunState &state) {
    expectAlone(state);
    if (makeSequences()) displayValue(arrayCell(CellKind::matrix, graphs.recursionResult), pixelColor::blue);
    return handled(state);
}

// Points of two columns of the result.
void drawColumns(int columnOfX, int columnOfY, bool joins) {
    const MatrixDescriptor &result = *graphs.recursionResult;
    const double *elements = matrixElements(&result);
    CurvePen pen(wholeFrame(), pixelColor::blue, graphs.sketchStyle, joins);
    for (int row = 0; row < result.rows && columnOfX < result.cols && columnOfY < result.cols; row++)
        pen.to(elements[row * result.cols + columnOfX], elements[row * result.cols + columnOfY]);
}

// Terms over n, or sums over n, which are then made whatever the table shows.
template <bool ofSums, bool joins>
WayOut runDrawSequences(RunState &state) {
    expectAlone(state);
    const bool showedSums = graphs.showsSums;
    graphs.showsSums = ofSums || showedSums;
    if (makeSequences()) {
        drawAxes(wholeFrame());
        const int step = graphs.showsSums ? 2 : 1;
        for (int column = ofSums ? 2 : 1; column < graphs.recursionResult->cols; column += step)
            drawColumns(0, column, joins);
    }
    graphs.showsSums = showedSums;
    return graphShown(state);
}

// The terms of two sequences over each other.
WayOut runPhase(RunState &state) {
    const bool isAlone = state.cellCount == 1;
    const TermName ofX = isAlone ? TermName{0, 0} : termNamed(state, 1);
    const TermName ofY = isAlone ? TermName{1, 0} : termNamed(state, 3);
    const bool fits = isAlone || (state.cellCount == 4 && isToken(state.statement[2], token::comma));
    if (!fits || ofX.number < 0 || ofY.number < 0 || !isTaken(ofX.number) || !isTaken(ofY.number)) {
        fits ? argError() : synError();
        return graphShown(state);
    }
    if (makeSequences()) {
        const int step = graphs.showsSums ? 2 : 1;
        const int columnOfB = isTaken(0) ? 1 + step : 1;
        drawAxes(wholeFrame());
        drawColumns(ofX.number == 0 ? 1 : columnOfB, ofY.number == 0 ? 1 : columnOfB, !graphs.plotsOnly);
    }
    return graphShown(state);
}

// The curve of the next term over the term, the line of equals, and the way of the terms between them.
void drawWeb(int number, int count) {
    const GraphFrame frame = wholeFrame();
    drawAxes(frame);
    SampledFunction next(fieldOf(sequence(number).formula), &namedValue(tokensOf[number].terms[0]));
    CurvePen curve = penOf(frame, pixelColor::blue, LineStyle::normal);
    CurvePen equals(frame, pixelColor::blue, LineStyle::normal, true);
    CurvePen web(frame, pixelColor::blue, graphs.sketchStyle, true);
    for (int column = 1; column <= frame.width; column++) {
        const double x = columnX(frame, column);
        double y = 0;
        if (!next.at(x, y)) return;
        curve.toColumn(column, y);
        equals.toColumn(column, x);
    }
    double x = valueOf(tokensOf[number].webStart), y = 0;
    web.to(x, 0);
    for (int i = 0; i < count; i++) {
        if (!next.at(x, y)) return;
        web.to(x, y);
        web.to(y, y);
        x = y;
    }
    next.tellIfNowhere();
}

WayOut runWeb(RunState &state) {
    constexpr int usualCount = 30;
    const TermName name = termNamed(state, 1);
    ComplexValue count = complexReal(usualCount);
    const bool hasCount = hasCell(state, 3) && isToken(state.statement[2], token::comma);
    if (name.number < 0 || (state.cellCount != 2 && !hasCount)) {
        synError();
    } else if (!hasCount || fieldValue({state.statement + 3, state.cellCount - 3}, count)) {
        const bool fits = isTaken(name.number) && graphs.sequenceType == SequenceType::twoTerms && count.re >= 1;
        if (!fits) argError();
        if (fits) drawWeb(name.number, cutToInteger(count.re));
    }
    return graphShown(state);
}

template <bool selected>
WayOut runSelect(RunState &state) {
    const TermName name = termNamed(state, 1);
    if (name.number < 0 || state.cellCount != 2) {
        synError();
    } else {
        sequence(name.number).isSelected = selected;
    }
    return handled(state);
}

using Settings = GraphSettings;

constexpr StatementRow rows[] = {
    one({0xF7, 0x21}, runPhase),                                                       // PlotPhase
    one({0xF7, 0x26}, runDrawSequences<false, true>),                                  // DrawR-Con
    one({0xF7, 0x27}, runDrawSequences<false, false>),                                 // DrawR-Plt
    one({0xF7, 0x28}, runDrawSequences<true, true>),                                   // DrawR sums -Con
    one({0xF7, 0x29}, runDrawSequences<true, false>),                                  // DrawR sums -Plt
    one({0xF7, 0x2A}, runWeb),                                                         // DrawWeb
    one({0xF7, 0x2F}, runShowSequences),                                               // DispR-Tbl
    one({0xF7, 0x90}, runSetting<&Settings::sequenceType, SequenceType::general>),     // a(n)Type
    one({0xF7, 0x91}, runSetting<&Settings::sequenceType, SequenceType::twoTerms>),    // a(n+1)Type
    one({0xF7, 0x92}, runSetting<&Settings::sequenceType, SequenceType::threeTerms>),  // a(n+2)Type
    one({0xF7, 0xC7}, runSetting<&Settings::showsSums, true>),                         // sums On
    one({0xF7, 0xD7}, runSetting<&Settings::showsSums, false>),                        // sums Off
    one({0xF7, 0xCB}, runSelect<true>),                                                // R SelOn
    one({0xF7, 0xDB}, runSelect<false>),                                               // R SelOff
};

}  // namespace

std::span<const StatementRow> recursionStatements() { return rows; }

// The term that it is stored in tells the type.
bool storesSequence(RunState &state) {
    if (state.cellCount != 3 || !isToken(state.statement[1], token::arrow)) return false;
    const TermName name = termNamed(state, 2);
    if (name.number < 0) return false;
    graphs.sequenceType = static_cast<SequenceType>(name.ahead);
    sequence(name.number).formula = cellsOfString(state.statement[0]);
    return true;
}

}  // namespace numalink
