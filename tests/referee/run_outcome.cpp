#include "referee/run_outcome.h"

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>

#include "emulator/expressions/vocabulary.h"
#include "emulator/machine/arrays.h"
#include "emulator/screens/display.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/pictures.h"
#include "emulator/screens/text_screen.h"

namespace numalink {

namespace {

struct Outcome {
    std::vector<std::string> lines;

    // What is no number has a sign that depends on the order in which the machine took two of its kind, and that no
    // program can see.
    void add(const std::string &name, double value) {
        if (std::isnan(value)) value = std::numeric_limits<double>::quiet_NaN();
        char line[64];
        std::snprintf(line, sizeof line, "%016llx",
                      static_cast<unsigned long long>(std::bit_cast<std::uint64_t>(value)));
        lines.push_back(name + " " + line);
    }
    void add(const std::string &name, ComplexValue value) {
        add(name, value.re);
        add(name + " i", value.im);
    }
    void add(const std::string &name, const Surface &surface) {
        std::size_t digest = 14695981039346656037u;
        for (const Color dot : surface.dots) digest = (digest ^ dot) * 1099511628211u;
        lines.push_back(name + " " + std::to_string(digest));
    }
    void add(const std::string &name, MatrixSlot array) {
        if (array == nullptr) return;
        lines.push_back(name + " " + std::to_string(array->cols) + " " + std::to_string(array->rows));
        for (int i = 0; i < matrixSize(array); i++) add(name, matrixElements(array)[i]);
    }
};

}  // namespace

RunOutcome runOutcome(const RunReport &report) {
    Outcome outcome;
    outcome.lines = {"ended " + std::to_string(static_cast<int>(report.ended)),
                     "statements " + std::to_string(report.statements)};
    for (const ErrorReport &error : report.errors)
        outcome.lines.push_back(error.text + " at " + std::to_string(error.statement));
    for (std::size_t i = 0; i < machine.variables.size(); i++)
        outcome.add("variable " + std::to_string(i), machine.variables[i]);
    outcome.add("Ans", machine.ans);
    for (const ComplexValue &value : machine.window) outcome.add("window", value);
    for (std::size_t i = 0; i < machine.matrixSlots.size(); i++)
        outcome.add("matrix " + std::to_string(i), machine.matrixSlots[i]);
    for (const auto &file : machine.listSlots)
        for (std::size_t i = 0; i < file.size(); i++) outcome.add("list " + std::to_string(i), file[i]);
    outcome.add("text", textScreen());
    outcome.add("graph", graphScreen());
    outcome.add("display", displayNow());
    outcome.lines.push_back("mode " + std::to_string(machine.screenMode) + " row " + std::to_string(machine.textRow));
    return outcome.lines;
}

void forgetRuns() {
    machine = EmulatorMachine{};
    clearGraph();
    for (int number = 1; number <= memoryCount; number++) storePicture(number);
    randomRestart();
}

}  // namespace numalink
