// numalink-cli run and eval: a program on the emulated calculator, without a window.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>

#include "cli/commands.h"
#include "cli/followed_run.h"
#include "cli/hex_text.h"
#include "cli/library_session.h"
#include "cli/moment_run.h"
#include "cli/recorded_run.h"
#include "cli/run_keys.h"
#include "cli/run_report.h"
#include "debugger/debugger.h"
#include "drawing/dot_fonts.h"
#include "emulator/expressions/evaluator.h"
#include "emulator/machine/key_port.h"
#include "emulator/machine/programs.h"
#include "emulator/run/key_recording.h"
#include "emulator/run/run_loading.h"
#include "emulator/run/scripted_run.h"
#include "platform/clock.h"
#include "settings/settings_store.h"

namespace numalink {

namespace {

constexpr char evalName[] = "EVAL";

struct RunCommandOptions {
    std::string library;
    std::string item;
    std::string hex;
    RunScript script;
    std::vector<std::string> settings;  // KEY=VALUE
    FollowedRun followed;
    RecordedRun recorded;
    RunKeyOptions keys;
    MomentRun moment;
    bool paced = false;
    bool plain = false;
    bool json = false;
};

std::vector<Box> boxesShown;
Answer (*terminalBox)(const Box &box) = nullptr;

void keepBoxes() {
    boxesShown.clear();
    terminalBox = userInterface.messageBox;
    userInterface.messageBox = [](const Box &box) {
        boxesShown.push_back(box);
        return terminalBox(box);
    };
}

bool prepare(const RunCommandOptions &options) {
    settingsSetInt(setting::fullSpeed, options.paced ? 0 : 1);
    evaluateWithoutShortcuts = options.plain;
    for (const std::string &assignment : options.settings) {
        if (!useSetting(assignment)) return false;
    }
    loadLargeFont();
    loadSmallFont();
    // Keys that are there at once needn't be waited for.
    if (!options.paced) clockPort.sleepMilliseconds = [](std::uint64_t) {};
    keepBoxes();
    return true;
}

int runAndPrint(const RunCommandOptions &options, ItemId item, const std::function<bool()> &load) {
    RunScript script = options.script;
    std::string fault = takeRunKeys(options.keys, item, script);
    if (!fault.empty()) return commandFailed(fault);
    if (!prepare(options)) return commandFailed("--set takes KEY=VALUE");
    fault = recordFault(options.recorded);
    if (!fault.empty()) return commandFailed(fault);
    const RunReport report = runScripted(script, [&] {
        if (!load()) return false;
        if (!options.keys.recordFile.empty()) keysBegin(keyPort);
        recordBegin(options.recorded);
        fault = followBegin(options.followed);
        if (fault.empty()) fault = momentBegin(options.moment, options.followed.replace);
        return fault.empty();
    });
    if (!fault.empty()) return commandFailed(fault);
    const bool recorded = recordEnd(options.recorded, options.followed.replace);
    const bool kept = writeRunKeys(options.keys, item, options.followed.replace);
    const bool saved = momentEnd(options.moment, options.followed.replace);
    const bool written = followEnd(options.followed) && recorded && kept && saved;
    if (options.moment.isAsked()) debugForget();
    if (options.json) {
        std::printf("%s\n", runAsJson(report, boxesShown).dump().c_str());
    } else {
        std::fputs(runAsText(report).c_str(), stdout);
    }
    if (report.ended == RunEnd::nothingToRun) return commandFailed("nothing to run");
    return written ? exitDone : exitFailed;
}

int runItem(const RunCommandOptions &options) {
    const LibrarySession session(options.library);
    if (!session.open) return exitFailed;
    const ItemId id = findItem(options.item);
    if (id == noItem) return commandFailed("no item " + options.item);
    return runAndPrint(options, id, [&] {
        boxesShown.clear();
        return loadRun(id, itemsBeside(id));
    });
}

int evalBytes(const RunCommandOptions &options) {
    const auto tokens = bytesFromHex(options.hex);
    if (!tokens) return commandFailed("not hexadecimal: " + options.hex);
    if (!loadTables()) return commandFailed("no token table beside the program");
    Bytes image(tokens->size() + 3, 0);  // ':', the tokens, the end mark, a checksum's place
    image[0] = ':';
    std::ranges::copy(*tokens, image.begin() + 1);
    image[tokens->size() + 1] = 0xFF;
    return runAndPrint(options, noItem, [&] {
        boxesShown.clear();
        programsClear();
        return programAdd(evalName, image);
    });
}

void declareScript(CLI::App &command, RunCommandOptions &options) {
    declareRunKeys(command, options.keys);
    command.add_option("--set", options.settings, "A setting for this run, KEY=VALUE")->allow_extra_args(false);
    command.add_option("--statements", options.script.statementLimit, "End the run after so many statements");
    command.add_option("--repeat", options.script.repeat, "So many runs, each with the same keys")
        ->check(CLI::PositiveNumber);
    command.add_flag("--plain", options.plain, "Without the plans of statements: every pass of the evaluator walks");
    command.add_flag("--paced", options.paced, "At the calculator's pace");
    command.add_flag("--json", options.json, "All that the run leaves behind as one object");
    declareFollowed(command, options.followed);
    declareRecorded(command, options.recorded);
    declareMoment(command, options.moment);
}

}  // namespace

CommandRun declareRun(CLI::App &command) {
    const auto options = std::make_shared<RunCommandOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat")->required();
    command.add_option("ITEM", options->item, "An id, or a path such as /Programs/SNAKE")->required();
    declareScript(command, *options);
    return [options] { return runItem(*options); };
}

CommandRun declareEval(CLI::App &command) {
    const auto options = std::make_shared<RunCommandOptions>();
    command.add_option("HEX", options->hex, "The program's bytes in hexadecimal")->required();
    declareScript(command, *options);
    return [options] { return evalBytes(*options); };
}

}  // namespace numalink
