#include "debugger/breakpoints.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

#include "debugger/debugger.h"
#include "debugger/values.h"
#include "debugger/watches.h"
#include "emulator/machine/machine.h"
#include "emulator/machine/programs.h"
#include "emulator/run/machine_start.h"
#include "platform/lock.h"
#include "telling/texts.h"

namespace numalink {

void (*breakpointsChanged)() = nullptr;

namespace {

Lock listLock;
std::vector<Breakpoint> list GUARDED_BY(listLock);
int lastId GUARDED_BY(listLock) = 0;
std::atomic<std::uint64_t> version = 1;

// By value it is looked at where the machine stands still, which between runs may be one that was never started. A
// report other than that of the syntax may depend on what the machine holds by then.
std::string faultOf(const std::string &condition, bool alsoByValue) {
    const WatchExpression expression = readWatch(condition);
    const bool isFree = !emulatorRunning;
    if (!expression.fault.empty() || !alsoByValue || !(isFree || debugState() == DebugState::stopped))
        return expression.fault;
    if (isFree) machineStart();
    const WatchValue value = evaluateWatch(expression);
    if (value.sort == WatchValue::Sort::number) return {};
    if (value.sort != WatchValue::Sort::error) return wording(Text::conditionNoNumber);
    return value.isLasting ? value.text : std::string();
}

void tellChange() {
    version++;
    if (breakpointsChanged != nullptr) breakpointsChanged();
}

bool hasPlace(const Breakpoint &breakpoint) {
    if (breakpoint.isOfData()) return debugTargetNamed(breakpoint.target).has_value();
    return breakpoint.line >= 1 && breakpoint.statement >= 0;
}

bool makesSense(const Breakpoint &breakpoint, bool alsoByValue = true) {
    return (breakpoint.condition.empty() || faultOf(breakpoint.condition, alsoByValue).empty()) && hasPlace(breakpoint);
}

template <class Belongs>
bool followCells(const Belongs &belongs, const ProgramCell *cells, int count) {
    const HoldLock held(listLock);
    if (std::ranges::none_of(list, belongs)) return false;
    const std::vector<StatementOfText> text = statementsOfText(cells, count);
    bool changed = false;
    for (Breakpoint &breakpoint : list) {
        if (!belongs(breakpoint)) continue;
        KnownStatement &place = breakpoint;
        const KnownStatement before = place;
        const bool isLost = findStatement(place, text) < 0;
        changed = changed || before != place || isLost != breakpoint.isLost;
        breakpoint.isLost = isLost;
    }
    return changed;
}

auto ofItem(ItemId item) {
    return [item](const Breakpoint &breakpoint) { return !breakpoint.isOfData() && breakpoint.item == item; };
}

}  // namespace

std::string conditionFault(const std::string &condition) { return faultOf(condition, true); }

std::vector<Breakpoint> breakpoints() {
    const HoldLock held(listLock);
    return list;
}

int breakpointAdd(Breakpoint breakpoint) {
    if (!makesSense(breakpoint)) return 0;
    breakpoint.hits = breakpoint.own = breakpoint.ahead = breakpoint.behind = 0;
    {
        const HoldLock held(listLock);
        breakpoint.id = ++lastId;
        list.push_back(breakpoint);
    }
    tellChange();
    return breakpoint.id;
}

bool breakpointChange(const Breakpoint &breakpoint) {
    const auto isAsBefore = [&](const Breakpoint &each) {
        return each.id == breakpoint.id && each.condition == breakpoint.condition;
    };
    if (!makesSense(breakpoint, std::ranges::none_of(breakpoints(), isAsBefore))) return false;
    {
        const HoldLock held(listLock);
        const auto found = std::ranges::find(list, breakpoint.id, &Breakpoint::id);
        if (found == list.end()) return false;
        *found = breakpoint;
    }
    tellChange();
    return true;
}

void breakpointRemove(int id) {
    {
        const HoldLock held(listLock);
        std::erase_if(list, [id](const Breakpoint &breakpoint) { return breakpoint.id == id; });
    }
    tellChange();
}

void breakpointsClear() { breakpointsSet({}); }

void breakpointsSet(std::vector<Breakpoint> all) {
    std::erase_if(all, [](const Breakpoint &breakpoint) { return !hasPlace(breakpoint); });
    {
        const HoldLock held(listLock);
        list = std::move(all);
        for (Breakpoint &breakpoint : list) {
            if (breakpoint.id == 0) breakpoint.id = ++lastId;
            lastId = std::max(lastId, breakpoint.id);
        }
    }
    tellChange();
}

int breakpointToggle(ItemId item, int line, int statement) {
    std::size_t removed = 0;
    {
        const HoldLock held(listLock);
        removed = std::erase_if(list, [&](const Breakpoint &breakpoint) {
            return ofItem(item)(breakpoint) && breakpoint.line == line && breakpoint.statement == statement;
        });
    }
    if (removed > 0) {
        tellChange();
        return 0;
    }
    Breakpoint added;
    added.item = item;
    added.line = line;
    added.statement = statement;
    return breakpointAdd(added);
}

std::vector<Breakpoint> breakpointsOfItem(ItemId item) {
    std::vector<Breakpoint> found = breakpoints();
    std::erase_if(found, [&](const Breakpoint &breakpoint) { return !ofItem(item)(breakpoint); });
    return found;
}

bool breakpointsFollow(ItemId item, ByteView image) {
    const ProgramCells program = cellsOfImage(image);
    const bool changed = followCells(ofItem(item), program.cells.data(), static_cast<int>(program.cells.size()));
    if (changed) tellChange();
    return changed;
}

void breakpointsFollowLoaded() {
    bool changed = false;
    for (int i = 0; i < programCount(); i++) {
        const LoadedProgram &program = loadedProgram(i);
        const std::string name = programNameShown(i);
        const auto belongs = [&](const Breakpoint &breakpoint) {
            if (program.item != noItem) return ofItem(program.item)(breakpoint);
            return !breakpoint.isOfData() && breakpoint.item == noItem && breakpoint.program == name;
        };
        changed = followCells(belongs, program.cells, program.cellCount) || changed;
    }
    if (changed) tellChange();
}

void breakpointsForgetItem(ItemId item) {
    std::size_t removed = 0;
    {
        const HoldLock held(listLock);
        removed = std::erase_if(list, ofItem(item));
    }
    if (removed > 0) tellChange();
}

void breakpointSetHits(int id, std::uint64_t hits) {
    const HoldLock held(listLock);
    const auto found = std::ranges::find(list, id, &Breakpoint::id);
    if (found != list.end()) found->hits = hits;
}

void breakpointsCountAnew() {
    const HoldLock held(listLock);
    for (Breakpoint &breakpoint : list) breakpoint.hits = 0;
}

std::uint64_t breakpointsVersion() { return version; }

}  // namespace numalink
