// What a run leaves behind, as text and as JSON.
#include "cli/run_report.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "calculator/charset.h"
#include "emulator/machine/arrays.h"
#include "emulator/screens/display.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/text_screen.h"

namespace numalink {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char *windowNames[] = {"Xmin",   "Xmax",      "Xscale",    "Ymin",       "Ymax",
                                       "Yscale", "TThetaMin", "TThetaMax", "TThetaPitch"};
static_assert(std::size(windowNames) == windowValueCount);

std::string hexadecimal(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%a", value);
    return text;
}

void addValue(Json &object, const std::string &name, ComplexValue value) {
    if (value.re != 0 || value.im != 0) object[name] = {hexadecimal(value.re), hexadecimal(value.im)};
}

Json variablesAsJson() {
    Json object = Json::object();
    for (std::size_t i = 0; i < variableR; i++)
        addValue(object, std::string(1, static_cast<char>('A' + i)), machine.variables[i]);
    addValue(object, "r", machine.variables[variableR]);
    addValue(object, "theta", machine.variables[variableTheta]);
    addValue(object, "Ans", machine.ans);
    for (std::size_t i = 0; i < windowValueCount; i++) addValue(object, windowNames[i], machine.window[i]);
    return object;
}

// Cells as pairs of a value and how often it follows itself.
Json arrayAsJson(const MatrixDescriptor *array) {
    Json cells = Json::array();
    const double *elements = matrixElements(array);
    for (int i = 0; i < matrixSize(array); i++) {
        const std::string value = hexadecimal(elements[i]);
        if (!cells.empty() && cells.back()[0] == value) {
            cells.back()[1] = cells.back()[1].get<int>() + 1;
        } else {
            cells.push_back({value, 1});
        }
    }
    return {{"rows", array->rows}, {"cols", array->cols}, {"cells", cells}};
}

Json listsAsJson() {
    Json object = Json::object();
    for (std::size_t file = 0; file < memoryCount; file++) {
        for (std::size_t slot = 0; slot <= listAnsSlot; slot++) {
            const MatrixDescriptor *list = machine.listSlots[file][slot];
            const std::string number = slot == listAnsSlot ? "Ans" : std::to_string(slot + 1);
            if (list != nullptr) object["List " + std::to_string(file + 1) + "/" + number] = arrayAsJson(list);
        }
    }
    return object;
}

Json matricesAsJson() {
    Json object = Json::object();
    for (std::size_t slot = 0; slot <= matrixAnsSlot; slot++) {
        const MatrixDescriptor *matrix = machine.matrixSlots[slot];
        const std::string name = slot == matrixAnsSlot ? "Ans" : std::string(1, static_cast<char>('A' + slot));
        if (matrix != nullptr) object["Mat " + name] = arrayAsJson(matrix);
    }
    return object;
}

// Rows that are alike, each as stretches of dots of one colour.
Json surfaceAsJson(const Surface &surface) {
    Json rows = Json::array();
    for (int y = 0; y < surface.height; y++) {
        Json runs = Json::array();
        for (int x = 0; x < surface.width; x++) {
            const PixelColor color = pixelColorOf(dotAt(surface, x, y));
            if (!runs.empty() && runs.back()[1] == color) {
                runs.back()[0] = runs.back()[0].get<int>() + 1;
            } else {
                runs.push_back({1, color});
            }
        }
        if (!rows.empty() && rows.back()[1] == runs) {
            rows.back()[0] = rows.back()[0].get<int>() + 1;
        } else {
            rows.push_back({1, runs});
        }
    }
    return rows;
}

Json boxesAsJson(const std::vector<Box> &boxes) {
    Json list = Json::array();
    for (const Box &box : boxes) {
        Json entry = {textNumber(box.bodyText), textNumber(box.titleText)};
        for (const std::string &argument : box.arguments) entry.push_back(argument);
        list.push_back(entry);
    }
    return list;
}

void appendUtf8(std::string &text, char32_t brailleDots) {
    text += static_cast<char>(0xE2);
    text += static_cast<char>(0xA0 | brailleDots >> 6);
    text += static_cast<char>(0x80 | (brailleDots & 0x3F));
}

// Two by four dots a character.
std::string surfaceAsText(const Surface &surface) {
    constexpr int bitOf[4][2] = {{0, 3}, {1, 4}, {2, 5}, {6, 7}};
    std::string text;
    for (int top = 0; top < surface.height; top += 4) {
        for (int left = 0; left < surface.width; left += 2) {
            char32_t dots = 0;
            for (int y = 0; y < 4; y++) {
                for (int x = 0; x < 2; x++) {
                    if (dotAt(surface, left + x, top + y) != lcdColor::background) dots |= char32_t{1} << bitOf[y][x];
                }
            }
            appendUtf8(text, dots);
        }
        text += '\n';
    }
    return text;
}

bool isEmpty(const Surface &surface) {
    return std::ranges::all_of(surface.dots, [](Color color) { return color == lcdColor::background; });
}

}  // namespace

const char *runEndName(RunEnd ended) {
    static constexpr std::array names = {"stopped", "end",   "triangle", "cursor",
                                         "input",   "limit", "memory",   "nothing to run"};
    return names[static_cast<std::size_t>(ended)];
}

Json runAsJson(const RunReport &report, const std::vector<Box> &boxes) {
    Json errors = Json::array();
    for (const ErrorReport &error : report.errors) errors.push_back({error.text, error.statement});
    Json textRows = Json::array();
    for (int row = 1; row <= textRowCount; row++) textRows.push_back(utf8FromCalculator(textRowCodes(row)));
    return {{"variables", variablesAsJson()},
            {"lists", listsAsJson()},
            {"matrices", matricesAsJson()},
            {"file", machine.currentFile + 1},
            {"textScreen", surfaceAsJson(textScreen())},
            {"graph", surfaceAsJson(graphScreen())},
            {"matrixScreen", surfaceAsJson(matrixScreen())},
            {"display", surfaceAsJson(displayNow())},
            {"textRows", textRows},
            {"textRow", machine.textRow},
            {"textColumn", machine.textColumn},
            {"screenMode", machine.screenMode},
            {"errors", errors},
            {"errorFlag", machine.errorFlag},
            {"boxes", boxesAsJson(boxes)},
            {"statements", report.statements},
            {"ended", runEndName(report.ended)}};
}

std::string runAsText(const RunReport &report) {
    std::string text;
    for (int row = 1; row <= textRowCount; row++) {
        std::string line = utf8FromCalculator(textRowCodes(row));
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    if (!isEmpty(graphScreen())) text += surfaceAsText(graphScreen());
    for (const ErrorReport &error : report.errors)
        text += error.text + " in statement " + std::to_string(error.statement) + "\n";
    return text + "ended: " + runEndName(report.ended) + "\n";
}

}  // namespace numalink
