// numalink-referee: runs programs by their plans and by the passes alone, and tells each difference: values to the bit,
// reports with their order, screens, counts of statements and how they ended.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "emulator/expressions/evaluator.h"
#include "emulator/machine/programs.h"
#include "emulator/run/scripted_run.h"
#include "referee/program_maker.h"
#include "referee/run_outcome.h"
#include "support/silent_runs.h"

namespace numalink {

namespace {

constexpr const char *names[] = {"MAIN", "SUB", "f1", "f2", "A"};

struct Options {
    std::uint64_t seed = 1;
    std::uint64_t programs = 0;  // 0: until the time is over
    double minutes = 0;
    bool expressionsOnly = false;
    std::string corpus;                 // a folder of programs to be changed too
    std::vector<std::string> replayed;  // the programs of one run in hexadecimal, as they are told
};

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

RunOutcome run(const std::vector<Bytes> &programs, bool plainly) {
    forgetRuns();
    evaluateWithoutShortcuts = plainly;
    const RunScript script = {.keys = {31, 27, 72, 31, 32, 31, 31, 31}, .getKeys = {31, 72, 33}, .statementLimit = 400};
    const RunReport report = runScripted(script, [&] { return load(programs); });
    evaluateWithoutShortcuts = false;
    return runOutcome(report);
}

void show(const std::vector<Bytes> &programs, const RunOutcome &planned, const RunOutcome &plain) {
    for (const Bytes &bytes : programs) {
        std::printf("program ");
        for (const std::uint8_t byte : bytes) std::printf("%02X", byte);
        std::printf("\n");
    }
    const auto [left, right] = std::ranges::mismatch(planned, plain);
    std::printf("by plans: %s\nby passes: %s\n", left == planned.end() ? "-" : left->c_str(),
                right == plain.end() ? "-" : right->c_str());
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
    const RunOutcome planned = run(programs, false), plain = run(programs, true);
    for (std::size_t i = 0; i < std::max(planned.size(), plain.size()); i++) {
        const std::string left = i < planned.size() ? planned[i] : "-";
        const std::string right = i < plain.size() ? plain[i] : "-";
        if (left != right) std::printf("by plans: %s\nby passes: %s\n", left.c_str(), right.c_str());
    }
    return planned == plain ? 0 : 1;
}

int referee(const Options &options) {
    Random random(options.seed);
    const auto corpus = corpusOf(options.corpus);
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(options.minutes * 60);
    std::uint64_t programs = 0, expressions = 0, statements = 0, differences = 0;
    while (options.programs > 0 ? programs < options.programs : std::chrono::steady_clock::now() < end) {
        const std::uint64_t sort = options.expressionsOnly ? 0 : random() % 8;
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
        const RunOutcome planned = run(made, false);
        statements += machine.statementsRun;
        const RunOutcome plain = run(made, true);
        programs++;
        if (planned == plain) continue;
        differences++;
        show(made, planned, plain);
    }
    std::printf("%llu programs (%llu expressions alone), %llu statements, %llu differences\n",
                static_cast<unsigned long long>(programs), static_cast<unsigned long long>(expressions),
                static_cast<unsigned long long>(statements), static_cast<unsigned long long>(differences));
    return differences == 0 ? 0 : 1;
}

bool prepare() {
    const bool loaded = prepareSilentRuns();
    settingsSetInt(setting::haltOnError, 0);
    settingsSetInt(setting::fillListsMatrices, 0);
    return loaded;
}

}  // namespace

}  // namespace numalink

// NOLINTNEXTLINE(bugprone-exception-escape): it ends the program with its wording
int main(int argc, char **argv) {
    numalink::Options options;
    CLI::App app("Runs generated programs by their plans and by the passes alone, and tells where they differ.");
    app.add_option("--seed", options.seed, "Of the programs");
    app.add_option("--programs", options.programs, "So many, else for --minutes");
    app.add_flag("--expressions", options.expressionsOnly, "Programs of expressions alone");
    app.add_option("--minutes", options.minutes, "For so long");
    app.add_option("--corpus", options.corpus, "A folder with inputs of program_fuzz, to be changed");
    app.add_option("--program", options.replayed, "Only this one, in hexadecimal; those that it calls behind it");
    CLI11_PARSE(app, argc, argv);
    if (!numalink::prepare()) {
        std::fputs("numalink-referee: the token table or a font beside the program can't be read\n", stderr);
        return 2;
    }
    if (!options.replayed.empty()) return numalink::replay(options.replayed);
    return numalink::referee(options);
}
