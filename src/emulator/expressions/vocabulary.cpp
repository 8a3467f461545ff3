// The basic operator rows, the groups of all rows, and the table of token facts that the evaluator's passes look into.
#include "emulator/expressions/vocabulary.h"

#include <algorithm>
#include <cmath>

#include "emulator/expressions/angles.h"
#include "emulator/expressions/array_functions.h"
#include "emulator/expressions/calculus_functions.h"
#include "emulator/expressions/complex_math.h"
#include "emulator/expressions/number_functions.h"
#include "emulator/expressions/statistics_functions.h"
#include "emulator/machine/graph_memory.h"
#include "emulator/machine/key_port.h"
#include "emulator/screens/number_input.h"
#include "text/token_table.h"

namespace numalink {

namespace {

using Value = ComplexValue;

Value getKeyValue() { return complexReal(keyPort.getKey()); }
Value imaginaryUnit() { return complexMake(0, 1); }
// A generator of 0 to 32767, never seeded: each process meets the same sequence.
constexpr std::uint32_t firstChance = 1;
std::uint32_t chanceState = firstChance;
int chance() {
    chanceState = chanceState * 1103515245 + 12345;
    return static_cast<int>(chanceState >> 16 & 0x7FFF);
}

Value randomValue() { return complexReal(chance() / 32767.0); }
Value piValue() { return complexReal(2 * std::acos(0.0)); }

Value conjugate(Value a) { return complexMake(a.re, -a.im); }
Value realPart(Value a) { return complexReal(a.re); }
Value imaginaryPart(Value a) { return complexReal(a.im); }

// A function of the real part alone.
template <double (*function)(double)>
Value ofReal(Value a) {
    return complexReal(function(a.re));
}
// The same of an angle in the unit of the machine, and one that gives an angle.
template <double (*function)(double, AngleUnit)>
Value ofAngle(Value a) {
    return complexReal(function(a.re, machine.angleUnit));
}
template <double (*function)(double)>
Value toAngle(Value a) {
    return complexReal(function(a.re) / radiansPerUnit(machine.angleUnit));
}
Value argumentOf(Value a) { return complexReal(complexArg(a).re / radiansPerUnit(machine.angleUnit)); }
double cubeRoot(double x) { return std::pow(x, 1.0 / 3.0); }
double integerPart(double x) { return wrappedInteger(x); }
double notZero(double x) { return x == 0 ? 1 : 0; }

// In another base than ten, all bits the other way about.
Value notOrComplement(Value a) {
    return complexReal(machine.numberBase == decimalBase ? notZero(a.re) : ~wrappedInteger(a.re));
}

Value negated(Value a) { return complexMake(-a.re, -a.im); }
Value integerParts(Value a) { return complexMake(integerPart(a.re), integerPart(a.im)); }
Value fractions(Value a) { return complexMake(a.re - integerPart(a.re), a.im - integerPart(a.im)); }
Value floors(Value a) { return complexMake(std::floor(a.re), std::floor(a.im)); }

Value unchanged(Value a) { return a; }
Value fromZero(Value a) { return complexSub(complexReal(0), a); }

Value both(Value a, Value b) { return truth(a.re != 0 && b.re != 0); }
Value either(Value a, Value b) { return truth(a.re != 0 || b.re != 0); }
Value bitsOfBoth(Value a, Value b) { return complexReal(wrappedInteger(a.re) & wrappedInteger(b.re)); }
Value bitsOfEither(Value a, Value b) { return complexReal(wrappedInteger(a.re) | wrappedInteger(b.re)); }

// The sources stand in the order in which they go through a stretch; other steps in rising order of their tokens.
constexpr OperatorRow rows[] = {
    source({0x7F, 0x8F}, "GetKey", getKeyValue),
    source({0x7F, 0x50}, "i", imaginaryUnit),
    source({0x3F}, "?", readNumber),
    source({0xC1}, "Ran#", randomValue),
    source({0xD0}, "pi", piValue),

    unary({0x7F, 0x22}, Step::complexPrefix, "Arg", argumentOf),
    unary({0x7F, 0x23}, Step::complexPrefix, "Conjg", conjugate),
    unary({0x7F, 0x24}, Step::complexPrefix, "ReP", realPart),
    unary({0x7F, 0x25}, Step::complexPrefix, "ImP", imaginaryPart),

    unary({0x8B}, Step::postfix, "square", complexSquare),
    unary({0x9B}, Step::postfix, "inverse", complexInverse),

    binary({0xA8}, Step::power, "power", complexPow, Bound::unlessPositive),
    binary({0xB8}, Step::power, "x-th root", complexRoot, Bound::unlessPositive),

    unary({0x7F, 0xB3}, Step::prefix, "Not", ofReal<notZero>),
    unary({0x81}, Step::prefix, "sin", ofAngle<sineOf>),
    unary({0x82}, Step::prefix, "cos", ofAngle<cosineOf>),
    unary({0x83}, Step::prefix, "tan", ofAngle<tangentOf>),
    unary({0x85}, Step::prefix, "ln", ofReal<std::log>),
    unary({0x86}, Step::prefix, "square root", ofReal<std::sqrt>),
    unary({0x87}, Step::prefix, "(-)", negated),
    unary({0x91}, Step::prefix, "arc sin", toAngle<std::asin>),
    unary({0x92}, Step::prefix, "arc cos", toAngle<std::acos>),
    unary({0x93}, Step::prefix, "arc tan", toAngle<std::atan>),
    unary({0x95}, Step::prefix, "log", ofReal<std::log10>),
    unary({0x96}, Step::prefix, "cube root", ofReal<cubeRoot>),
    unary({0x97}, Step::prefix, "Abs", complexAbs),
    unary({0xA1}, Step::prefix, "sinh", ofReal<std::sinh>),
    unary({0xA2}, Step::prefix, "cosh", ofReal<std::cosh>),
    unary({0xA3}, Step::prefix, "tanh", ofReal<std::tanh>),
    unary({0xA6}, Step::prefix, "Int", integerParts),
    unary({0xA7}, Step::prefix, "Not", notOrComplement),
    unary({0xB6}, Step::prefix, "Frac", fractions),
    unary({0xDE}, Step::prefix, "Intg", floors),

    binary({0xA9}, Step::multiplication, "times", complexMul),
    binary({0xB9}, Step::multiplication, "divide", complexDiv),
    binary({0xBB}, Step::multiplication, "fraction mark", complexDiv),

    unary({0x89}, Step::sign, "unary plus", unchanged),
    unary({0x99}, Step::sign, "unary minus", fromZero),

    binary({0x89}, Step::addition, "plus", complexAdd),
    binary({0x99}, Step::addition, "minus", complexSub),

    binary({0x10}, Step::relation, "less or equal", complexLessOrEqual),
    binary({0x11}, Step::relation, "not equal", complexNotEqual),
    binary({0x12}, Step::relation, "greater or equal", complexGreaterOrEqual),
    binary({0x3C}, Step::relation, "less", complexLess),
    binary({0x3D}, Step::relation, "equal", complexEqual),
    binary({0x3E}, Step::relation, "greater", complexGreater),

    binary({0x7F, 0xB0}, Step::logicalAnd, "And", both),
    binary({0xBA}, Step::logicalAnd, "and", bitsOfBoth),
    binary({0x7F, 0xB1}, Step::logicalOr, "Or", either),
    binary({0xAA}, Step::logicalOr, "or", bitsOfEither),
};
static_assert(stepsRise(rows));

std::span<const OperatorRow> basicRows() { return rows; }

// The groups. A token has one row in all of them, plus and minus two.
constexpr OperatorGroup groups[] = {basicRows,  arrayRows,    listRows,      matrixRows,
                                    numberRows, calculusRows, statisticsRows};

// The tokens of the steps that aren't operators.
struct StructureRow {
    Token token;
    StepMask steps = 0;
};
constexpr StructureRow structure[] = {
    {token::fractionMark, maskOf(Step::power)},  // with calculator modes, applyPowers takes it first
    {{0x1A}, maskOf(Step::baseNumbers)},         // the digits A to F
    {{0x1B}, maskOf(Step::baseNumbers)},
    {{0x1C}, maskOf(Step::baseNumbers)},
    {{0x1D}, maskOf(Step::baseNumbers)},
    {{0x1E}, maskOf(Step::baseNumbers)},
    {{0x1F}, maskOf(Step::baseNumbers)},
    {{0x84}, maskOf(Step::baseNumbers)},  // h, d, o, b ahead of digits
    {{0x94}, maskOf(Step::baseNumbers)},
    {{0xA4}, maskOf(Step::baseNumbers)},
    {{0xB4}, maskOf(Step::baseNumbers)},
    {{0x7F, 0x90}, maskOf(Step::arrays)},  // F Result, R Result
    {{0x7F, 0x94}, maskOf(Step::arrays)},
    {token::mode, maskOf(Step::variables)},
    {token::list, maskOf(Step::arrays)},
    {token::matrix, maskOf(Step::arrays)},
    {token::openBracket, maskOf(Step::subscripts) | maskOf(Step::literals)},
    {token::openBrace, maskOf(Step::literals)},
    {token::openParenthesis, maskOf(Step::parentheses)},
    {token::closeParenthesis, maskOf(Step::parentheses)},
    {token::point, maskOf(Step::lonePoint)},
};

// A plus or minus is one of them where it stands between two values.
constexpr StepMask binarySteps = maskOf(Step::power) | maskOf(Step::combination) | maskOf(Step::multiplication) |
                                 maskOf(Step::sign) | maskOf(Step::addition) | maskOf(Step::relation) |
                                 maskOf(Step::logicalAnd) | maskOf(Step::logicalOr);

constexpr Token firstGraphFunction{0x14}, lastGraphFunction{0x19};

Opening openingOfToken(Token token) {
    if (token == token::openParenthesis) return Opening::plain;
    const std::uint8_t bytes[] = {token.first, token.second};
    std::string_view text;
    const std::size_t length = isTwoByteLead(token.first) ? 2 : 1;
    if (tokenToText(ByteView(bytes, length), text) == 0) return Opening::none;
    return text.ends_with('(') ? Opening::function : Opening::none;
}

TokenFacts factsOfToken(Token token) {
    TokenFacts facts;
    for (const OperatorGroup group : groups) {
        for (const OperatorRow &row : group()) {
            if (row.token != token) continue;
            facts.steps |= maskOf(row.step);
            (row.step == Step::sign ? facts.sign : facts.row) = &row;
        }
    }
    for (const StructureRow &row : structure) {
        if (row.token == token) facts.steps |= row.steps;
    }
    facts.variable = variableRef(tokenCell(token));
    if (facts.variable != nullptr) facts.steps |= maskOf(Step::variables);
    if ((token.first >= firstGraphFunction.first && token.first <= lastGraphFunction.first) ||
        functionNameOf(tokenCell(token)) != FunctionName::none)
        facts.steps |= maskOf(Step::graphFunctions);
    facts.opening = openingOfToken(token);
    if (facts.opening != Opening::none) facts.steps |= maskOf(Step::parentheses);
    facts.standsBetween = (facts.steps & ~binarySteps) == 0;
    return facts;
}

}  // namespace

void randomRestart() { chanceState = firstChance; }

std::span<const OperatorGroup> operatorGroups() { return groups; }

void refreshOpeningTokens() {
    constexpr std::uint8_t leads[] = {0, 0x7F, 0xF7};
    for (std::size_t page = 0; page < tokenFacts.size(); page++) {
        for (int byte = 0; byte < 256; byte++) {
            const auto last = static_cast<std::uint8_t>(byte);
            const Token token = page == 0 ? Token{last} : Token{leads[page], last};
            tokenFacts[page][last] = factsOfToken(token);
        }
    }
}

}  // namespace numalink
