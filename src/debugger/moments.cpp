// The commands, and the two ways between a machine and a moment.
#include "debugger/moments.h"

#include <algorithm>
#include <chrono>

#include "debugger/debugger_control.h"
#include "debugger/moment_control.h"
#include "emulator/machine/programs.h"
#include "emulator/run/reached_programs.h"
#include "emulator/screens/display.h"

namespace numalink {

void (*momentTaken)(const Bytes &moment) = nullptr;
MomentControl momentControl;

namespace {

std::uint64_t secondsSince1970() {
    const auto since = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::seconds>(since).count());
}

std::vector<int> programsOfRun() {
    std::vector<int> programs = programsReached();
    for (int digit = 0; digit <= 9; digit++) {
        const int function = findGraphFunction(digit);
        if (function >= 0 && std::ranges::find(programs, function) == programs.end()) programs.push_back(function);
    }
    return programs;
}

std::vector<MomentProgram> namesOf(const std::vector<int> &programs) {
    std::vector<MomentProgram> names;
    names.reserve(programs.size());
    for (const int program : programs) names.push_back({loadedProgram(program).name, loadedProgram(program).digest});
    return names;
}

// Where the text stands that a cell shows. False where it isn't one of the programs'.
bool findText(const std::vector<int> &programs, MomentCall &call) {
    const ProgramCell &text = call.place.left;
    for (std::size_t program = 0; program < programs.size(); program++) {
        const LoadedProgram &loaded = loadedProgram(programs[program]);
        for (int cell = 0; cell < loaded.cellCount; cell++) {
            const ProgramCell &at = loaded.cells[cell];
            if (at.kind != CellKind::string || at.stringCells != text.stringCells) continue;
            if (at.stringLength != text.stringLength) continue;
            call.textProgram = static_cast<int>(program);
            call.textCell = cell;
            return true;
        }
    }
    return false;
}

bool writeCalls(const std::vector<int> &programs, const std::vector<CallPlace> &places, Moment &moment) {
    for (const CallPlace &place : places) {
        const auto found = std::ranges::find(programs, place.program);
        if (found == programs.end()) return false;
        moment.calls.push_back({.program = static_cast<int>(found - programs.begin()), .place = place});
        const bool isText = place.left.kind == CellKind::string;
        if (isText && !findText(programs, moment.calls.back())) return false;
    }
    return true;
}

// The calls of a moment in the programs that are loaded; none where they lead nowhere.
std::optional<std::vector<CallPlace>> callsOf(const Moment &moment, const std::vector<int> &programs) {
    std::vector<CallPlace> places;
    for (const MomentCall &call : moment.calls) {
        CallPlace place = call.place;
        place.program = programs[static_cast<std::size_t>(call.program)];
        const LoadedProgram &loaded = loadedProgram(place.program);
        if (place.position >= loaded.cellCount) return std::nullopt;
        // What has called goes on behind the call; the length of a statement to come is still to be found.
        const bool hasCalled = &call != &moment.calls.back();
        const int length = loaded.terminators[place.position] - place.position;
        if (hasCalled && place.statementLength != length) return std::nullopt;
        if (place.left.kind == CellKind::string) {
            const LoadedProgram &ofText = loadedProgram(programs[static_cast<std::size_t>(call.textProgram)]);
            if (call.textCell >= ofText.cellCount) return std::nullopt;
            const ProgramCell &text = ofText.cells[call.textCell];
            if (text.kind != CellKind::string || text.stringLength != place.left.stringLength) return std::nullopt;
            place.left.stringCells = text.stringCells;
        }
        places.push_back(place);
    }
    return places;
}

// In a pass of a wait that no key comes in nothing happens but that the cursor blinks: of many, some do.
void shortenWaits(RecordedInputs &inputs) {
    constexpr std::uint64_t passesKept = 100;
    for (RepeatedInput<int> &key : inputs.waits) {
        if (key.value == 0) key.count = std::min(key.count, passesKept);
    }
}

Bytes bytesOf(Moment moment, const std::vector<CallPlace> &calls, std::uint64_t statement, RunEnd waitsAt) {
    const std::vector<int> programs = programsOfRun();
    moment.programs = namesOf(programs);
    moment.time = secondsSince1970();
    moment.statement = statement;
    moment.waitsAt = waitsAt;
    moment.picture = displayNow();
    shortenWaits(moment.inputs);
    if (!writeCalls(programs, calls, moment)) return {};
    return momentAsBytes(std::move(moment)).value_or(Bytes());
}

// Two statements apart nothing need be repeated.
Bytes momentHere() {
    Moment moment;
    moment.state = stateOf(takeImage());
    const std::vector<CallPlace> calls = moment.state.calls;
    return bytesOf(std::move(moment), calls, machine.statementsRun, RunEnd::running);
}

}  // namespace

Bytes momentNow(std::uint64_t statement, bool isWithin, RunEnd waitsAt, bool isWhole) {
    if (!isWithin) return momentHere();
    const MachineImage *image = historyImageFor(statement);
    if (image == nullptr) return {};
    Moment moment;
    moment.state = stateOf(*image);
    moment.inputs = historyInputsFor(statement, isWhole);
    const std::vector<CallPlace> calls = moment.state.calls;
    return bytesOf(std::move(moment), calls, statement, waitsAt);
}

void momentsFollow() {
    if (emulatorRunning) return;
    if (runObserver == nullptr) debugForget();
    momentControl.isOn = true;
    if (runObserver == nullptr) {
        debugSetOptions({.breakpoints = false});
        followAnew(false);
    }
    drawAttention();
    runObserver = &followingObserver;
}

bool momentAsk() {
    if (!momentControl.isOn || !emulatorRunning) return false;
    const DebugStop stop = debugStop();
    if (debugState() == DebugState::stopped) {
        const RunEnd waitsAt = stop.isAtEnd ? RunEnd::end : stop.isWaiting ? debugWaitsAt() : RunEnd::running;
        if (momentTaken != nullptr) momentTaken(momentNow(stop.statement, stop.isWithin, waitsAt, false));
        return true;
    }
    momentControl.asked = true;
    drawAttention();
    return true;
}

void momentAskAt(std::uint64_t statement) { momentControl.askedAt = statement; }

Bytes momentOfEndedRun() {
    if (!momentControl.isOn || emulatorRunning || machine.exhausted) return {};
    const MomentPlace place = momentPlaceOfEnd();
    return place.isThere ? momentNow(place.statement, true, place.waitsAt, place.isWhole) : Bytes();
}

bool momentFits(const Moment &moment) { return moment.programs == namesOf(programsOfRun()); }

MomentFault momentResume(Moment moment) {
    const std::vector<int> programs = programsOfRun();
    if (!momentFits(moment)) return MomentFault::changed;
    const auto calls = callsOf(moment, programs);
    if (!calls) return MomentFault::damaged;
    moment.state.calls = *calls;
    momentControl.resume = std::make_unique<Moment>(std::move(moment));
    drawAttention();
    return MomentFault::none;
}

}  // namespace numalink
