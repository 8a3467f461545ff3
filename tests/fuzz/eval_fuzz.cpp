// Any bytes as an expression; what stands behind a byte 0xF8 are the texts of f1 to f3. By both ways of the
// evaluator, which must leave the same cells, reports and variables.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "emulator/expressions/evaluator.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/key_port.h"
#include "emulator/machine/pace.h"
#include "emulator/machine/programs.h"
#include "emulator/machine/run_waits.h"
#include "emulator/run/machine_start.h"
#include "platform/clock.h"
#include "text/token_table.h"

using namespace numalink;

namespace {

constexpr std::uint8_t partEnd = 0xF8;
constexpr std::uint8_t blankByte = 0xF9;  // a cell that an earlier step has emptied
constexpr std::uint8_t randomToken = 0xC1;
std::vector<ErrorReport> reports;

void prepare() {
    machine = EmulatorMachine{};  // machineStart's look through the token table is done once
    poolReset();
    reports.clear();
    resetRunEnd(RunEnd::running);
    workBegin(1000);
    machine.errorTrace = &reports;
    for (std::size_t i = 0; i < 26; i++) machine.variables[i] = complexMake(static_cast<double>(i) - 3, i == 25);
    machine.listSlots[0][0] = matrixAllocate(ownedByVariable, 1, 3);
    machine.matrixSlots[0] = matrixAllocate(ownedByVariable, 2, 3);
    matrixFill(2, machine.listSlots[0][0]);
}

void loadParts(ByteView bytes) {
    static constexpr const char *names[] = {"MAIN", "f1", "f2", "f3"};
    programsClear();
    Bytes image = {':'};
    for (std::size_t i = 0; i <= bytes.size(); i++) {
        if (i < bytes.size() && bytes[i] != partEnd) {
            image.push_back(bytes[i]);
            continue;
        }
        image.push_back(0xFF);
        image.push_back(0);
        if (programCount() == std::ssize(names) || !programAdd(names[programCount()], image)) return;
        image = {':'};
    }
}

// The bits of what is left, arrays by their elements.
std::vector<std::uint64_t> result(bool plainly) {
    prepare();
    // The stretch stands between two other cells, which must not change: a number and the program's end mark.
    std::vector<ProgramCell> cells = {numberCell(complexReal(8))};
    cells.insert(cells.end(), loadedProgram(0).cells, loadedProgram(0).cells + loadedProgram(0).cellCount);
    for (ProgramCell &cell : cells)
        if (isToken(cell, {blankByte})) cell = ProgramCell{};
    int count = std::min(static_cast<int>(cells.size()) - 2, statementLimit);
    evaluateWithoutShortcuts = plainly;
    evaluate(cells.data(), 1, count);
    if (cells[0].value.re != 8 || !isToken(cells.back(), token::endOfProgram)) std::abort();
    std::vector<std::uint64_t> bits = {machine.errorFlag, machine.exhausted, reports.size()};
    for (const ErrorReport &report : reports) bits.push_back(std::hash<std::string>()(report.text));
    for (const ComplexValue &variable : machine.variables) bits.push_back(std::bit_cast<std::uint64_t>(variable.re));
    for (int i = 1; i <= count; i++) {
        const ProgramCell &cell = cells[static_cast<std::size_t>(i)];
        bits.push_back(static_cast<std::uint64_t>(cell.kind) << 16 | std::uint64_t{cell.token1} << 8 | cell.token2);
        bits.push_back(std::bit_cast<std::uint64_t>(cell.value.re));
        bits.push_back(std::bit_cast<std::uint64_t>(cell.value.im));
        bits.push_back(isArray(cell) ? static_cast<std::uint64_t>(cell.matrix->cols) : 0);
        for (int k = 0; isArray(cell) && k < matrixSize(cell.matrix); k++)
            bits.push_back(std::bit_cast<std::uint64_t>(matrixElements(cell.matrix)[k]));
    }
    return bits;
}

// Whatever the bytes, a program ends in its mark, which stands nowhere ahead of its end.
void checkEnds(ByteView image) {
    programsClear();
    if (!programAdd("RAW", Bytes(image.begin(), image.end()))) return;
    const std::span cells(loadedProgram(0).cells, static_cast<std::size_t>(loadedProgram(0).cellCount));
    const auto isEnd = [](const ProgramCell &cell) { return isToken(cell, token::endOfProgram); };
    if (std::ranges::find_if(cells, isEnd) != cells.end() - 1) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (tokenCount() == 0) {
        tokenTableLoad();
        machineStart();
    }
    fullSpeed = true;
    clockPort.sleepMilliseconds = [](std::uint64_t) {};  // number input waits for keys
    emulatorRunning = true;
    keyPort.getKey = [] { return 27; };
    keyPort.waitKey = [] { return 31; };
    const ByteView bytes(data, size);
    checkEnds(bytes);
    loadParts(bytes);
    if (programCount() == 0) return 0;
    const bool repeats = std::find(data, data + size, randomToken) == data + size;  // Ran# never comes twice alike
    const auto fast = result(false);
    if (repeats && result(true) != fast) std::abort();
    return 0;
}
