// Everything that the emulated calculator holds, and the cell in which program text and values travel.
// One machine a process. While a run is on it belongs to the one active run thread; no lock. What other threads share
// with a run stands at the end: keyCode and emulatorRunning, both atomic.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/surface.h"

namespace numalink {

// The one number type: a real number has im 0.
struct ComplexValue {
    double im = 0;
    double re = 0;
};
inline ComplexValue complexMake(double re, double im) { return {im, re}; }
inline ComplexValue complexReal(double re) { return {0, re}; }

// A row of the MatrixTable. A list has one column. Elements are real and lie row by row in the CellPool.
// A descriptor never moves while its row is in use; its elements may, at any free.
struct MatrixDescriptor {
    std::int32_t cols = 0;
    std::int32_t rows = 0;
    std::int32_t firstCell = 0;  // index in the CellPool
    std::int32_t owner = 0;      // 0 free, ownedByVariable, ownedTemporarily
};
inline constexpr std::int32_t ownedByVariable = 1;
inline constexpr std::int32_t ownedTemporarily = 2;  // freed ahead of the next statement
using MatrixSlot = MatrixDescriptor *;               // null: the matrix or list doesn't exist

enum class CellKind : std::uint8_t { blank, token, number, string, matrix, list };

// One element of a program, of a statement and of the evaluator's work. A pass that turns a cell into another kind
// leaves the fields of the old kind standing; value starts as 0, and the pointers hold for their own kind alone.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the union has a first value, which the check doesn't see
struct ProgramCell {
    CellKind kind = CellKind::blank;
    std::uint8_t token1 = 0;
    std::uint8_t token2 = 0;        // behind 0x7F and 0xF7, else 0
    std::uint8_t stringLength = 0;  // cells of the text, at most 255; of a number as it is written: its digits, or 0
    ComplexValue value;
    union {
        const ProgramCell *stringCells = nullptr;  // string: the first cell of the text, tokens all
        MatrixDescriptor *matrix;                  // matrix and list
    };
};
static_assert(sizeof(ProgramCell) == 32);

// The value 0x00BBGGRR. Its order as a number decides which dot covers which. Surfaces hold Color; the two convert
// where a dot is drawn or read.
using PixelColor = std::uint32_t;
constexpr Color colorOf(PixelColor pixel) { return (pixel & 0xFF) << 16 | (pixel & 0xFF00) | (pixel >> 16 & 0xFF); }
constexpr PixelColor pixelColorOf(Color color) { return colorOf(color); }
namespace pixelColor {
inline constexpr PixelColor background = 0xC8DCBE;
inline constexpr PixelColor blue = 0xC80000;
inline constexpr PixelColor orange = 0x0064FF;
inline constexpr PixelColor green = 0x009600;
}  // namespace pixelColor
static_assert(colorOf(pixelColor::orange) == lcdColor::orange && colorOf(pixelColor::blue) == lcdColor::blue);
static_assert(colorOf(pixelColor::green) == lcdColor::green);
static_assert(colorOf(pixelColor::background) == lcdColor::background);

// The limits of the machine, each named once.
inline constexpr int poolCellLimit = 65536;    // doubles in the CellPool
inline constexpr int matrixRowLimit = 200;     // rows of the MatrixTable
inline constexpr int statementLimit = 500;     // cells of a statement or a stored function
inline constexpr int stringLimit = 255;        // cells of a string
inline constexpr int parenthesisLimit = 24;    // open at once in one stretch
inline constexpr int elementLimit = 300;       // elements of a literal or a sequence
inline constexpr int sequenceCellLimit = 100;  // cells of the expression of Seq(
inline constexpr int programLimit = 250;       // programs of a run
inline constexpr int callLimit = 250;          // CallRecords, so calls open at once
inline constexpr int programNameSize = 11;     // characters of a name in the ProgramTable

inline constexpr int displayWidth = 128, displayHeight = 64;  // dots
inline constexpr int textRowCount = 8, textColumnCount = 21;

inline constexpr int variableCount = 28;  // A to Z, r, theta
inline constexpr int variableR = 26, variableTheta = 27;
enum WindowValue { xMin, xMax, xScale, yMin, yMax, yScale, tThetaMin, tThetaMax, tThetaPitch, windowValueCount };
using ViewWindow = std::array<ComplexValue, windowValueCount>;
inline constexpr int memoryCount = 6;  // view window memories, picture memories, list files: 1 to 6 for the user

inline constexpr int matrixSlotCount = 28;  // A to Z, Ans, the one on display
inline constexpr int matrixAnsSlot = 26, matrixDisplaySlot = 27;
inline constexpr int listSlotCount = 28;  // lists 1 to 26, Ans, one that nothing uses
inline constexpr int listNumberLimit = 26, listAnsSlot = 26;
inline constexpr int filledSize = 30;      // rows and columns with FillListsMatrices
inline constexpr int filledListCount = 6;  // lists of each file with FillListsMatrices

enum ScreenMode : int { graphMode = 1, textMode = 2, matrixMode = 3 };

// What the mode commands set; Fix, Sci and the end of both count always, all else with the setting CalculatorModes.
enum class AngleUnit : std::uint8_t { degrees, radians, gradians };
enum class NumberForm : std::uint8_t { normal, fixed, scientific };
struct NumberFormat {
    NumberForm form = NumberForm::normal;
    int digits = 0;                // 0 to 9: decimals, or significant digits, where 0 means 10
    int lowestFixedExponent = -1;  // of normal: -2 with Norm 1, -9 with Norm 2
    bool engineering = false;      // a letter in the place of the exponent
};

// Tokens that name a number beside letters and view window (named_values.h): a place for each second byte behind 0x7F,
// then for each single byte.
inline constexpr std::size_t namedValueCount = 512;

inline constexpr int decimalBase = 10;

struct PlotPoint {
    double x = 0;
    double y = 0;
};

// One report, as a trace keeps it.
struct ErrorReport {
    std::string text;             // "Syn ERROR"
    std::uint64_t statement = 0;  // the statement that reported it, from 1
};

struct EmulatorMachine {
    std::array<ComplexValue, variableCount> variables;
    ComplexValue ans;
    ViewWindow window;
    std::array<ViewWindow, memoryCount> windowMemories;
    std::array<MatrixSlot, matrixSlotCount> matrixSlots{};
    std::array<std::array<MatrixSlot, listSlotCount>, memoryCount> listSlots{};
    bool errorFlag = false;      // set by every report, cleared by the runner
    const char *errorText = "";  // of the report that has set it
    bool exhausted = false;      // the pool or the table gave out: the runner ends the run; cleared by machineStart
    int currentFile = 0;         // 0 to 5
    int backgroundPicture = 0;   // 1 to 6, 0 for none
    PlotPoint plotPrevious, plotCurrent;
    int textRow = 1, textColumn = 0;
    int screenMode = textMode;
    bool shortCopy = false;  // the text is shown over the last graph but for its bottom row
    std::array<PixelColor, textRowCount> rowColor{};
    std::array<bool, 6> graphSwitches{};  // graphSwitchA to graphSwitchF
    bool gridSwitch = false;
    bool calculatorModes = false;  // the setting, as the run started
    AngleUnit angleUnit = AngleUnit::radians;
    NumberFormat format;
    int numberBase = decimalBase;  // of digits and of the display: 2, 8, 10 or 16
    std::array<ComplexValue, namedValueCount> namedValues;
    std::uint64_t statementsRun = 0;                 // since machineStart, the one in progress included
    std::vector<ErrorReport> *errorTrace = nullptr;  // where reports are kept too, for the command line and tests
};

// Owned by the active run thread while a run is on; by the graphical thread between runs.
extern EmulatorMachine machine;

// The key being held, a two-digit KeyCode, 0 for none. Written by the graphical thread at key and mouse events and
// cleared by the waits of the run thread.
extern std::atomic<int> keyCode;

// Set and cleared by emulatorToggle alone (and by a test or the command line in its place); run threads read it.
extern std::atomic<bool> emulatorRunning;

// The mode of the screen that is to be on display. Whoever writes to a screen sets its mode. Run thread.
void setScreenMode(int mode);

// The double without its fraction, toward 0. Beyond 32 bits, and for what is no number, an integer that lies outside
// of every table and screen, so that it may be lowered by 1 without overflow.
int cutToInteger(double value);

}  // namespace numalink
