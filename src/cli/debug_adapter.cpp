// The main thread runs the program, a reader takes the requests and gives the debugger its commands, and the run thread
// tells where it stops.
#include "cli/debug_adapter.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include "cli/commands.h"
#include "cli/debug_messages.h"
#include "cli/debug_sources.h"
#include "cli/debug_values.h"
#include "cli/library_session.h"
#include "cli/run_report.h"
#include "debugger/breakpoints.h"
#include "debugger/debugger.h"
#include "debugger/values.h"
#include "emulator/machine/programs.h"
#include "emulator/run/run_loading.h"
#include "emulator/run/scripted_run.h"
#include "platform/lock.h"

namespace numalink {

namespace {

using Json = DebugJson;
using Request = DebugRequest;

constexpr int onlyThread = 1;
// Between reader and main thread.
Lock stageLock;
Signal stageChanged GUARDED_BY(stageLock);
enum class Stage { waits, launched, over } stage GUARDED_BY(stageLock) = Stage::waits;
RunScript script GUARDED_BY(stageLock);
DebugOptions options GUARDED_BY(stageLock);

std::atomic<bool> isConfigured = false;  // stops are told from then on
bool stopsOnEntry = false;               // reader

KeyRuns keysOf(const Json &arguments, const char *name) {
    KeyRuns keys;
    for (const Json &key : argument(arguments, name, Json(Json::array()))) {
        if (key.is_number_integer()) keys.emplace_back(key.get<int>());
    }
    return keys;
}

Json sourceOf(int program) {
    return {{"name", programNameShown(program)}, {"path", programNameShown(program)}, {"sourceReference", program + 1}};
}

// By its number, or by its name or the end of its path.
int programOf(const Json &source) {
    const int reference = argument(source, "sourceReference", 0);
    if (reference > 0 && reference <= programCount()) return reference - 1;
    std::string name = argument(source, "name", argument(source, "path", std::string()));
    name.erase(0, name.rfind('/') + 1);
    return programNamed(name);
}

const char *reasonName(StopReason reason) {
    switch (reason) {
        case StopReason::entry:
            return "entry";
        case StopReason::breakpoint:
            return "breakpoint";
        case StopReason::changed:
            return "data breakpoint";
        case StopReason::error:
            return "exception";
        case StopReason::pause:
            return "pause";
        case StopReason::end:
            return "end";
        case StopReason::none:
        case StopReason::step:
        case StopReason::backAtStart:
            break;
    }
    return "step";
}

void tellStop() {
    const DebugStop stop = debugStop();
    Json body = {{"reason", reasonName(stop.reason)}, {"threadId", onlyThread}, {"allThreadsStopped", true}};
    if (stop.reason == StopReason::backAtStart) body["description"] = "the beginning of the record";
    if (stop.statement < stop.newest) body["description"] = "in the past";
    if (!stop.detail.empty()) body["text"] = stop.detail;
    if (stop.breakpoint != 0) body["hitBreakpointIds"] = {stop.breakpoint};
    sendDebugEvent("stopped", std::move(body));
}

void stateChanged() {
    {
        const HoldLock held(stageLock);
        stageChanged.notify_all();
    }
    if (isConfigured && debugState() == DebugState::stopped) tellStop();
}

void answerInitialize(const Request &request) {
    Json filters = Json::array();
    filters.push_back({{"filter", "first"}, {"label", "The first error"}, {"default", true}});
    filters.push_back({{"filter", "every"}, {"label", "Every error"}});
    Json can = {{"exceptionBreakpointFilters", filters}};
    for (const char *ability : {"supportsConfigurationDoneRequest", "supportsConditionalBreakpoints",
                                "supportsHitConditionalBreakpoints", "supportsStepBack", "supportsSetVariable",
                                "supportsDataBreakpoints", "supportsEvaluateForHovers", "supportsTerminateRequest"})
        can[ability] = true;
    request.answer(can);
}

// The program is loaded and stands ahead of its first statement when this is answered.
void answerLaunch(const Request &request) {
    const Json &arguments = request.arguments();
    stopsOnEntry = argument(arguments, "stopOnEntry", false);
    bool isOver = false;
    {
        HoldLock held(stageLock);
        if (stage != Stage::waits) return request.refuse("it runs already");
        script.keys = keysOf(arguments, "keys");
        script.getKeys = keysOf(arguments, "getKeys");
        script.statementLimit = argument(arguments, "statements", std::uint64_t{0});
        options.stopAtEntry = true;
        options.stopAtEnd = argument(arguments, "stopOnEnd", false);
        options.records = argument(arguments, "record", true);
        stage = Stage::launched;
        stageChanged.notify_all();
        while (stage != Stage::over && debugState() != DebugState::stopped) held.wait(stageChanged);
        isOver = stage == Stage::over;
    }
    if (isOver) return request.refuse("nothing to run");
    request.answer();
    sendDebugEvent("initialized");
}

void answerConfigurationDone(const Request &request) {
    request.answer();
    isConfigured = true;
    if (stopsOnEntry) {
        tellStop();
    } else {
        debugStep(DebugStep::onward);
    }
}

Json breakpointAnswer(int id, const DebugPlace &place) {
    if (id == 0) return {{"verified", false}, {"message", "no statement"}};
    return {{"id", id},
            {"verified", true},
            {"line", place.line},
            {"column", columnOf(place.program, place.line, place.statement)},
            {"source", sourceOf(place.program)}};
}

Json addBreakpoint(int program, const Json &wanted) {
    DebugPlace place;
    place.program = program;
    place.line = argument(wanted, "line", 0);
    place.statement = statementAtColumn(program, place.line, argument(wanted, "column", 1));
    if (cellOfPlace(program, place.line, place.statement) < 0) return breakpointAnswer(0, place);
    Breakpoint breakpoint;
    breakpoint.item = loadedProgram(program).item;
    breakpoint.program = programNameShown(program);
    breakpoint.line = place.line;
    breakpoint.statement = place.statement;
    breakpoint.condition = argument(wanted, "condition", std::string());
    const std::string fault = breakpoint.condition.empty() ? std::string() : conditionFault(breakpoint.condition);
    if (!fault.empty()) return {{"verified", false}, {"message", "condition: " + fault}};
    breakpoint.count = std::strtoull(argument(wanted, "hitCondition", std::string()).c_str(), nullptr, 10);
    return breakpointAnswer(breakpointAdd(breakpoint), place);
}

void answerSetBreakpoints(const Request &request) {
    const int program = programOf(argument(request.arguments(), "source", Json(Json::object())));
    if (program < 0) return request.refuse("no such program");
    for (const Breakpoint &old : breakpoints()) {
        if (!old.isOfData() && old.program == programNameShown(program)) breakpointRemove(old.id);
    }
    Json answers = Json::array();
    for (const Json &wanted : argument(request.arguments(), "breakpoints", Json(Json::array())))
        answers.push_back(addBreakpoint(program, wanted));
    request.answer({{"breakpoints", answers}});
}

void answerSetDataBreakpoints(const Request &request) {
    for (const Breakpoint &old : breakpoints()) {
        if (old.isOfData()) breakpointRemove(old.id);
    }
    Json answers = Json::array();
    for (const Json &wanted : argument(request.arguments(), "breakpoints", Json(Json::array()))) {
        Breakpoint breakpoint;
        breakpoint.target = argument(wanted, "dataId", std::string());
        breakpoint.condition = argument(wanted, "condition", std::string());
        const int id = breakpoint.target.empty() ? 0 : breakpointAdd(breakpoint);
        answers.push_back({{"verified", id != 0}, {"id", id}});
    }
    request.answer({{"breakpoints", answers}});
}

void answerDataBreakpointInfo(const Request &request) {
    const std::string name = debugTargetNameOf(request);
    const bool isKnown = debugTargetNamed(name).has_value();
    request.answer({{"dataId", isKnown ? Json(name) : Json(nullptr)},
                    {"description", isKnown ? name : "it can't be watched"},
                    {"accessTypes", {"write"}}});
}

void answerSetExceptionBreakpoints(const Request &request) {
    DebugOptions wanted = debugOptions();
    wanted.errors = ErrorStops::none;
    for (const Json &filter : argument(request.arguments(), "filters", Json(Json::array()))) {
        if (filter == "first" && wanted.errors == ErrorStops::none) wanted.errors = ErrorStops::first;
        if (filter == "every") wanted.errors = ErrorStops::every;
    }
    debugSetOptions(wanted);
    request.answer();
}

void answerThreads(const Request &request) {
    Json threads = Json::array();
    threads.push_back({{"id", onlyThread}, {"name", programNameShown(0)}});
    request.answer({{"threads", threads}});
}

void answerStackTrace(const Request &request) {
    Json frames = Json::array();
    for (const DebugPlace &place : debugCalls()) {
        frames.push_back({{"id", frames.size() + 1},
                          {"name", programNameShown(place.program)},
                          {"source", sourceOf(place.program)},
                          {"line", place.line},
                          {"column", columnOf(place.program, place.line, place.statement)}});
    }
    const std::size_t count = frames.size();
    request.answer({{"stackFrames", std::move(frames)}, {"totalFrames", count}});
}

void answerSource(const Request &request) {
    const int program = programOf(argument(request.arguments(), "source", request.arguments()));
    if (program < 0) return request.refuse("no such program");
    request.answer({{"content", sourceText(program)}});
}

void answerLoadedSources(const Request &request) {
    Json sources = Json::array();
    for (int program = 0; program < programCount(); program++) sources.push_back(sourceOf(program));
    request.answer({{"sources", sources}});
}

// The answer goes ahead, so that the stop comes behind it.
template <DebugStep step>
void answerStep(const Request &request) {
    request.answer({{"allThreadsContinued", true}});
    debugStep(step);
}
template <DebugBack back>
void answerBack(const Request &request) {
    request.answer();
    if (!debugBack(back)) tellStop();
}

void answerPause(const Request &request) {
    request.answer();
    debugPause();
}

struct RequestRow {
    const char *command = nullptr;
    void (*serve)(const Request &request) = nullptr;
    bool needsLoaded = true, needsStop = false;
};
constexpr RequestRow requestRows[] = {
    {"initialize", answerInitialize, false},
    {"launch", answerLaunch, false},
    {"configurationDone", answerConfigurationDone},
    {"setBreakpoints", answerSetBreakpoints},
    {"setDataBreakpoints", answerSetDataBreakpoints},
    {"dataBreakpointInfo", answerDataBreakpointInfo, true, true},
    {"setExceptionBreakpoints", answerSetExceptionBreakpoints},
    {"threads", answerThreads},
    {"stackTrace", answerStackTrace, true, true},
    {"scopes", answerScopes, true, true},
    {"variables", answerVariables, true, true},
    {"setVariable", answerSetVariable, true, true},
    {"evaluate", answerEvaluate, true, true},
    {"source", answerSource},
    {"loadedSources", answerLoadedSources},
    {"continue", answerStep<DebugStep::onward>, true, true},
    {"next", answerStep<DebugStep::over>, true, true},
    {"stepIn", answerStep<DebugStep::statement>, true, true},
    {"stepOut", answerStep<DebugStep::out>, true, true},
    {"stepBack", answerBack<DebugBack::over>, true, true},
    {"reverseContinue", answerBack<DebugBack::breakpoint>, true, true},
    {"pause", answerPause},
};

bool isLoaded() {
    const HoldLock held(stageLock);
    return stage == Stage::launched;
}

void serve(const Request &request) {
    const auto row =
        std::ranges::find_if(requestRows, [&](const RequestRow &each) { return request.command() == each.command; });
    if (row == std::end(requestRows)) return request.refuse("not known here");
    if (row->needsLoaded && !isLoaded()) return request.refuse("nothing runs");
    if (row->needsStop && debugState() != DebugState::stopped) return request.refuse("it runs");
    row->serve(request);
}

// The reader's thread.
void readRequests(std::istream &requests) {
    for (std::string text; readDebugMessage(requests, text);) {
        Request request{Json::parse(text, nullptr, false)};
        if (!request.message.is_object()) continue;
        const bool ends = request.command() == "disconnect" || request.command() == "terminate";
        try {
            ends ? request.answer() : serve(request);
        } catch (const Json::exception &fault) {
            request.refuse(fault.what());
        }
        if (ends) break;
    }
    emulatorRunning = false;  // the main thread joins the run
    runWake();
    const HoldLock held(stageLock);
    if (stage == Stage::waits) stage = Stage::over;
    stageChanged.notify_all();
}

// False when the requests ended without a launch.
bool waitForLaunch() {
    HoldLock held(stageLock);
    while (stage == Stage::waits) held.wait(stageChanged);
    return stage == Stage::launched;
}

void runLaunched(ItemId id) {
    RunScript taken;
    DebugOptions wanted;
    {
        const HoldLock held(stageLock);
        taken = script;
        wanted = options;
    }
    const RunReport report = runScripted(taken, [&] {
        if (!loadRun(id, itemsBeside(id))) return false;
        debugBegin(wanted);
        return true;
    });
    {
        const HoldLock held(stageLock);
        stage = Stage::over;
        stageChanged.notify_all();
    }
    sendDebugEvent("output",
                   {{"category", "console"}, {"output", std::string("ended: ") + runEndName(report.ended) + "\n"}});
    sendDebugEvent("exited", {{"exitCode", 0}});
    sendDebugEvent("terminated");
}

}  // namespace

int serveDebugger(const std::string &item, std::istream &requests, std::ostream &answers) {
    const ItemId id = findItem(item);
    if (id == noItem) return commandFailed("no item " + item);
    debugAnswersTo(answers);
    {
        const HoldLock held(stageLock);
        stage = Stage::waits;
        script = {};
        options = {};
    }
    isConfigured = false;
    breakpointsClear();
    debugStateChanged = stateChanged;
    std::thread reader([&requests] { readRequests(requests); });
    if (waitForLaunch()) runLaunched(id);
    reader.join();
    debugForget();
    debugStateChanged = nullptr;
    return exitDone;
}

}  // namespace numalink
