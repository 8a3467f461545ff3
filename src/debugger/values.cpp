#include "debugger/values.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "calculator/charset.h"
#include "debugger/following.h"
#include "debugger/places.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/graph_memory.h"
#include "emulator/screens/display.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/pictures.h"

namespace numalink {

namespace {

constexpr const char *windowNames[] = {"Xmin",   "Xmax",      "Xscale",    "Ymin",       "Ymax",
                                       "Yscale", "TThetaMin", "TThetaMax", "TThetaPitch"};
static_assert(std::size(windowNames) == windowValueCount);

// Of the types of graph functions, in their order.
struct FunctionWords {
    const char *name, *relation;
};
constexpr FunctionWords functionWords[] = {{"Y", "="}, {"r", "="}, {"Xt", "="}, {"X", "="},
                                           {"Y", ">"}, {"Y", "<"}, {"Y", "≥"},  {"Y", "≤"}};
constexpr const char *sequenceIndices[] = {"n=", "n+1=", "n+2="};  // of the types of sequences

std::string variableName(int variable) {
    if (variable == variableTheta) return "θ";
    return variable == variableR ? "r" : std::string(1, static_cast<char>('A' + variable));
}

// With an exponent only outside of what Norm 2 and 17 digits show without one.
std::string shortest(double value) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-Inf" : "Inf";
    const double size = std::fabs(value);
    const bool isFixed = size == 0 || (size >= 1e-9 && size < 1e17);
    char text[40];
    const auto form = isFixed ? std::chars_format::fixed : std::chars_format::scientific;
    std::string digits(text, std::to_chars(text, text + sizeof text, value, form).ptr);
    std::ranges::replace(digits, 'e', 'E');
    return digits;
}

std::string inCalculatorSigns(std::string plain) {
    constexpr char minus = '\x87', plus = '\x89', exponent = '\xDF';
    for (char &c : plain) c = c == '-' ? minus : c == '+' ? plus : c == 'E' ? exponent : c;
    return utf8FromCalculator(plain);
}

std::string letterOrAns(int slot) {
    return slot == matrixAnsSlot ? "Ans" : std::string(1, static_cast<char>('A' + slot));
}
std::string numberOrAns(int slot) { return slot == listAnsSlot ? "Ans" : std::to_string(slot + 1); }

std::string listName(int file, int slot) {
    const std::string name = "List " + numberOrAns(slot);
    return file == machine.currentFile ? name : "File " + std::to_string(file + 1) + " " + name;
}

// A text that is read from its front; blanks don't count.
struct Reader {
    std::string_view rest;

    void skipBlanks() {
        while (rest.starts_with(' ')) rest.remove_prefix(1);
    }
    bool take(std::string_view word) {
        skipBlanks();
        if (!rest.starts_with(word)) return false;
        rest.remove_prefix(word.size());
        return true;
    }
    bool takeInteger(int &number) {
        skipBlanks();
        const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
        if (error != std::errc{}) return false;
        rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
        return true;
    }
    bool isDone() {
        skipBlanks();
        return rest.empty();
    }
};

ComplexValue *variableNamed(std::string_view name) {
    if (name == "Ans") return &machine.ans;
    if (name == "theta") return &machine.variables[variableTheta];
    for (int i = 0; i < variableCount; i++) {
        if (variableName(i) == name) return &machine.variables[static_cast<std::size_t>(i)];
    }
    for (std::size_t i = 0; i < windowValueCount; i++) {
        if (windowNames[i] == name) return &machine.window[i];
    }
    return nullptr;
}

bool readList(Reader &reader, DebugTarget &target) {
    int file = 0, number = listAnsSlot + 1;
    if (reader.take("File") && (!reader.takeInteger(file) || file < 1 || file > memoryCount)) return false;
    if (!reader.take("List")) return false;
    if (!reader.take("Ans") && (!reader.takeInteger(number) || number < 1 || number > listNumberLimit)) return false;
    target.sort = DebugTarget::Sort::listElement;
    target.file = file - 1;
    target.array = number - 1;
    target.column = 1;
    return reader.take("[") && reader.takeInteger(target.row) && reader.take("]");
}

bool readMatrix(Reader &reader, DebugTarget &target) {
    if (!reader.take("Mat")) return false;
    target.array = matrixAnsSlot;
    if (!reader.take("Ans")) {
        reader.skipBlanks();
        if (reader.rest.empty() || reader.rest[0] < 'A' || reader.rest[0] > 'Z') return false;
        target.array = reader.rest[0] - 'A';
        reader.rest.remove_prefix(1);
    }
    target.sort = DebugTarget::Sort::matrixElement;
    return reader.take("[") && reader.takeInteger(target.row) && reader.take(",") &&
           reader.takeInteger(target.column) && reader.take("]");
}

bool readDot(Reader &reader, DebugTarget &target) {
    target.sort = DebugTarget::Sort::dot;
    return reader.take("dot") && reader.takeInteger(target.column) && reader.take(",") &&
           reader.takeInteger(target.row) && target.column >= 0 && target.column < displayWidth && target.row >= 0 &&
           target.row < displayHeight;
}

double *elementOf(const DebugTarget &target) {
    const auto slot = static_cast<std::size_t>(target.array);
    const auto file = static_cast<std::size_t>(target.file < 0 ? machine.currentFile : target.file);
    MatrixDescriptor *const array =
        target.sort == DebugTarget::Sort::matrixElement ? machine.matrixSlots[slot] : machine.listSlots[file][slot];
    const int row = target.row - 1, column = target.column - 1;
    if (array == nullptr || row < 0 || row >= array->rows || column < 0 || column >= array->cols) return nullptr;
    return matrixElements(array) + std::ptrdiff_t{row} * array->cols + column;
}

// The signs that the calculator shows as people write them.
std::string plainNumber(const std::string &number) {
    std::string plain;
    for (const char code : calculatorFromUtf8(number)) {
        const auto byte = static_cast<std::uint8_t>(code);
        if (byte != ' ') plain += byte == 0x87 || byte == 0x99 ? '-' : byte == 0x89 ? '+' : byte == 0xDF ? 'E' : code;
    }
    return plain;
}

// A signed number at the front.
bool takeNumber(std::string_view &rest, double &number) {
    const bool hasPlus = rest.starts_with('+');
    if (hasPlus) rest.remove_prefix(1);
    if (rest.empty() || (hasPlus && rest[0] == '-')) return false;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
    if (error != std::errc{} || !std::isfinite(number)) return false;
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    return true;
}

std::optional<ComplexValue> readComplex(const std::string &number) {
    const std::string plain = plainNumber(number);
    std::string_view rest = plain;
    double first = 0, second = 0;
    if (!takeNumber(rest, first)) return std::nullopt;
    if (rest == "i") return complexMake(0, first);
    if (rest.empty()) return complexReal(first);
    const std::string_view sign = rest;
    if (rest == "+i" || rest == "-i") return complexMake(first, sign[0] == '-' ? -1 : 1);
    if ((sign[0] != '+' && sign[0] != '-') || !takeNumber(rest, second) || rest != "i") return std::nullopt;
    return complexMake(first, second);
}

std::string switchesText() {
    std::string text = machine.gridSwitch ? "grid" : "";
    for (std::size_t i = 0; i < machine.graphSwitches.size(); i++) {
        if (machine.graphSwitches[i]) text += (text.empty() ? "" : " ") + std::string(1, static_cast<char>('A' + i));
    }
    return text;
}

std::string formatText() {
    if (machine.format.form == NumberForm::normal) return "Norm";
    return (machine.format.form == NumberForm::fixed ? "Fix " : "Sci ") + std::to_string(machine.format.digits);
}

}  // namespace

ValueText valueTextOf(ComplexValue value) {
    ProgramCell cell;
    cell.kind = CellKind::number;
    cell.value = value;
    ValueText text{.shown = utf8FromCalculator(valueText(cell)), .full = {}, .plain = shortest(value.re)};
    if (value.im != 0) text.plain += (std::signbit(value.im) ? "" : "+") + shortest(value.im) + "i";
    text.full = inCalculatorSigns(text.plain);
    return text;
}

ValueText elementTextOf(double value) { return valueTextOf(complexReal(value)); }

std::vector<NamedValue> debugVariables() {
    std::vector<NamedValue> values;
    values.reserve(variableCount + 1);
    for (int i = 0; i < variableCount; i++)
        values.push_back({variableName(i), machine.variables[static_cast<std::size_t>(i)]});
    values.push_back({"Ans", machine.ans});
    return values;
}

std::vector<NamedValue> debugWindow() {
    std::vector<NamedValue> values;
    for (std::size_t i = 0; i < windowValueCount; i++) values.push_back({windowNames[i], machine.window[i]});
    return values;
}

std::vector<NamedArray> debugArrays() {
    std::vector<NamedArray> arrays;
    for (int slot = 0; slot <= matrixAnsSlot; slot++) {
        const MatrixDescriptor *matrix = machine.matrixSlots[static_cast<std::size_t>(slot)];
        if (matrix != nullptr)
            arrays.push_back({"Mat " + letterOrAns(slot), false, matrix->cols, matrix->rows, matrix});
    }
    for (int i = 0; i < memoryCount; i++) {
        const int file = (machine.currentFile + i) % memoryCount;  // its own ahead
        for (int slot = 0; slot <= listAnsSlot; slot++) {
            const MatrixDescriptor *list =
                machine.listSlots[static_cast<std::size_t>(file)][static_cast<std::size_t>(slot)];
            if (list != nullptr) arrays.push_back({listName(file, slot), true, list->cols, list->rows, list});
        }
    }
    return arrays;
}

double debugElement(const NamedArray &array, int row, int column) {
    if (row < 1 || row > array.rows || column < 1 || column > array.columns) return 0;
    return matrixElements(array.array)[(row - 1) * array.columns + column - 1];
}

std::vector<NamedText> debugModes() {
    constexpr const char *units[] = {"Deg", "Rad", "Gra"};
    constexpr const char *screens[] = {"", "graph", "text", "matrix"};
    return {{"File", std::to_string(machine.currentFile + 1)},
            {"Angle", units[static_cast<std::size_t>(machine.angleUnit)]},
            {"Format", formatText()},
            {"Base", std::to_string(machine.numberBase)},
            {"Screen", screens[static_cast<std::size_t>(machine.screenMode & 3)]},
            {"Row", std::to_string(machine.textRow)},
            {"Background", std::to_string(machine.backgroundPicture)},
            {"Switches", switchesText()}};
}

std::vector<NamedText> debugFormulas() {
    std::vector<NamedText> formulas;
    const auto add = [&](const std::string &name, const FormulaCells &formula) {
        if (!formula.empty()) formulas.push_back({name, cellsText(formula.data(), static_cast<int>(formula.size()))});
    };
    for (std::size_t i = 0; i < graphs.functions.size(); i++) {
        const GraphFunction &function = graphs.functions[i];
        const FunctionWords &words = functionWords[static_cast<std::size_t>(function.type)];
        const std::string number = std::to_string(i + 1);
        add(words.name + number + words.relation, function.formula);
        add("Yt" + number + "=", function.second);
    }
    for (std::size_t i = 0; i < graphs.sequences.size(); i++)
        add(std::string(1, static_cast<char>('a' + i)) + sequenceIndices[static_cast<std::size_t>(graphs.sequenceType)],
            graphs.sequences[i].formula);
    return formulas;
}

std::vector<NamedPicture> debugPictures() {
    std::vector<NamedPicture> pictures;
    for (int number = 1; number <= memoryCount; number++) {
        const Surface *picture = pictureMemory(number);
        const auto isSet = [](Color dot) { return dot != lcdColor::background; };
        const auto dots = std::ranges::count_if(picture->dots, isSet);
        if (dots > 0) pictures.push_back({"Pict " + std::to_string(number), static_cast<int>(dots), picture});
    }
    return pictures;
}

bool holdsAnything(const ValueGroup &group) {
    switch (group.sort) {
        case ValueGroup::Sort::values:
            return !group.values().empty();
        case ValueGroup::Sort::texts:
            return !group.texts().empty();
        case ValueGroup::Sort::pictures:
            return !debugPictures().empty();
        case ValueGroup::Sort::arrays:
            break;
    }
    return !debugArrays().empty();
}

std::optional<DebugTarget> debugTargetNamed(const std::string &name) {
    DebugTarget target;
    target.name = name;
    target.variable = variableNamed(name);
    if (target.variable != nullptr) return target;
    for (bool (*read)(Reader &, DebugTarget &) : {readMatrix, readList, readDot}) {
        Reader reader{name};
        if (read(reader, target) && reader.isDone()) return target;
    }
    return std::nullopt;
}

std::optional<ComplexValue> debugTargetValue(const DebugTarget &target) {
    if (target.sort == DebugTarget::Sort::variable) return *target.variable;
    if (target.sort == DebugTarget::Sort::dot) return complexReal(dotIsSet(target.column, target.row) ? 1 : 0);
    const double *element = elementOf(target);
    if (element == nullptr) return std::nullopt;
    return complexReal(*element);
}

DebugChange targetSet(const DebugTarget &target, const std::string &number) {
    const std::optional<ComplexValue> value = readComplex(number);
    if (!value) return DebugChange::notANumber;
    if (target.sort == DebugTarget::Sort::variable) {
        *target.variable = *value;
        return DebugChange::done;
    }
    if (value->im != 0) return DebugChange::notReal;
    if (target.sort == DebugTarget::Sort::dot) {
        if (machine.screenMode != graphMode) return DebugChange::noSuchPlace;
        pixelOff(target.column, target.row);
        if (value->re != 0) pixelOn(target.column, target.row, pixelColor::blue);
        return DebugChange::done;
    }
    double *const element = elementOf(target);
    if (element == nullptr) return DebugChange::noSuchPlace;
    *element = value->re;
    return DebugChange::done;
}

}  // namespace numalink
