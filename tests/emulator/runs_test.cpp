// Programs as tests: every file of tests/runs/ is one, run in a machine as a fresh process has it, and what it tells is
// held against what happened.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "calculator/charset.h"
#include "emulator/expressions.h"
#include "emulator/machine/arrays.h"
#include "emulator/run/runner.h"
#include "emulator/run_files.h"
#include "emulator/screens/display.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/pictures.h"
#include "emulator/screens/text_screen.h"
#include "support/ui_recorder.h"

namespace numalink {

namespace {

std::string orNone(const std::string &text) { return text.empty() ? "none" : text; }

constexpr std::pair<char, Color> dotColors[] = {
    {'.', lcdColor::background}, {'b', lcdColor::blue}, {'g', lcdColor::green}, {'o', lcdColor::orange}};

std::string pictureOf(const Surface &surface) {
    std::string picture;
    for (int y = 0; y < surface.height; y++) {
        std::string row;
        for (int x = 0; x < surface.width; x++) {
            const auto *known = std::ranges::find(dotColors, dotAt(surface, x, y), &std::pair<char, Color>::second);
            row += known == std::end(dotColors) ? '?' : known->first;
        }
        row.erase(row.find_last_not_of('.') + 1);
        if (!row.empty()) picture += (y < 10 ? " " : "") + std::to_string(y) + " " + row + "\n";
    }
    return picture;
}

// "10: 5 7-9 b" into the surface.
void putRow(Surface &surface, const std::string &line) {
    Lines words = wordsOf(line.substr(line.find(':') + 1));
    const auto *color = std::ranges::find(dotColors, words.back()[0], &std::pair<char, Color>::first);
    ASSERT_NE(color, std::end(dotColors)) << line;
    words.pop_back();
    for (const std::string &word : words) {
        const std::size_t dash = word.find('-');
        const int from = std::stoi(word), to = dash == std::string::npos ? from : std::stoi(word.substr(dash + 1));
        for (int x = from; x <= to; x++) putDot(surface, x, std::stoi(line), color->second);
    }
}

std::string valueOf(ComplexValue value) {
    // A residue of polar arithmetic is told apart by the tests of the evaluator.
    if (std::fabs(value.im) < 1e-9) return digitsOf(value.re);
    return digitsOf(value.re) + (value.im < 0 ? "-" : "+") + digitsOf(std::fabs(value.im)) + "i";
}

std::string errorsFound(const RunReport &report) {
    std::string found;
    for (const ErrorReport &error : report.errors) {
        if (found.size() > 200) break;
        found += (found.empty() ? "" : " ") + firstWord(error.text) + "@" + std::to_string(error.statement);
    }
    return orNone(found);
}

std::string boxesFound() {
    Lines found;
    for (const Box &box : uiRecord.boxes) {
        found.push_back(std::to_string(textNumber(box.bodyText)) + "/" + std::to_string(textNumber(box.titleText)));
        for (const std::string &argument : box.arguments) found.back() += " " + argument;
    }
    return orNone(joined(found, " + "));
}

std::string switchesFound() {
    Lines found;
    if (machine.gridSwitch) found.emplace_back("grid");
    for (std::size_t i = 0; i < machine.graphSwitches.size(); i++)
        if (machine.graphSwitches[i]) found.emplace_back(1, static_cast<char>('A' + i));
    return joined(found, " ");
}

// All that aren't 0, and the values of the view window that are expected by name.
std::string variablesFound(const std::string &expected) {
    constexpr const char *windowNames[] = {"Xmin",   "Xmax",      "Xscale",    "Ymin",       "Ymax",
                                           "Yscale", "TThetaMin", "TThetaMax", "TThetaPitch"};
    Lines found;
    const auto add = [&](const std::string &name, ComplexValue value) {
        if (value.re != 0 || value.im != 0) found.push_back(name + "=" + valueOf(value));
    };
    for (int i = 0; i < variableCount; i++) {
        const std::string letter(1, static_cast<char>('A' + i));
        add(i == variableR       ? "r"
            : i == variableTheta ? "theta"
                                 : letter,
            machine.variables[static_cast<std::size_t>(i)]);
    }
    add("Ans", machine.ans);
    for (std::size_t i = 0; i < windowValueCount; i++)
        if (expected.find(windowNames[i]) != std::string::npos)
            found.push_back(windowNames[i] + ("=" + valueOf(machine.window[i])));
    return joined(found, " ");
}

// Of "A", "Ans" for a matrix, "1/2", "1/Ans" for a list.
std::string arrayFound(bool isList, const std::string &name) {
    const std::string number = name.substr(isList ? 2 : 0);
    const bool isAns = number == "Ans";
    ProgramCell cell;
    cell.kind = isList ? CellKind::list : CellKind::matrix;
    cell.matrix = isList ? machine.listSlots[static_cast<std::size_t>(name[0] - '1')]
                                            [static_cast<std::size_t>(isAns ? listAnsSlot : std::stoi(number) - 1)]
                         : machine.matrixSlots[static_cast<std::size_t>(isAns ? matrixAnsSlot : name[0] - 'A')];
    return cell.matrix == nullptr ? "none" : textOfCells(&cell, 1);
}

struct Check {
    const RunFile &file;
    std::string differences = {};

    void same(const std::string &what, const std::string &expected, const std::string &found) {
        if (expected != found) differences += what + ": expected " + expected + ", found " + found + "\n";
    }
    void sameDots(const std::string &what, const Surface &expected, const Surface &found) {
        if (expected.dots != found.dots)
            differences += what + ": expected\n" + pictureOf(expected) + "found\n" + pictureOf(found);
    }
    // The rows of a section in the dots that they name, over what lies below them.
    void surface(const std::string &section, const Surface &found, Surface below) {
        const Lines *rows = file.find(section);
        if (rows == nullptr) return;
        for (const std::string &row : *rows) putRow(below, row);
        sameDots(section, below, found);
    }
    void text();
    void display();
};

void Check::text() {
    const Lines *rows = file.find("text");
    if (rows == nullptr) return;
    std::string expected, found;
    for (std::size_t row = 0; row < textRowCount; row++) {
        std::string codes = utf8FromCalculator(textRowCodes(static_cast<int>(row) + 1));
        codes.erase(codes.find_last_not_of(' ') + 1);
        found += "\n|" + codes;
        expected += "\n" + (row < rows->size() ? (*rows)[row] : "|");
    }
    same("text", expected, found);
}

void Check::display() {
    const std::string which = file.line("display", "");
    if (which.empty()) return;
    Surface expected = which == "graph" ? graphScreen() : which == "matrix" ? matrixScreen() : textScreen();
    for (int y = which == "short" ? 56 : displayHeight; y < displayHeight; y++)
        for (int x = 0; x < displayWidth; x++) putDot(expected, x, y, dotAt(graphScreen(), x, y));
    sameDots("display of the " + which, expected, displayNow());
}

// Empty when all was as expected, else what differs, with pictures of the screens.
std::string checkRunFile(const std::string &path) {
    const RunFile file = readRunFile(path);
    const RecordedUi recorded;
    freshMachine(file);
    const RunReport report = runOf(file);
    constexpr const char *endNames[] = {"running", "end", "triangle", "cursor", "input", "limit", "memory", "nothing"};
    Check check{file};
    check.same("ended", file.line("ended", "end"), endNames[static_cast<int>(report.ended)]);
    check.same("errors", file.line("errors", "none"), errorsFound(report));
    check.same("boxes", file.line("boxes", "none"), boxesFound());
    check.text();
    const Surface empty(displayWidth, displayHeight);
    check.surface("graph", graphScreen(), empty);
    check.surface("matrix", matrixScreen(), empty);
    check.surface("shown", displayNow(), empty);
    check.surface("dots text", textScreen(), textScreen());
    check.display();
    const std::string variables = file.line("vars", "");
    if (file.find("vars") != nullptr) check.same("vars", variables, variablesFound(variables));
    for (const char *sort : {"list", "mat"}) {
        for (const auto &[line, lines] : file.all(sort)) {
            check.same(sort + (" " + firstWord(line)), behindFirstWord(behindFirstWord(line)),
                       arrayFound(sort[0] == 'l', firstWord(line)));
        }
    }
    for (const auto &[what, found] : {std::pair{"row", machine.textRow}, {"mode", machine.screenMode}})
        check.same(what, file.line(what, std::to_string(found)), std::to_string(found));
    if (file.find("switches") != nullptr) check.same("switches", file.line("switches", ""), switchesFound());
    return check.differences;
}

class Runs : public testing::TestWithParam<std::string> {
protected:
    static void SetUpTestSuite() { prepareRuns(); }
    RunClock clock;
};

TEST_P(Runs, EndsAsItsFileTells) {
    const std::string differences = checkRunFile(std::string(NUMALINK_RUNS_FOLDER "/") + GetParam() + ".run");
    EXPECT_TRUE(differences.empty()) << differences;
}

INSTANTIATE_TEST_SUITE_P(All, Runs, testing::ValuesIn(runFiles()), [](const auto &run) { return run.param; });

}  // namespace

}  // namespace numalink
