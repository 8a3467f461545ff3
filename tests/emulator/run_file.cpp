// The reader of run files and the comparison.
#include "emulator/run_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <vector>

#include "calculator/charset.h"
#include "emulator/arrays.h"
#include "emulator/cells.h"
#include "emulator/display.h"
#include "emulator/graph_screen.h"
#include "emulator/pictures.h"
#include "emulator/programs.h"
#include "emulator/runner.h"
#include "emulator/scripted_run.h"
#include "emulator/text_screen.h"
#include "settings/settings_store.h"
#include "support/ui_recorder.h"
#include "text/program_bytes.h"

namespace numalink {

namespace {

struct ProgramText {
    std::string name;
    std::string words;  // lines joined by CR LF
};

struct RunFile {
    std::map<std::string, std::string> settings;
    std::vector<ProgramText> programs;
    RunScript script;
    std::string ended = "end";
    std::map<std::string, std::vector<std::string>>
        sections;                     // of expectations: the lines below, or the rest of the line
    std::vector<std::string> arrays;  // "list 1/2 = 1 2 3"
};

std::string firstWord(const std::string &line) { return line.substr(0, line.find(' ')); }
std::string behindFirstWord(const std::string &line) {
    const std::size_t blank = line.find(' ');
    return blank == std::string::npos ? "" : line.substr(blank + 1);
}

std::vector<std::string> wordsOf(const std::string &line) {
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}

std::vector<int> codesOf(const std::string &line) {
    std::vector<int> codes;
    for (const std::string &word : wordsOf(line)) codes.push_back(word == "EXE" ? executeKey : std::stoi(word));
    return codes;
}

bool isKeyword(const std::string &word) {
    static const char *const all[] = {"set",   "program", "keys",  "getkey", "statements", "ended",   "text",
                                      "graph", "matrix",  "shown", "dots",   "display",    "vars",    "list",
                                      "mat",   "errors",  "boxes", "row",    "mode",       "switches"};
    for (const char *keyword : all) {
        if (word == keyword) return true;
    }
    return false;
}

void takeLine(RunFile &file, const std::string &line, std::string &section) {
    const std::string word = firstWord(line);
    const std::string rest = behindFirstWord(line);
    const bool isBody = line.starts_with('|') || !isKeyword(word);
    if (isBody && section == "program") {
        std::string &words = file.programs.back().words;
        if (!words.empty()) words += "\r\n";
        words += line.starts_with('|') ? line.substr(1) : line;
    } else if (isBody) {
        file.sections[section].push_back(line);
    } else {
        section = word == "dots" ? line : word;
        if (word == "set") file.settings[firstWord(rest)] = behindFirstWord(rest);
        if (word == "program") file.programs.push_back({rest, ""});
        if (word == "keys") file.script.keys = codesOf(rest);
        if (word == "getkey") file.script.getKeys = codesOf(rest);
        if (word == "statements") file.script.statementLimit = std::stoull(rest);
        if (word == "ended") file.ended = rest;
        if (word == "list" || word == "mat") file.arrays.push_back(line);
        file.sections[section];
        if (!rest.empty() && word != "dots") file.sections[section].push_back(rest);
    }
}

RunFile readRunFile(const std::string &path) {
    RunFile file;
    file.script.statementLimit = 20000;  // a program that runs away fails
    std::ifstream stream(path);
    std::string line, section;
    while (std::getline(stream, line)) {
        if (!line.empty() && line[0] != '#') takeLine(file, line, section);
    }
    return file;
}

// Exchange words, with \x{F77B} for raw bytes.
Bytes imageOf(const std::string &words) {
    Bytes image = {':'};
    std::size_t at = 0;
    while (at < words.size()) {
        const std::size_t raw = std::min(words.find("\\x{", at), words.size());
        const std::ptrdiff_t bad = tokensFromWords(words.substr(at, raw - at), image);
        EXPECT_EQ(bad, -1) << "unreadable words: "
                           << words.substr(at + static_cast<std::size_t>(std::max<std::ptrdiff_t>(bad, 0)));
        if (raw == words.size()) break;
        const std::size_t end = words.find('}', raw);
        for (std::size_t i = raw + 3; i + 1 < end; i += 2)
            image.push_back(static_cast<std::uint8_t>(std::stoi(words.substr(i, 2), nullptr, 16)));
        at = end + 1;
    }
    image.push_back(0xFF);
    image.push_back(0);
    return image;
}

// As in a fresh process.
void freshMachine() {
    poolReset();
    machine = EmulatorMachine{};
    clearText();
    clearGraph();
    for (int i = 1; i <= memoryCount; i++) *pictureMemory(i) = Surface(displayWidth, displayHeight);
}

void useSettings(const RunFile &file) {
    const std::string group = "Numalink.Settings.Emulator.";
    for (const auto *key : {"HaltOnError", "DisplayDebug", "FillListsMatrices"}) settingsSetValue(group + key, "0");
    settingsSetValue(group + "FullSpeed", "1");
    for (const auto &[key, value] : file.settings) settingsSetValue(group + key, value);
}

const char *endName(RunEnd ended) {
    static const char *const names[] = {"running", "end", "triangle", "cursor", "input", "limit", "memory", "nothing"};
    return names[static_cast<int>(ended)];
}

char colorLetter(Color color) {
    switch (color) {
        case lcdColor::background:
            return '.';
        case lcdColor::blue:
            return 'b';
        case lcdColor::green:
            return 'g';
        case lcdColor::orange:
            return 'o';
        default:
            return '?';
    }
}

std::string pictureOf(const Surface &surface) {
    std::string picture;
    for (int y = 0; y < surface.height; y++) {
        std::string row;
        for (int x = 0; x < surface.width; x++) row += colorLetter(dotAt(surface, x, y));
        row.erase(row.find_last_not_of('.') + 1);
        if (!row.empty()) picture += (y < 10 ? " " : "") + std::to_string(y) + " " + row + "\n";
    }
    return picture;
}

// "10: 5 7-9 b" into the surface.
void putRow(Surface &surface, const std::string &line) {
    const int y = std::stoi(line);
    std::vector<std::string> words = wordsOf(line.substr(line.find(':') + 1));
    const char letter = words.back()[0];
    words.pop_back();
    const Color color = letter == 'b'   ? lcdColor::blue
                        : letter == 'g' ? lcdColor::green
                        : letter == 'o' ? lcdColor::orange
                                        : lcdColor::background;
    for (const std::string &word : words) {
        const int from = std::stoi(word);
        const std::size_t dash = word.find('-');
        const int to = dash == std::string::npos ? from : std::stoi(word.substr(dash + 1));
        for (int x = from; x <= to; x++) putDot(surface, x, y, color);
    }
}

struct Check {
    const RunFile &file;
    const RunReport &report;
    std::string differences = {};

    const std::vector<std::string> *section(const std::string &name) const {
        const auto found = file.sections.find(name);
        return found == file.sections.end() ? nullptr : &found->second;
    }
    std::string line(const std::string &name, const std::string &otherwise) const {
        const auto *lines = section(name);
        if (lines == nullptr) return otherwise;
        return lines->empty() ? "" : lines->front();
    }
    void same(const std::string &what, const std::string &expected, const std::string &found) {
        if (expected != found) differences += what + ": expected " + expected + ", found " + found + "\n";
    }
    void errors();
    void boxes();
    void text();
    void surface(const std::string &name, const Surface &found);
    void textDots();
    void display();
    void variables();
    void array(const std::string &line);
};

std::string switchesOn() {
    std::string found = machine.gridSwitch ? "grid" : "";
    for (std::size_t i = 0; i < machine.graphSwitches.size(); i++) {
        if (machine.graphSwitches[i]) found += std::string(found.empty() ? "" : " ") + static_cast<char>('A' + i);
    }
    return found;
}

void Check::errors() {
    std::string found;
    for (const ErrorReport &error : report.errors) {
        if (found.size() > 200) break;
        found += (found.empty() ? "" : " ") + firstWord(error.text) + "@" + std::to_string(error.statement);
    }
    same("errors", line("errors", "none"), found.empty() ? "none" : found);
}

void Check::boxes() {
    std::string found;
    for (const Box &box : uiRecord.boxes) {
        found += (found.empty() ? "" : " + ") + std::to_string(box.bodyNumber) + "/" + std::to_string(box.titleNumber);
        for (const std::string &argument : box.arguments) found += " " + argument;
    }
    same("boxes", line("boxes", "none"), found.empty() ? "none" : found);
}

void Check::text() {
    const auto *rows = section("text");
    if (rows == nullptr) return;
    std::string expected, found;
    for (int row = 1; row <= textRowCount; row++) {
        std::string codes = utf8FromCalculator(textRowCodes(row));
        codes.erase(codes.find_last_not_of(' ') + 1);
        found += "|" + codes + "\n";
        const auto index = static_cast<std::size_t>(row - 1);
        expected += (index < rows->size() ? (*rows)[index] : "|") + "\n";
    }
    if (expected != found) differences += "text: expected\n" + expected + "found\n" + found;
}

void Check::surface(const std::string &name, const Surface &found) {
    const auto *rows = section(name);
    if (rows == nullptr) return;
    Surface expected(displayWidth, displayHeight);
    for (const std::string &row : *rows) putRow(expected, row);
    if (expected.dots != found.dots)
        differences += name + ": expected\n" + pictureOf(expected) + "found\n" + pictureOf(found);
}

void Check::textDots() {
    const auto *rows = section("dots text");
    if (rows == nullptr) return;
    Surface expected = textScreen();
    for (const std::string &row : *rows) putRow(expected, row);
    if (expected.dots != textScreen().dots)
        differences += "text dots: expected\n" + pictureOf(expected) + "found\n" + pictureOf(textScreen());
}

void Check::display() {
    const std::string which = line("display", "");
    if (which.empty()) return;
    Surface expected = which == "graph" ? graphScreen() : which == "matrix" ? matrixScreen() : textScreen();
    if (which == "short") {
        for (int y = 56; y < displayHeight; y++) {
            for (int x = 0; x < displayWidth; x++) putDot(expected, x, y, dotAt(graphScreen(), x, y));
        }
    }
    if (displayNow().dots != expected.dots)
        differences += "display: expected " + which + "\n" + pictureOf(expected) + "found\n" + pictureOf(displayNow());
}

std::string numberOf(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.12g", value);
    return text;
}

std::string valueOf(ComplexValue value) {
    // A residue of polar arithmetic is told apart by the tests of the evaluator.
    if (std::fabs(value.im) < 1e-9) return numberOf(value.re);
    return numberOf(value.re) + (value.im < 0 ? "-" : "+") + numberOf(std::fabs(value.im)) + "i";
}

constexpr const char *windowNames[] = {"Xmin",   "Xmax",      "Xscale",    "Ymin",       "Ymax",
                                       "Yscale", "TThetaMin", "TThetaMax", "TThetaPitch"};

void Check::variables() {
    if (section("vars") == nullptr) return;
    const std::string expected = line("vars", "");
    std::string found;
    const auto add = [&](const std::string &name, ComplexValue value, bool always) {
        if (always || value.re != 0 || value.im != 0 || std::isnan(value.re))
            found += (found.empty() ? "" : " ") + name + "=" + valueOf(value);
    };
    for (int i = 0; i < variableCount; i++) {
        const std::string name = i == variableR       ? "r"
                                 : i == variableTheta ? "theta"
                                                      : std::string(1, static_cast<char>('A' + i));
        add(name, machine.variables[static_cast<std::size_t>(i)], false);
    }
    add("Ans", machine.ans, false);
    for (std::size_t i = 0; i < windowValueCount; i++) {
        if (expected.find(windowNames[i]) != std::string::npos) add(windowNames[i], machine.window[i], true);
    }
    same("vars", expected, found);
}

MatrixSlot slotOf(const std::string &name, bool isList) {
    if (!isList)
        return machine.matrixSlots[name == "Ans" ? static_cast<std::size_t>(matrixAnsSlot)
                                                 : static_cast<std::size_t>(name[0] - 'A')];
    const auto file = static_cast<std::size_t>(name[0] - '1');
    const std::string number = name.substr(2);
    return machine.listSlots[file][number == "Ans" ? static_cast<std::size_t>(listAnsSlot)
                                                   : static_cast<std::size_t>(std::stoi(number) - 1)];
}

void Check::array(const std::string &line) {
    const std::vector<std::string> words = wordsOf(line);
    const bool isList = words[0] == "list";
    MatrixSlot slot = slotOf(words[1], isList);
    std::string found = slot == nullptr ? "none" : "";
    for (int row = 0; slot != nullptr && row < slot->rows; row++) {
        for (int column = 0; column < slot->cols; column++)
            found += (found.empty()            ? ""
                      : column == 0 && !isList ? "; "
                                               : " ") +
                     numberOf(matrixElement(slot, column, row));
    }
    const std::size_t equals = line.find("= ");
    same(words[0] + " " + words[1], equals == std::string::npos ? "" : line.substr(equals + 2), found);
}

}  // namespace

std::string checkRunFile(const std::string &path) {
    const RunFile file = readRunFile(path);
    const RecordedUi recorded;
    useSettings(file);
    freshMachine();
    const RunReport report = runScripted(file.script, [&] {
        programsClear();
        for (const ProgramText &program : file.programs)
            programAdd(calculatorFromUtf8(program.name), imageOf(program.words));
        return true;
    });
    Check check{file, report};
    check.same("ended", file.ended, endName(report.ended));
    check.errors();
    check.boxes();
    check.text();
    check.surface("graph", graphScreen());
    check.surface("matrix", matrixScreen());
    check.surface("shown", displayNow());
    check.textDots();
    check.display();
    check.variables();
    for (const std::string &array : file.arrays) check.array(array);
    check.same("row", check.line("row", std::to_string(machine.textRow)), std::to_string(machine.textRow));
    check.same("mode", check.line("mode", std::to_string(machine.screenMode)), std::to_string(machine.screenMode));
    if (check.section("switches") != nullptr) check.same("switches", check.line("switches", ""), switchesOn());
    return check.differences;
}

}  // namespace numalink
