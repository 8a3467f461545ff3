// What graphs, tables, dynamic graphs and recursions are made of: the functions Y1 to Y20 with their looks, formulas of
// sequences, and the settings that statements make. Empty at the start of a run. Run thread.
#pragma once

#include <array>
#include <vector>

#include "emulator/machine/cells.h"

namespace numalink {

// An expression as it was written, its digits made numbers; no strings in it. Empty: there is none.
using FormulaCells = std::vector<ProgramCell>;

enum class GraphType : std::uint8_t { equal, polar, parametric, upright, above, below, fromOn, upTo };  // upright: X =
constexpr bool isInequality(GraphType type) { return type >= GraphType::above; }

enum class LineStyle : std::uint8_t { normal, thick, broken, dotted };

struct GraphFunction {
    GraphType type = GraphType::equal;
    FormulaCells formula;  // of a parametric one X
    FormulaCells second;   // and its Y
    PixelColor color = pixelColor::blue;
    LineStyle style = LineStyle::normal;
    bool inGraph = false, inTable = false, isDynamic = false;  // selected
};
inline bool isComplete(const GraphFunction &function) {
    return !function.formula.empty() && (function.type != GraphType::parametric || !function.second.empty());
}
inline constexpr int graphFunctionCount = 20;
using GraphFunctions = std::array<GraphFunction, graphFunctionCount>;

struct GraphMemory {
    GraphFunctions functions;
    ViewWindow window;
};

// The sequences a and b.
enum class SequenceType : std::uint8_t { general, twoTerms, threeTerms };  // of n; of a at n; of a at n and n + 1
struct SequenceFormula {
    FormulaCells formula;
    bool isSelected = true;
};
inline constexpr int sequenceCount = 2;

// The right screen's window, in the order of the view window's values.
inline constexpr std::array<Token, windowValueCount> rightWindow = {{{0x7F, 0x10},
                                                                     {0x7F, 0x11},
                                                                     {0x7F, 0x12},
                                                                     {0x7F, 0x14},
                                                                     {0x7F, 0x15},
                                                                     {0x7F, 0x16},
                                                                     {0x7F, 0x18},
                                                                     {0x7F, 0x19},
                                                                     {0x7F, 0x1A}}};

enum class DualScreen : std::uint8_t { off, graphs, graphAndTable };
enum class DynamicSpeed : std::uint8_t { normal, fast, slow, byKey };

struct GraphSettings {
    GraphFunctions functions;
    GraphType newType = GraphType::equal;  // of what is stored in Y
    std::array<GraphMemory, memoryCount> memories;
    bool plotsOnly = false;  // dots that aren't joined
    bool hidesAxes = false;  // told by AxesOff: graphs have axes unless a program does without
    bool showsGrid = false;  // told by GridOn
    LineStyle sketchStyle = LineStyle::normal;
    PixelColor sketchColor = pixelColor::blue;
    DualScreen dual = DualScreen::off;
    int listOfX = 0;                       // of tables: 1 to 6, or 0 for start, end and pitch
    MatrixSlot tableResult = nullptr;      // x, then a column for each function; owned by a variable
    MatrixSlot recursionResult = nullptr;  // n, then a column for each sequence and each sum

    Token dynamicVariable{'A'};
    DynamicSpeed dynamicSpeed = DynamicSpeed::normal;
    bool dynamicGoesOn = false;  // until the run is stopped
    bool keepsLocus = false;

    SequenceType sequenceType = SequenceType::twoTerms;
    std::array<SequenceFormula, sequenceCount> sequences;
    bool showsSums = false;
};
extern GraphSettings graphs;

// The function of a number 1 to 20, cut; null for others.
GraphFunction *graphFunction(double number);

// The tokens that name a function when a number stands behind: Y, r, Xt, Yt, X.
inline constexpr Token firstFunctionName{0x7F, 0xF0}, lastFunctionName{0x7F, 0xF4};
enum class FunctionName : std::uint8_t { y, r, xt, yt, x, none };
FunctionName functionNameOf(const ProgramCell &cell);
// Whether a formula stored by that name belongs to the type.
bool namesType(FunctionName name, GraphType type);

}  // namespace numalink
