#include "debugger/following.h"

#include <algorithm>
#include <bit>
#include <map>

#include "debugger/history.h"
#include "emulator/machine/programs.h"
#include "emulator/run/run_calls.h"

namespace numalink {

namespace {

constexpr std::ptrdiff_t hitLimit = 100000;  // of a breakpoint, that are known one by one
constexpr std::uint8_t breakMark = 1, goalMark = 2;

bool isSame(const std::optional<ComplexValue> &left, const std::optional<ComplexValue> &right) {
    if (left.has_value() != right.has_value()) return false;
    const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value); };
    return !left || (bits(left->re) == bits(right->re) && bits(left->im) == bits(right->im));
}

std::string shownOrNone(const std::optional<ComplexValue> &value) { return value ? valueTextOf(*value).plain : "-"; }

CellRange statementAround(int program, int cell) {
    return {program, cell, loadedProgram(program).terminators[cell] + 1};
}

// A jump to a label goes on behind it, so that what stands at a label stops at the statement behind.
CellRange stoppingCells(int program, int cell) {
    const LoadedProgram &loaded = loadedProgram(program);
    const int next = loaded.terminators[cell] + 1;
    return statementAround(program, isToken(loaded.cells[cell], token::label) && next < loaded.cellCount ? next : cell);
}

void mark(Stops &stops, const CellRange &range, std::uint8_t with) {
    if (range.program < 0) return;
    auto &ofProgram = stops.marks[static_cast<std::size_t>(range.program)];
    for (int cell = range.first; cell < range.end; cell++) ofProgram[static_cast<std::size_t>(cell)] |= with;
}

std::optional<WatchExpression> conditionOf(const Breakpoint &breakpoint) {
    if (breakpoint.condition.empty()) return std::nullopt;
    return readWatch(breakpoint.condition);
}

using Texts = std::vector<std::vector<StatementOfText>>;  // of the loaded programs; empty until it is asked for

// Where the statement begins in a loaded program, which may have another text than its item by now; -1: nowhere.
int cellIn(Texts &texts, int program, const KnownStatement &asTold) {
    if (program < 0) return -1;
    KnownStatement known = asTold;
    std::vector<StatementOfText> &text = texts[static_cast<std::size_t>(program)];
    const LoadedProgram &loaded = loadedProgram(program);
    if (text.empty()) text = statementsOfText(loaded.cells, loaded.cellCount);
    const int found = findStatement(known, text);
    return found < 0 ? -1 : text[static_cast<std::size_t>(found)].cell;
}

void adopt(Stops &stops, Texts &texts, const Breakpoint &breakpoint) {
    if (!breakpoint.enabled || breakpoint.isLost) return;
    if (breakpoint.isOfData()) {
        const auto target = debugTargetNamed(breakpoint.target);
        if (!target) return;
        stops.ofData.push_back(
            {breakpoint.id, *target, breakpoint.count, conditionOf(breakpoint), debugTargetValue(*target)});
        return;
    }
    const int program = breakpoint.item == noItem ? programNamed(breakpoint.program) : programOfItem(breakpoint.item);
    const int cell = cellIn(texts, program, breakpoint);
    if (cell < 0) return;
    stops.atStatements.push_back(
        {stoppingCells(program, cell), breakpoint.id, breakpoint.count, conditionOf(breakpoint)});
    mark(stops, stops.atStatements.back().cells, breakMark);
}

// A condition that reports stops too, and tells.
bool holds(const std::optional<WatchExpression> &condition, std::string &detail) {
    if (!condition) return true;
    const WatchValue value = evaluateWatch(*condition);
    if (value.sort == WatchValue::Sort::number) return value.number.re != 0;
    detail = value.text;
    return true;
}

// Of a breakpoint: by how many statements were over at each hit, in their order. Of very many the oldest are but
// counted.
struct Hits {
    std::vector<std::uint64_t> at;
    std::uint64_t forgotten = 0;

    std::uint64_t upTo(std::uint64_t statement) const {
        return forgotten + static_cast<std::uint64_t>(std::ranges::upper_bound(at, statement) - at.begin());
    }
    void add(std::uint64_t statement) {
        const auto place = std::ranges::lower_bound(at, statement);
        if (place != at.end() && *place == statement) return;
        at.insert(place, statement);
        if (std::ssize(at) <= hitLimit) return;
        at.erase(at.begin(), at.begin() + hitLimit / 2);
        forgotten += hitLimit / 2;
    }
};
std::map<int, Hits> hits;  // by the breakpoint's id; the run thread's

// A breakpoint is hit; whether it stops.
bool countHit(int id, std::uint64_t count) {
    Hits &of = hits[id];
    of.add(machine.statementsRun);
    const std::uint64_t sofar = of.upTo(machine.statementsRun);
    breakpointSetHits(id, sofar);
    return sofar >= std::max<std::uint64_t>(count, 1);
}

template <class Counts>
void findDataStop(Stops &stops, StopFound &found, const Counts &counts) {
    for (DataStop &stop : stops.ofData) {
        const auto value = debugTargetValue(stop.target);
        if (isSame(value, stop.last)) continue;
        std::string detail = stop.target.name + ": " + shownOrNone(stop.last) + " -> " + shownOrNone(value);
        stop.last = value;
        if (holds(stop.condition, detail) && counts(stop.id, stop.count))
            found = {StopReason::changed, stop.id, detail};
    }
}

// Of the breakpoints of both sorts what stops here, without counting.
template <class Counts>
StopFound findStop(Stops &stops, int program, int cell, const Counts &counts) {
    const std::uint8_t marked = stops.marks[static_cast<std::size_t>(program)][static_cast<std::size_t>(cell)];
    StopFound found;
    for (const StatementStop &stop : stops.atStatements) {
        if ((marked & breakMark) == 0) break;
        std::string detail;
        if (!stop.cells.holds(program, cell) || !holds(stop.condition, detail)) continue;
        if (counts(stop.id, stop.count) || !detail.empty()) found = {StopReason::breakpoint, stop.id, detail};
    }
    findDataStop(stops, found, counts);
    if (found.reason == StopReason::none && (marked & goalMark) != 0 && stops.goal.holds(program, cell))
        found.reason = StopReason::step;
    return found;
}

// From the image ahead of it, the run goes up to there.
std::size_t searchGoal(Search &search, std::uint64_t goal) {
    search.isGoal = true;
    search.goal = goal;
    return historyImageAt(goal);
}

}  // namespace

CellRange lineAround(const DebugPlace &place) {
    const int first = cellOfPlace(place.program, place.line, 0);
    if (first < 0) return {};
    const LoadedProgram &loaded = loadedProgram(place.program);
    int end = first;
    do end = loaded.terminators[end] + 1;
    while (end < loaded.cellCount && isToken(loaded.cells[end - 1], token::colon));
    return {place.program, first, end};
}

bool stopsAreOld(const Stops &stops) { return stops.version != breakpointsVersion(); }

void stopsAdopt(Stops &stops) {
    if (!stopsAreOld(stops)) return;
    const CellRange goal = stops.goal;
    stops = {};
    stops.version = breakpointsVersion();
    stops.goal = goal;
    for (int program = 0; program < programCount(); program++)
        stops.marks.emplace_back(static_cast<std::size_t>(loadedProgram(program).cellCount), 0);
    for (const auto &ofProgram : stops.marks) stops.markPointers.push_back(ofProgram.data());
    Texts texts(stops.marks.size());
    for (const Breakpoint &breakpoint : breakpoints()) adopt(stops, texts, breakpoint);
    mark(stops, stops.goal, goalMark);
}

void stopsSetGoal(Stops &stops, const DebugPlace &place) {
    const int cell = cellOfPlace(place.program, place.line, place.statement);
    if (cell < 0) return;
    stops.goal = stoppingCells(place.program, cell);
    mark(stops, stops.goal, goalMark);
}

void stopsClearGoal(Stops &stops) { stops.goal = {}; }

void stopsLookAtData(Stops &stops) {
    for (DataStop &stop : stops.ofData) stop.last = debugTargetValue(stop.target);
}

StopFound stopsFind(Stops &stops, int program, int cell) { return findStop(stops, program, cell, countHit); }

StopFound stopsFindOfData(Stops &stops) {
    StopFound found;
    findDataStop(stops, found, countHit);
    return found;
}

void hitsForget() { hits.clear(); }

void hitsShow(std::uint64_t statement) {
    for (const auto &[id, of] : hits) breakpointSetHits(id, of.upTo(statement));
}

void hitsCutBehind(std::uint64_t statement) {
    for (auto &[id, of] : hits) of.at.erase(std::ranges::upper_bound(of.at, statement), of.at.end());
}

void searchBegin(Search &search) {
    search.hit.reset();
    search.before = machine.statementsRun;
    if (search.target) search.value = debugTargetValue(*search.target);
}

void searchLook(Search &search, Stops &stops, int program, int cell, std::uint64_t statement) {
    if (search.back == DebugBack::change) {
        const auto value = debugTargetValue(*search.target);
        if (!isSame(value, search.value)) search.hit = search.before;
        search.value = value;
        search.before = statement;
        return;
    }
    if (statement > search.limit || (statement == search.limit && !search.takesLimit)) return;
    if (search.back == DebugBack::over) {
        if (runCallDepth() <= search.depth) search.hit = statement;
        return;
    }
    const StopFound found = findStop(stops, program, cell, [](int, std::uint64_t) { return true; });
    if (found.reason != StopReason::breakpoint && found.reason != StopReason::changed) return;
    search.hit = statement;
    search.reason = found.reason;
    search.breakpoint = found.breakpoint;
}

std::size_t searchFurther(Search &search, std::size_t image) {
    if (search.hit) return searchGoal(search, *search.hit);
    if (image == 0) {
        search.reason = StopReason::backAtStart;
        search.breakpoint = 0;
        return searchGoal(search, historyOldest());
    }
    search.limit = historyStatementOf(image);
    search.takesLimit = false;
    return image - 1;
}

std::size_t searchGiveUp(Search &search) {
    search.isGivenUp = true;
    search.reason = StopReason::pause;
    search.breakpoint = 0;
    return searchGoal(search, search.origin);
}

}  // namespace numalink
