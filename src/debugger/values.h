// What a stopped run holds, by the names that the calculator has for it, as text; and changes of it in place. While the
// run is stopped (debugger.h) or between runs, on the thread that gives the debugger its commands.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "emulator/machine/machine.h"
#include "telling/texts.h"

namespace numalink {

// A value as the calculator shows it (UTF-8), and with all of its digits: as few, of 17, as read back to the same bits.
struct ValueText {
    std::string shown;
    std::string full;   // in the calculator's characters
    std::string plain;  // the same as people type it: "0.1", "2-3i", "1.5E+20"
};
ValueText valueTextOf(ComplexValue value);
ValueText elementTextOf(double value);

struct NamedValue {
    std::string name;  // "A", "r", "θ", "Ans", "Xmin"
    ComplexValue value;
};
std::vector<NamedValue> debugVariables();  // A to Z, r, theta, Ans
std::vector<NamedValue> debugWindow();     // the view window

// The arrays that exist: "Mat A", "Mat Ans", "List 3" of the current file, "File 2 List 3".
struct NamedArray {
    std::string name;
    bool isList = false;
    int columns = 0, rows = 0;
    const MatrixDescriptor *array = nullptr;  // until the run goes on
};
std::vector<NamedArray> debugArrays();
double debugElement(const NamedArray &array, int row, int column);  // from 1

// File, angle unit, number format, base, screen mode, background picture, switches: a name and a wording each.
struct NamedText {
    std::string name, text;
};
std::vector<NamedText> debugModes();

// Formulas that are stored: "Y1=", "Xt2=", "an+1=", as text.
std::vector<NamedText> debugFormulas();

// Picture memories that hold anything.
struct NamedPicture {
    std::string name;
    int dots = 0;                      // that are set
    const Surface *surface = nullptr;  // until the run goes on
};
std::vector<NamedPicture> debugPictures();

// All of the above in the groups in which every front end shows it, in their order; of an empty one nothing is shown.
struct ValueGroup {
    enum class Sort { values, texts, pictures, arrays } sort = Sort::values;
    const char *name = "";    // English
    Text title = Text::none;  // none: its values stand for themselves
    std::vector<NamedValue> (*values)() = nullptr;
    std::vector<NamedText> (*texts)() = nullptr;
};
inline constexpr ValueGroup valueGroups[] = {
    {ValueGroup::Sort::values, "Variables", Text::paneVariables, debugVariables},
    {ValueGroup::Sort::values, "View window", Text::groupViewWindow, debugWindow},
    {ValueGroup::Sort::texts, "Modes", Text::groupModes, nullptr, debugModes},
    {ValueGroup::Sort::pictures, "Pictures", Text::groupPictures},
    {ValueGroup::Sort::texts, "Functions and sequences", Text::groupFormulas, nullptr, debugFormulas},
    {ValueGroup::Sort::arrays, "Arrays", Text::none},
};
bool holdsAnything(const ValueGroup &group);

// What can be looked at and changed, by its name: a variable ("A", "theta", "Ans", "Xmin"), an element ("List 1[3]",
// "Mat A[2,1]"), a dot of the screen that is up ("dot 10,20", from 0; its value is 1 when it is set). Names in UTF-8.
struct DebugTarget {
    enum class Sort { variable, listElement, matrixElement, dot };
    Sort sort = Sort::variable;
    ComplexValue *variable = nullptr;
    int array = 0;  // slot
    int file = -1;  // of a list, from 0; -1: whichever is current
    int row = 0, column = 0;
    std::string name;
};
std::optional<DebugTarget> debugTargetNamed(const std::string &name);
// What it holds; nothing for an element that doesn't exist.
std::optional<ComplexValue> debugTargetValue(const DebugTarget &target);

// Puts a number in its place: as people write it ("-1.5E3", "2+3i") or as the calculator shows it. Elements are real,
// dots, of the graph screen alone, 0 or 1.
enum class DebugChange { done, notANumber, notReal, noSuchPlace, runsOn };
DebugChange debugChange(const DebugTarget &target, const std::string &number);

}  // namespace numalink
