#include "emulator/expressions.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>

#include "emulator/expressions/evaluator.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/key_port.h"
#include "emulator/machine/pace.h"
#include "emulator/machine/programs.h"
#include "emulator/run/machine_start.h"
#include "text/program_bytes.h"
#include "text/token_table.h"

namespace numalink {

namespace {

std::string textOfArray(const ProgramCell &cell) {
    const bool isList = cell.kind == CellKind::list;
    const MatrixDescriptor &array = *cell.matrix;
    std::string text = isList ? "{" : "";
    for (int row = 0; row < array.rows; row++) {
        if (isList && row > 0) text += ",";
        if (!isList) text += "[";
        for (int col = 0; col < array.cols; col++)
            text += (col > 0 ? "," : "") + digitsOf(matrixElements(&array)[row * array.cols + col]);
        if (!isList) text += "]";
    }
    return text + (isList ? "}" : array.rows == 0 ? "[]" : "");
}

std::string textOfCell(const ProgramCell &cell) {
    char token[8];
    switch (cell.kind) {
        case CellKind::blank:
            return "_";
        case CellKind::token:
            std::snprintf(token, sizeof token, isTwoByteLead(cell.token1) ? "<%02X%02X>" : "<%02X>", cell.token1,
                          cell.token2);
            return token;
        case CellKind::number:
            if (cell.value.im == 0) return digitsOf(cell.value.re);
            return digitsOf(cell.value.re) + (cell.value.im < 0 ? "" : "+") + digitsOf(cell.value.im) + "i";
        case CellKind::string:
            return "\"";
        default:
            return textOfArray(cell);
    }
}

}  // namespace

std::string digitsOf(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.12g", std::isnan(value) ? std::fabs(value) : value);
    return text;
}

FreshMachine::FreshMachine() {
    if (tokenCount() == 0 && !tokenTableLoad()) throw std::runtime_error("no casio.ptt beside the test");
    keyPort = windowKeys;
    fullSpeed = true;
    emulatorRunning = true;
    programsClear();
    machine = EmulatorMachine{};
    machineStart();
    machine.errorTrace = &reports;
}

FreshMachine::~FreshMachine() {
    machine.errorTrace = nullptr;
    emulatorRunning = false;
    keyPort = windowKeys;
}

Bytes imageOfWords(const std::string &words) {
    Bytes image = {':'};
    for (std::size_t at = 0; at < words.size();) {
        const std::size_t raw = std::min(words.find("\\x{", at), words.size());
        if (tokensFromWords(words.substr(at, raw - at), image) != -1)
            throw std::runtime_error("not exchange words: " + words);
        at = raw == words.size() ? raw : words.find('}', raw) + 1;
        for (std::size_t i = raw + 3; i + 1 < at; i += 2)
            image.push_back(static_cast<std::uint8_t>(std::stoi(words.substr(i, 2), nullptr, 16)));
    }
    image.insert(image.end(), {0xFF, 0});
    return image;
}

std::string textOfCells(const ProgramCell *cells, int count) {
    std::string text;
    for (int i = 0; i < count; i++) text += (i > 0 ? " " : "") + textOfCell(cells[i]);
    return text;
}

namespace {

void setList(int number, const std::vector<double> &elements) {
    MatrixSlot &slot =
        machine.listSlots[static_cast<std::size_t>(machine.currentFile)][static_cast<std::size_t>(number - 1)];
    matrixRenew(ownedByVariable, slot, 1, static_cast<int>(elements.size()));
    std::ranges::copy(elements, matrixElements(slot));
}

void setMatrix(char letter, int cols, const std::vector<double> &elements) {
    MatrixSlot &slot = machine.matrixSlots[static_cast<std::size_t>(letter - 'A')];
    matrixRenew(ownedByVariable, slot, cols, static_cast<int>(elements.size()) / cols);
    std::ranges::copy(elements, matrixElements(slot));
}

}  // namespace

std::string evaluated(const std::string &words) {
    const FreshMachine fresh;
    keyPort.getKey = [] { return 47; };
    machine.variables[0] = complexReal(5);
    machine.variables[1] = complexMake(2, 3);
    setMatrix('A', 2, {1, 2, 3, 4});
    setMatrix('B', 1, {5, 6});
    setList(1, {4, 5, 6});
    setList(2, {7, 8, 9});
    if (!programAdd("T", imageOfWords(words))) throw std::runtime_error("no room");
    const LoadedProgram &program = loadedProgram(0);
    std::vector<ProgramCell> cells(program.cells, program.cells + program.cellCount - 1);  // but for the end mark
    int count = static_cast<int>(cells.size());
    evaluate(cells.data(), 0, count);
    std::string text = textOfCells(cells.data(), count);
    for (const std::string sort : {"Syn", "Dim", "Arg", "Ma", "Go"}) {
        const auto isOfSort = [&](const ErrorReport &report) { return report.text.starts_with(sort); };
        if (std::ranges::any_of(fresh.reports, isOfSort)) text += " !" + sort;
    }
    return text;
}

}  // namespace numalink
