#include "cli/followed_run.h"

#include <bit>
#include <cstdio>

#include "debugger/breakpoints.h"
#include "debugger/debugger.h"
#include "debugger/profile.h"
#include "debugger/trace.h"
#include "debugger/values.h"
#include "debugger/watches.h"
#include "emulator/machine/programs.h"
#include "store/care/user_files.h"

namespace numalink {

namespace {

constexpr std::size_t traceLimit = 256u << 20;  // bytes

// The run thread's while a run is on.
std::string traceText;
bool lineIsOpen = false;
std::vector<NamedValue> valuesBefore;
std::vector<std::string> watchTexts;
std::vector<WatchExpression> watches;

std::string placeText(const DebugPlace &place) {
    return programNameShown(place.program) + ":" + std::to_string(place.line) + ":" +
           std::to_string(place.statement + 1);
}

void addToTrace(const std::string &text) {
    if (traceText.size() < traceLimit) traceText += text;
}

bool isSame(ComplexValue left, ComplexValue right) {
    const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value); };
    return bits(left.re) == bits(right.re) && bits(left.im) == bits(right.im);
}

// What the statement that has just been run has made of the variables ends its line.
void endLine() {
    if (!lineIsOpen) return;
    std::vector<NamedValue> values = debugVariables();
    for (std::size_t i = 0; i < values.size(); i++) {
        const bool isUnchanged = i < valuesBefore.size() && isSame(values[i].value, valuesBefore[i].value);
        if (!isUnchanged) addToTrace("  " + values[i].name + "=" + valueTextOf(values[i].value).plain);
    }
    valuesBefore = std::move(values);
    addToTrace("\n");
    lineIsOpen = false;
}

void traceStatement(int program, int cell) {
    endLine();
    addToTrace(std::to_string(machine.statementsRun + 1) + " " + placeText(placeOfCell(program, cell)) + "  " +
               statementText(program, cell));
    lineIsOpen = true;
}

constexpr DebugTrace fileTrace = {
    .statement = traceStatement,
    .report = [](const char *text) { addToTrace("  " + std::string(text)); },
    .screenMode =
        [](int mode) {
            addToTrace(mode == graphMode ? "  [graph]" : mode == textMode ? "  [text]" : "  [matrix]");
        },
};

// A line for each time the run comes by, and on it goes.
void tellStop() {
    if (debugState() != DebugState::stopped) return;
    const DebugStop stop = debugStop();
    std::string line = "at " + placeText(stop.place) + ", statement " + std::to_string(stop.statement + 1);
    for (std::size_t i = 0; i < watches.size(); i++)
        line += (i == 0 ? ": " : ", ") + watchTexts[i] + " = " + watchText(evaluateWatch(watches[i])).plain;
    std::printf("%s\n", line.c_str());
    debugStep(DebugStep::onward);
}

std::string setBreaks(const FollowedRun &options) {
    breakpointsClear();
    for (const std::string &text : options.breaks) {
        const auto place = placeNamed(text);
        if (!place) return "no statement " + text;
        Breakpoint breakpoint;
        breakpoint.item = place->item;
        breakpoint.program = programNameShown(place->program);
        breakpoint.line = place->line;
        breakpoint.statement = place->statement;
        breakpointAdd(breakpoint);
    }
    return {};
}

std::string readWatches(const FollowedRun &options) {
    watches.clear();
    watchTexts = options.watches;
    for (const std::string &text : options.watches) {
        watches.push_back(readWatch(text));
        if (!watches.back().fault.empty()) return "the expression " + text + " " + watches.back().fault;
    }
    return {};
}

bool writeText(const std::string &path, const std::string &text, bool replace) {
    if (path.empty()) return true;
    return writeUserFile(path, {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()}, replace);
}

}  // namespace

void declareFollowed(CLI::App &command, FollowedRun &options) {
    command.add_option("--profile", options.profile, "Write there what each statement costs; as JSON if so named");
    command.add_option("--coverage", options.coverage, "Write there which statements ran, and how often");
    command.add_option("--trace", options.trace, "Write there every statement that runs, with what it changes");
    command.add_option("--break", options.breaks, "Tell whenever it comes to PROGRAM:LINE or PROGRAM:LINE:STATEMENT")
        ->allow_extra_args(false);
    command.add_option("--watch", options.watches, "With --break, also what the expression gives there")
        ->allow_extra_args(false);
    command.add_flag("--replace", options.replace, "Replace files that exist");
}

std::string followBegin(const FollowedRun &options) {
    if (!options.isFollowed()) return {};
    std::string fault = setBreaks(options);
    if (fault.empty()) fault = readWatches(options);
    if (!fault.empty()) return fault;
    traceText.clear();
    valuesBefore = debugVariables();
    lineIsOpen = false;
    debugTrace = options.trace.empty() ? nullptr : &fileTrace;
    debugStateChanged = tellStop;
    debugBegin({});
    if (!options.profile.empty() || !options.coverage.empty()) profileStart();
    return {};
}

bool followEnd(const FollowedRun &options) {
    if (!options.isFollowed()) return true;
    endLine();
    const ProfileReport report = profileReport();
    const bool asJson = options.profile.ends_with(".json");
    const bool written =
        writeText(options.profile, asJson ? profileAsJson(report) : profileAsText(report), options.replace) &&
        writeText(options.coverage, coverageAsText(report), options.replace) &&
        writeText(options.trace, traceText, options.replace);
    debugTrace = nullptr;
    debugStateChanged = nullptr;
    profileStop();
    debugForget();
    return written;
}

}  // namespace numalink
