#include "debugger/profile.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "debugger/profile_counts.h"
#include "emulator/machine/pace.h"
#include "emulator/machine/programs.h"
#include "platform/lock.h"

namespace numalink {

namespace {

using Json = nlohmann::ordered_json;

// Of each cell of each program. The run thread counts while others read, so each number is atomic; the vectors are made
// and thrown away with the lock held.
struct CellCounts {
    std::vector<std::uint64_t> runs, units;
};
Lock countsLock;
std::vector<CellCounts> counts GUARDED_BY(countsLock);
std::atomic<bool> isWanted = false;

// The run thread's: the statement that the units go to, and what had been paid when it began.
std::uint64_t *unitsOfStatement = nullptr;
std::uint64_t paidBefore = 0;

void add(std::uint64_t &number, std::uint64_t more) {
    const std::atomic_ref<std::uint64_t> shared(number);
    shared.store(shared.load(std::memory_order_relaxed) + more, std::memory_order_relaxed);
}

std::uint64_t load(std::uint64_t &number) {
    return std::atomic_ref<std::uint64_t>(number).load(std::memory_order_relaxed);
}

CellCounts *countsOf = nullptr;  // run thread: the counts without the lock

double share(std::uint64_t part, std::uint64_t whole) {
    return whole == 0 ? 0 : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

std::string formatted(const char *format, auto... values) {
    char text[200];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

std::string placeText(const ProfileRow &row) {
    return programNameShown(row.place.program) + ":" + std::to_string(row.place.line) + ":" +
           std::to_string(row.place.statement + 1);
}

// The counts of the cells up to the next statement belong to this one.
void addCells(ProfileReport &report, CellCounts &of, ProfileRow row, int end) {
    for (auto cell = static_cast<std::size_t>(row.cell); cell < static_cast<std::size_t>(end); cell++) {
        row.count += load(of.runs[cell]);
        row.paceUnits += load(of.units[cell]);
    }
    report.count += row.count;
    report.paceUnits += row.paceUnits;
    report.rows.push_back(row);
}

void addProgram(ProfileReport &report, CellCounts &of, int program) {
    const LoadedProgram &loaded = loadedProgram(program);
    ProfileRow row;
    row.place = placeOfCell(program, 0);
    for (int cell = 0; cell + 1 < loaded.cellCount; cell = loaded.terminators[cell] + 1) {
        row.cell = cell;
        addCells(report, of, row, loaded.terminators[cell] + 1);
        row.place.statement++;
        if (isToken(loaded.cells[loaded.terminators[cell]], token::colon)) continue;
        row.place.line++;
        row.place.statement = 0;
    }
}

}  // namespace

void profileStart() {
    isWanted = true;
    if (!emulatorRunning) profileAdopt();  // what is paid ahead of the first statement counts
}
void profileStop() { isWanted = false; }
bool profileIsOn() { return isWanted; }

void profileForget() {
    const HoldLock held(countsLock);
    counts.clear();
    countsOf = nullptr;
    unitsOfStatement = nullptr;
    paceCounted = false;
}

bool profileAdopt() {
    if (isWanted == paceCounted) return paceCounted;
    profileSettle();
    unitsOfStatement = nullptr;
    paceCounted = isWanted;
    if (!paceCounted || countsOf != nullptr) return paceCounted;
    const HoldLock held(countsLock);
    counts.resize(static_cast<std::size_t>(programCount()));
    for (int program = 0; program < programCount(); program++) {
        CellCounts &made = counts[static_cast<std::size_t>(program)];
        made.runs.assign(static_cast<std::size_t>(loadedProgram(program).cellCount), 0);
        made.units = made.runs;
    }
    countsOf = counts.data();
    return true;
}

void profileSettle() {
    if (unitsOfStatement != nullptr) add(*unitsOfStatement, paceUnitsPaid - paceUnitsAhead - paidBefore);
    paidBefore = paceUnitsPaid - paceUnitsAhead;
    paceUnitsAhead = 0;
}

void profileCount(int program, int cell) {
    profileSettle();
    CellCounts &of = countsOf[program];
    add(of.runs[static_cast<std::size_t>(cell)], 1);
    unitsOfStatement = &of.units[static_cast<std::size_t>(cell)];
}

ProfileReport profileReport() {
    if (!emulatorRunning) profileSettle();  // the last statement has no next one
    ProfileReport report;
    const HoldLock held(countsLock);
    const int loaded = std::min(programCount(), static_cast<int>(counts.size()));
    for (int program = 0; program < loaded; program++)
        addProgram(report, counts[static_cast<std::size_t>(program)], program);
    return report;
}

std::string profileAsText(const ProfileReport &report) {
    std::vector<ProfileRow> rows = report.rows;
    std::erase_if(rows, [](const ProfileRow &row) { return row.count == 0; });
    std::ranges::stable_sort(rows, std::ranges::greater(), &ProfileRow::paceUnits);
    std::string text = formatted("%12s %7s %14s %7s  statement\n", "count", "share", "ms", "share");
    for (const ProfileRow &row : rows) {
        text += formatted("%12llu %6.2f%% %14.1f %6.2f%%  ", static_cast<unsigned long long>(row.count),
                          share(row.count, report.count), profileMilliseconds(row.paceUnits),
                          share(row.paceUnits, report.paceUnits));
        text += placeText(row) + "  " + statementText(row.place.program, row.cell) + "\n";
    }
    return text + formatted("%12llu %7s %14.1f %7s  in all\n", static_cast<unsigned long long>(report.count), "",
                            profileMilliseconds(report.paceUnits), "");
}

std::string profileAsJson(const ProfileReport &report) {
    Json rows = Json::array();
    for (const ProfileRow &row : report.rows) {
        rows.push_back({{"program", programNameShown(row.place.program)},
                        {"line", row.place.line},
                        {"statement", row.place.statement + 1},
                        {"text", statementText(row.place.program, row.cell)},
                        {"count", row.count},
                        {"paceUnits", row.paceUnits}});
    }
    const Json file = {{"count", report.count}, {"paceUnits", report.paceUnits}, {"statements", rows}};
    return file.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string coverageAsText(const ProfileReport &report) {
    std::string text;
    for (int program = 0; program < programCount(); program++) {
        std::string lines;
        std::uint64_t run = 0, all = 0;
        for (const ProfileRow &row : report.rows) {
            if (row.place.program != program) continue;
            all++;
            run += row.count > 0;
            lines += formatted("%12llu ", static_cast<unsigned long long>(row.count)) + std::to_string(row.place.line) +
                     ":" + std::to_string(row.place.statement + 1) + "  " + statementText(program, row.cell) + "\n";
        }
        text += programNameShown(program) +
                formatted(": %llu of %llu statements, %.1f%%\n", static_cast<unsigned long long>(run),
                          static_cast<unsigned long long>(all), share(run, all)) +
                lines;
    }
    return text;
}

}  // namespace numalink
