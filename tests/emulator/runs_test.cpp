// Programs as tests: every file of tests/runs/ is one, run in a machine as a fresh process has it, and what it tells is
// held against what happened.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <vector>

#include "calculator/charset.h"
#include "drawing/dot_fonts.h"
#include "emulator/expressions.h"
#include "emulator/expressions/vocabulary.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/programs.h"
#include "emulator/run/runner.h"
#include "emulator/run/scripted_run.h"
#include "emulator/screens/display.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/pictures.h"
#include "emulator/screens/text_screen.h"
#include "platform/clock.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "support/ui_recorder.h"
#include "text/token_table.h"

namespace numalink {

namespace {

using Lines = std::vector<std::string>;

std::string firstWord(const std::string &line) { return line.substr(0, line.find(' ')); }
std::string behindFirstWord(const std::string &line) {
    const std::size_t blank = line.find(' ');
    return blank == std::string::npos ? "" : line.substr(blank + 1);
}

Lines wordsOf(const std::string &line) {
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}

std::string joined(const Lines &lines, const char *between) {
    std::string all;
    for (const std::string &line : lines) all += (&line == &lines.front() ? "" : between) + line;
    return all;
}

std::string orNone(const std::string &text) { return text.empty() ? "none" : text; }

// By keyword the lines that follow it, after what stands behind it; what may come several times has its operand with
// the keyword: "set FullSpeed 0", "program MAIN", "list 1/2 = 1 2 3", "dots text".
struct RunFile {
    std::vector<std::pair<std::string, Lines>> sections;

    const Lines *find(const std::string &keyword) const {
        for (const auto &[key, lines] : sections)
            if (key == keyword) return &lines;
        return nullptr;
    }
    std::string line(const std::string &keyword, const std::string &otherwise) const {
        const Lines *lines = find(keyword);
        if (lines == nullptr) return otherwise;
        return lines->empty() ? "" : lines->front();
    }
    // The operands of a keyword that may come several times, and their lines.
    std::vector<std::pair<std::string, Lines>> all(const std::string &keyword) const {
        std::vector<std::pair<std::string, Lines>> found;
        for (const auto &[key, lines] : sections)
            if (firstWord(key) == keyword) found.emplace_back(behindFirstWord(key), lines);
        return found;
    }
};

bool isAmong(const std::string &word, std::initializer_list<const char *> words) {
    return std::ranges::any_of(words, [&](const char *each) { return word == each; });
}

void takeLine(RunFile &file, const std::string &line) {
    const std::string word = firstWord(line), rest = behindFirstWord(line);
    if (isAmong(word, {"set", "program", "list", "mat", "dots"})) {
        file.sections.emplace_back(line, Lines{});
    } else if (isAmong(word, {"keys", "getkey", "statements", "ended", "text", "graph", "matrix", "shown", "display",
                              "vars", "errors", "boxes", "row", "mode", "switches"})) {
        file.sections.emplace_back(word, rest.empty() ? Lines{} : Lines{rest});
    } else {
        const bool isProgram = file.sections.back().first.starts_with("program");
        file.sections.back().second.push_back(isProgram && line.starts_with('|') ? line.substr(1) : line);
    }
}

RunFile readRunFile(const std::string &path) {
    RunFile file;
    std::ifstream stream(path);
    for (std::string line; std::getline(stream, line);)
        if (!line.empty() && line[0] != '#') takeLine(file, line);
    return file;
}

std::vector<int> codesOf(const std::string &line) {
    std::vector<int> codes;
    for (const std::string &word : wordsOf(line)) codes.push_back(word == "EXE" ? executeKey : std::stoi(word));
    return codes;
}

RunReport runOf(const RunFile &file) {
    RunScript script;
    script.statementLimit = std::stoull(file.line("statements", "20000"));  // a program that runs away fails
    script.keys = codesOf(file.line("keys", ""));
    script.getKeys = codesOf(file.line("getkey", ""));
    return runScripted(script, [&] {
        programsClear();
        for (const auto &[name, lines] : file.all("program"))
            programAdd(calculatorFromUtf8(name), imageOfWords(joined(lines, "\r\n")));
        return true;
    });
}

// As in a fresh process.
void freshMachine(const RunFile &file) {
    const std::string group = "Numalink.Settings.Emulator.";
    for (const auto *key : {"HaltOnError", "DisplayDebug", "FillListsMatrices", "CalculatorModes"})
        settingsSetValue(group + key, "0");
    settingsSetValue(group + "FullSpeed", "1");
    for (const auto &[key, lines] : file.all("set")) settingsSetValue(group + firstWord(key), behindFirstWord(key));
    poolReset();
    randomRestart();
    machine = EmulatorMachine{};
    clearText();
    clearGraph();
    for (int i = 1; i <= memoryCount; i++) *pictureMemory(i) = Surface(displayWidth, displayHeight);
}

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

// Waits for keys that a script puts in at once needn't be slept through.
struct RunClock {
    RunClock() {
        clockPort.sleepMilliseconds = [](std::uint64_t) {};
    }
    ~RunClock() { clockPort = systemClock; }
};

std::vector<std::string> runFiles(const char *folder) {
    std::vector<std::string> paths;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".run") paths.push_back(entry.path().string());
    }
    std::ranges::sort(paths);
    return paths;
}

class RunMachine : public testing::Test {
protected:
    static void SetUpTestSuite() {
        threadRole = ThreadRole::graphical;
        ASSERT_TRUE(tokenTableLoad());
        ASSERT_TRUE(loadLargeFont());
        ASSERT_TRUE(loadSmallFont());
        settingsLoad();
    }
    RunClock clock;
};

class Runs : public RunMachine, public testing::WithParamInterface<std::string> {};

TEST_P(Runs, EndsAsItsFileTells) {
    const std::string differences = checkRunFile(GetParam());
    EXPECT_TRUE(differences.empty()) << differences;
}

std::string stemOf(const testing::TestParamInfo<std::string> &path) {
    return std::filesystem::path(path.param).stem().string();
}

INSTANTIATE_TEST_SUITE_P(All, Runs, testing::ValuesIn(runFiles(NUMALINK_RUNS_FOLDER)), stemOf);
INSTANTIATE_TEST_SUITE_P(Programs, Runs, testing::ValuesIn(runFiles(NUMALINK_PROGRAMS_FOLDER)), stemOf);

// The language reference: every example is run with calculator modes, and gives what its row tells.

// "keyed 1 2 EXE: A=12" begins with the keys of all waits and of Getkey; what is left is "A=12".
RunFile fileOfExample(const std::string &words, std::string &gives) {
    RunFile file;
    for (const char *line : {"set CalculatorModes 1", "program EXAMPLE"}) takeLine(file, line);
    takeLine(file, "|" + words);
    if (gives.starts_with("keyed ")) {
        const std::size_t colon = gives.find(": ");
        std::string keys;
        for (const std::string &key : wordsOf(gives.substr(6, colon - 6))) {
            constexpr const char *digitKeys[] = {"71", "72", "62", "52", "73", "63", "53", "74", "64", "54"};
            keys += (key.size() == 1 ? digitKeys[key[0] - '0'] : key) + (" " + std::string());
        }
        for (const char *reader : {"keys ", "getkey "}) takeLine(file, reader + keys);
        gives = gives.substr(colon + 2);
    }
    return file;
}

std::string dotFound(const std::string &dot) {
    const std::size_t comma = dot.find(',');
    const Color color = dotAt(graphScreen(), std::stoi(dot), std::stoi(dot.substr(comma + 1)));
    const std::string place = "dot " + dot.substr(0, dot.find(' '));
    if (color == lcdColor::background) return "no " + place;
    if (dot.find(' ') == std::string::npos) return place;
    return place + (color == lcdColor::orange ? " orange" : color == lcdColor::green ? " green" : " blue");
}

// What the run has left of that of which a row tells, in the row's own words.
std::string foundOf(const std::string &told) {
    const std::size_t equals = told.find('=');
    const std::string name = told.substr(0, equals);
    if (told.starts_with("dot ")) return dotFound(told.substr(4));
    if (told.starts_with("no dot ")) return dotFound(told.substr(7));
    if (told.starts_with("List ")) return name + "=" + arrayFound(true, "1/" + name.substr(5));
    if (told.starts_with("Mat ")) return name + "=" + arrayFound(false, name.substr(4));
    if (told.starts_with("shows ")) {
        Lines rows;
        for (int row = 1; row <= textRowCount; row++)
            rows.push_back(joined(wordsOf(utf8FromCalculator(textRowCodes(row))), " "));
        const bool isShown = std::ranges::find(rows, told.substr(6)) != rows.end();
        return isShown ? told : "shows " + joined(rows, "/");
    }
    if (equals == 1) return name + "=" + valueOf(machine.variables[static_cast<std::size_t>(told[0] - 'A')]);
    if (told[0] == '{') return arrayFound(true, "1/Ans");
    if (told[0] == '[') return arrayFound(false, "Ans");
    return valueOf(machine.ans);
}

std::string runExample(const std::string &words, const std::string &row) {
    std::string gives = row;
    const RunFile file = fileOfExample(words, gives);
    const RecordedUi recorded;
    freshMachine(file);
    machine.ans = complexReal(-77);  // so that a statement without a value is told apart from one with the value 0
    const RunReport report = runOf(file);
    if (!report.errors.empty()) return report.errors.front().text;
    std::string found;
    for (std::size_t at = 0, end = 0; at < gives.size(); at = end + 2) {
        end = std::min(gives.find("; ", at), gives.size());
        found += (found.empty() ? "" : "; ") + foundOf(gives.substr(at, end - at));
    }
    return row.substr(0, row.size() - gives.size()) + found;
}

TEST_F(RunMachine, GivesWhatTheLanguageReferenceTells) {
    enum Column { token = 0, example = 8, told = 9 };
    std::ifstream stream(NUMALINK_LANGUAGE_REFERENCE);
    int run = 0;
    std::string line;
    std::getline(stream, line);
    while (std::getline(stream, line)) {
        Lines fields;
        std::istringstream row(line);
        for (std::string field; std::getline(row, field, '\t');) fields.push_back(field);
        if (fields.at(example).empty()) continue;
        EXPECT_EQ(fields.at(told), runExample(fields.at(example), fields.at(told))) << line;
        run++;
    }
    EXPECT_GT(run, 550);
}

}  // namespace

}  // namespace numalink
