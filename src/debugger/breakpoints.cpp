#include "debugger/breakpoints.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdlib>

#include "debugger/values.h"
#include "debugger/watches.h"
#include "emulator/machine/programs.h"
#include "platform/lock.h"

namespace numalink {

void (*breakpointsChanged)() = nullptr;

namespace {

Lock listLock;
std::vector<Breakpoint> list GUARDED_BY(listLock);
int lastId GUARDED_BY(listLock) = 0;
std::atomic<std::uint64_t> version = 1;

void tellChange() {
    version++;
    if (breakpointsChanged != nullptr) breakpointsChanged();
}

bool makesSense(const Breakpoint &breakpoint) {
    if (!breakpoint.condition.empty() && !readWatch(breakpoint.condition).fault.empty()) return false;
    if (breakpoint.isOfData()) return debugTargetNamed(breakpoint.target).has_value();
    return breakpoint.line >= 1 && breakpoint.statement >= 0;
}

std::uint64_t mixed(std::uint64_t digest, std::uint64_t word) {
    digest = (digest ^ word) * 1099511628211u;
    return digest ^ digest >> 31;
}

// A statement of a program, as breakpoints remember it.
struct KnownStatement {
    int line = 1, statement = 0;
    std::uint64_t digest = 0;  // never 0
};

std::uint64_t digestOf(const ProgramCell *cells, int count) {
    std::uint64_t digest = 14695981039346656037u;
    for (int i = 0; i < count; i++) {
        const ProgramCell &cell = cells[i];
        digest = mixed(digest, static_cast<std::uint64_t>(cell.kind));
        if (isNumber(cell)) digest = mixed(digest, std::bit_cast<std::uint64_t>(cell.value.re));
        if (cell.kind == CellKind::token) digest = mixed(digest, cell.token1 * 256u + cell.token2);
        if (cell.kind == CellKind::string) digest = mixed(digest, digestOf(cell.stringCells, cell.stringLength));
    }
    return digest == 0 ? 1 : digest;
}

std::vector<KnownStatement> statementsOf(const ProgramCell *cells, int count) {
    std::vector<KnownStatement> statements;
    KnownStatement next;
    for (int begin = 0; begin + 1 < count;) {
        const int end = findTerminator(cells, begin);
        next.digest = digestOf(cells + begin, end - begin);
        statements.push_back(next);
        next.statement++;
        if (!isToken(cells[end], token::colon)) next = {next.line + 1, 0};
        begin = end + 1;
    }
    return statements;
}

// Of the statement at a place, the one that is missing for a place outside.
std::uint64_t digestAt(const std::vector<KnownStatement> &statements, std::size_t place) {
    return place < statements.size() ? statements[place].digest : 1;
}

void remember(Breakpoint &breakpoint, const std::vector<KnownStatement> &statements, std::size_t place) {
    breakpoint.line = statements[place].line;
    breakpoint.statement = statements[place].statement;
    breakpoint.own = statements[place].digest;
    breakpoint.ahead = digestAt(statements, place - 1);
    breakpoint.behind = digestAt(statements, place + 1);
    breakpoint.isLost = false;
}

// How well the statement at a place fits: its own tokens count most, then its neighbours'. 0: it isn't the one.
int fitOf(const Breakpoint &breakpoint, const std::vector<KnownStatement> &statements, std::size_t place) {
    const bool isOwn = statements[place].digest == breakpoint.own;
    const bool hasAhead = digestAt(statements, place - 1) == breakpoint.ahead;
    const bool hasBehind = digestAt(statements, place + 1) == breakpoint.behind;
    if (!isOwn && !(hasAhead && hasBehind)) return 0;  // a statement between the same two was edited
    return (isOwn ? 4 : 0) + (hasAhead ? 1 : 0) + (hasBehind ? 1 : 0);
}

std::size_t placeOf(const Breakpoint &breakpoint, const std::vector<KnownStatement> &statements) {
    const auto isThere = [&](const KnownStatement &each) {
        return each.line == breakpoint.line && each.statement == breakpoint.statement;
    };
    return static_cast<std::size_t>(std::ranges::find_if(statements, isThere) - statements.begin());
}

// The first time it looks where it was set, later for its statement: the best fit, of equal ones the nearest.
void follow(Breakpoint &breakpoint, const std::vector<KnownStatement> &statements) {
    const std::size_t here = placeOf(breakpoint, statements);
    if (breakpoint.own == 0) {
        breakpoint.isLost = here == statements.size();
        if (!breakpoint.isLost) remember(breakpoint, statements, here);
        return;
    }
    std::size_t best = statements.size(), bestDistance = 0;
    int bestFit = 0;
    for (std::size_t place = 0; place < statements.size(); place++) {
        const int fit = fitOf(breakpoint, statements, place);
        const std::size_t distance = place > here ? place - here : here - place;
        if (fit < bestFit || fit == 0 || (fit == bestFit && distance >= bestDistance)) continue;
        best = place;
        bestFit = fit;
        bestDistance = distance;
    }
    breakpoint.isLost = best == statements.size();
    if (!breakpoint.isLost) remember(breakpoint, statements, best);
}

bool isSame(const Breakpoint &left, const Breakpoint &right) {
    return left.line == right.line && left.statement == right.statement && left.isLost == right.isLost &&
           left.own == right.own && left.ahead == right.ahead && left.behind == right.behind;
}

template <class Belongs>
bool followCells(const Belongs &belongs, const ProgramCell *cells, int count) {
    const HoldLock held(listLock);
    if (std::ranges::none_of(list, belongs)) return false;
    const std::vector<KnownStatement> statements = statementsOf(cells, count);
    bool changed = false;
    for (Breakpoint &breakpoint : list) {
        if (!belongs(breakpoint)) continue;
        const Breakpoint before = breakpoint;
        follow(breakpoint, statements);
        changed = changed || !isSame(before, breakpoint);
    }
    return changed;
}

auto ofItem(ItemId item) {
    return [item](const Breakpoint &breakpoint) { return !breakpoint.isOfData() && breakpoint.item == item; };
}

}  // namespace

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
    if (!makesSense(breakpoint)) return false;
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
    std::erase_if(all, [](const Breakpoint &breakpoint) { return !makesSense(breakpoint); });
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

std::uint64_t breakpointHit(int id) {
    const HoldLock held(listLock);
    const auto found = std::ranges::find(list, id, &Breakpoint::id);
    return found == list.end() ? 0 : ++found->hits;
}

void breakpointsCountAnew() {
    const HoldLock held(listLock);
    for (Breakpoint &breakpoint : list) breakpoint.hits = 0;
}

std::uint64_t breakpointsVersion() { return version; }

}  // namespace numalink
