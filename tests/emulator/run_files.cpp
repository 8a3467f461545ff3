#include "emulator/run_files.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "calculator/charset.h"
#include "drawing/dot_fonts.h"
#include "emulator/expressions.h"
#include "emulator/expressions/vocabulary.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/programs.h"
#include "emulator/run/runner.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/pictures.h"
#include "emulator/screens/text_screen.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "text/token_table.h"

namespace numalink {

namespace {

bool isAmong(const std::string &word, std::initializer_list<const char *> words) {
    return std::ranges::any_of(words, [&](const char *each) { return word == each; });
}

KeyRuns codesOf(const std::string &line) {
    KeyRuns codes;
    for (const std::string &word : wordsOf(line)) codes.emplace_back(word == "EXE" ? executeKey : std::stoi(word));
    return codes;
}

}  // namespace

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

std::vector<std::string> runFiles(const char *folder) {
    std::vector<std::string> paths;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".run") paths.push_back(entry.path().string());
    }
    std::ranges::sort(paths);
    return paths;
}

RunScript scriptOf(const RunFile &file) {
    RunScript script;
    script.statementLimit = std::stoull(file.line("statements", "20000"));  // a program that runs away fails
    script.keys = codesOf(file.line("keys", ""));
    script.getKeys = codesOf(file.line("getkey", ""));
    return script;
}

bool loadPrograms(const RunFile &file) {
    programsClear();
    for (const auto &[name, lines] : file.all("program"))
        programAdd(calculatorFromUtf8(name), imageOfWords(joined(lines, "\r\n")));
    return true;
}

RunReport runOf(const RunFile &file) {
    return runScripted(scriptOf(file), [&] { return loadPrograms(file); });
}

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

void prepareRuns() {
    threadRole = ThreadRole::graphical;
    if (!tokenTableLoad() || !loadLargeFont() || !loadSmallFont()) throw std::runtime_error("no tables or fonts");
    settingsLoad();
}

}  // namespace numalink
