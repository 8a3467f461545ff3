// numalink-referee: runs programs by their plans and by the passes alone, and tells each difference: values to the bit,
// reports with their order, screens, counts of statements and how they ended.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "drawing/dot_fonts.h"
#include "emulator/expressions/evaluator.h"
#include "emulator/expressions/vocabulary.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/programs.h"
#include "emulator/run/machine_start.h"
#include "emulator/run/scripted_run.h"
#include "emulator/screens/display.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/pictures.h"
#include "emulator/screens/text_screen.h"
#include "platform/clock.h"
#include "platform/thread_role.h"
#include "referee/program_maker.h"
#include "settings/settings_store.h"
#include "telling/user_interface.h"
#include "text/token_table.h"

namespace numalink {

namespace {

constexpr const char *names[] = {"MAIN", "SUB", "f1", "f2", "A"};

struct Options {
    std::uint64_t seed = 1;
    std::uint64_t programs = 0;  // 0: until the time is over
    double minutes = 0;
    std::string corpus;                 // a folder of programs to be changed too
    std::vector<std::string> replayed;  // the programs of one run in hexadecimal, as they are told
};

// All that a run leaves behind, as text that can be compared and shown.
struct Outcome {
    std::vector<std::string> lines;

    void add(const std::string &name, double value) {
        char line[64];
        std::snprintf(line, sizeof line, "%016llx",
                      static_cast<unsigned long long>(std::bit_cast<std::uint64_t>(value)));
        lines.push_back(name + " " + line);
    }
    void add(const std::string &name, ComplexValue value) {
        add(name, value.re);
        add(name + " i", value.im);
    }
    void add(const std::string &name, const Surface &surface) {
        std::size_t digest = 14695981039346656037u;
        for (const Color dot : surface.dots) digest = (digest ^ dot) * 1099511628211u;
        lines.push_back(name + " " + std::to_string(digest));
    }
    void add(const std::string &name, MatrixSlot array) {
        if (array == nullptr) return;
        lines.push_back(name + " " + std::to_string(array->cols) + " " + std::to_string(array->rows));
        for (int i = 0; i < matrixSize(array); i++) add(name, matrixElements(array)[i]);
    }
};

Outcome outcomeOf(const RunReport &report) {
    Outcome outcome;
    outcome.lines = {"ended " + std::to_string(static_cast<int>(report.ended)),
                     "statements " + std::to_string(report.statements)};
    for (const ErrorReport &error : report.errors)
        outcome.lines.push_back(error.text + " at " + std::to_string(error.statement));
    for (std::size_t i = 0; i < machine.variables.size(); i++)
        outcome.add("variable " + std::to_string(i), machine.variables[i]);
    outcome.add("Ans", machine.ans);
    for (const ComplexValue &value : machine.window) outcome.add("window", value);
    for (std::size_t i = 0; i < machine.matrixSlots.size(); i++)
        outcome.add("matrix " + std::to_string(i), machine.matrixSlots[i]);
    for (const auto &file : machine.listSlots)
        for (std::size_t i = 0; i < file.size(); i++) outcome.add("list " + std::to_string(i), file[i]);
    outcome.add("text", textScreen());
    outcome.add("graph", graphScreen());
    outcome.add("display", displayNow());
    outcome.lines.push_back("mode " + std::to_string(machine.screenMode) + " row " + std::to_string(machine.textRow));
    return outcome;
}

bool load(const std::vector<Bytes> &programs) {
    programsClear();
    for (std::size_t i = 0; i < programs.size() && i < std::size(names); i++) {
        Bytes image = {':'};
        image.insert(image.end(), programs[i].begin(), programs[i].end());
        image.insert(image.end(), {0xFF, 0});
        programAdd(names[i], image);
    }
    return true;
}

Outcome run(const std::vector<Bytes> &programs, bool plainly) {
    machine = EmulatorMachine{};
    clearGraph();
    for (int number = 1; number <= memoryCount; number++) storePicture(number);
    randomRestart();
    evaluateWithoutShortcuts = plainly;
    const RunScript script = {.keys = {31, 27, 72, 31, 32, 31, 31, 31}, .getKeys = {31, 72, 33}, .statementLimit = 400};
    const RunReport report = runScripted(script, [&] { return load(programs); });
    evaluateWithoutShortcuts = false;
    return outcomeOf(report);
}

void show(const std::vector<Bytes> &programs, const Outcome &planned, const Outcome &plain) {
    for (const Bytes &bytes : programs) {
        std::printf("program ");
        for (const std::uint8_t byte : bytes) std::printf("%02X", byte);
        std::printf("\n");
    }
    const auto [left, right] = std::ranges::mismatch(planned.lines, plain.lines);
    std::printf("by plans: %s\nby passes: %s\n", left == planned.lines.end() ? "-" : left->c_str(),
                right == plain.lines.end() ? "-" : right->c_str());
}

std::vector<std::vector<Bytes>> corpusOf(const std::string &folder) {
    std::vector<std::vector<Bytes>> corpus;
    if (folder.empty()) return corpus;
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) paths.push_back(entry.path());
    std::ranges::sort(paths);
    for (const auto &path : paths) {
        std::ifstream file(path, std::ios::binary);
        Bytes bytes(std::istreambuf_iterator<char>(file), {});
        if (bytes.empty()) continue;
        bytes.erase(bytes.begin());  // the settings of the run
        corpus.push_back({bytes});
    }
    return corpus;
}

Bytes bytesOf(const std::string &hex) {
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

// Both ways of one run, and each line in which they differ.
int replay(const std::vector<std::string> &replayed) {
    std::vector<Bytes> programs;
    for (const std::string &hex : replayed) programs.push_back(bytesOf(hex));
    const Outcome planned = run(programs, false), plain = run(programs, true);
    for (std::size_t i = 0; i < std::max(planned.lines.size(), plain.lines.size()); i++) {
        const std::string left = i < planned.lines.size() ? planned.lines[i] : "-";
        const std::string right = i < plain.lines.size() ? plain.lines[i] : "-";
        if (left != right) std::printf("by plans: %s\nby passes: %s\n", left.c_str(), right.c_str());
    }
    return planned.lines == plain.lines ? 0 : 1;
}

int referee(const Options &options) {
    Random random(options.seed);
    const auto corpus = corpusOf(options.corpus);
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(options.minutes * 60);
    std::uint64_t programs = 0, expressions = 0, statements = 0, differences = 0;
    while (options.programs > 0 ? programs < options.programs : std::chrono::steady_clock::now() < end) {
        const std::uint64_t sort = random() % 8;
        std::vector<Bytes> made;
        if (sort == 0) {
            made = madeExpressions(random);
            expressions += 50;
        } else if (sort == 1 && !corpus.empty()) {
            made = changedPrograms(corpus[random() % corpus.size()], random);
        } else {
            made = madePrograms(random);
            if (sort == 2) made = changedPrograms(made, random);
        }
        const Outcome planned = run(made, false);
        statements += machine.statementsRun;
        const Outcome plain = run(made, true);
        programs++;
        if (planned.lines == plain.lines) continue;
        differences++;
        show(made, planned, plain);
    }
    std::printf("%llu programs (%llu expressions alone), %llu statements, %llu differences\n",
                static_cast<unsigned long long>(programs), static_cast<unsigned long long>(expressions),
                static_cast<unsigned long long>(statements), static_cast<unsigned long long>(differences));
    return differences == 0 ? 0 : 1;
}

void prepare() {
    threadRole = ThreadRole::graphical;
    tokenTableLoad();
    loadLargeFont();
    loadSmallFont();
    settingsLoad();
    settingsSetInt(setting::fullSpeed, 1);
    settingsSetInt(setting::haltOnError, 0);
    settingsSetInt(setting::fillListsMatrices, 0);
    clockPort.sleepMilliseconds = [](std::uint64_t) {};
    userInterface = userInterfaceSilent;
}

}  // namespace

}  // namespace numalink

// NOLINTNEXTLINE(bugprone-exception-escape): it ends the program with its wording
int main(int argc, char **argv) {
    numalink::Options options;
    CLI::App app("Runs generated programs by their plans and by the passes alone, and tells where they differ.");
    app.add_option("--seed", options.seed, "Of the programs");
    app.add_option("--programs", options.programs, "So many, else for --minutes");
    app.add_option("--minutes", options.minutes, "For so long");
    app.add_option("--corpus", options.corpus, "A folder with inputs of program_fuzz, to be changed");
    app.add_option("--program", options.replayed, "Only this one, in hexadecimal; those that it calls behind it");
    CLI11_PARSE(app, argc, argv);
    numalink::prepare();
    if (!options.replayed.empty()) return numalink::replay(options.replayed);
    return numalink::referee(options);
}
