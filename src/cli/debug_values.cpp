#include "cli/debug_values.h"

#include <algorithm>
#include <span>
#include <sstream>

#include "debugger/values.h"
#include "debugger/watches.h"
#include "drawing/dot_text.h"

namespace numalink {

namespace {

using Json = DebugJson;
using Request = DebugRequest;

// What a variablesReference stands for: a group of values by its place, a picture memory, else an array.
constexpr int firstScope = 1;
constexpr int firstPicture = firstScope + static_cast<int>(std::size(valueGroups));
constexpr int firstArray = firstPicture + memoryCount;

Json variable(const std::string &name, const std::string &value, int reference = 0) {
    return {{"name", name}, {"value", value}, {"variablesReference", reference}};
}

std::string elementName(const NamedArray &array, int index) {
    const std::string row = std::to_string(index / array.columns + 1);
    return array.isList ? "[" + row + "]" : "[" + row + "," + std::to_string(index % array.columns + 1) + "]";
}

void addElements(Json &list, const NamedArray &array, int start, int count) {
    const int size = array.columns * array.rows;
    std::int64_t asked = size;
    if (count > 0) asked = std::int64_t{start} + count;
    const int end = static_cast<int>(std::min<std::int64_t>(size, asked));
    for (int index = std::max(start, 0); index < end; index++) {
        const double element = debugElement(array, index / array.columns + 1, index % array.columns + 1);
        list.push_back(variable(elementName(array, index), elementTextOf(element).plain));
    }
}

// As blocks of two rows of dots each.
void addDots(Json &list, const NamedPicture &picture) {
    std::istringstream rows(dotText(*picture.surface));
    int row = 0;
    for (std::string dots; std::getline(rows, dots); row += 2)
        list.push_back(variable("dots " + std::to_string(row) + ", " + std::to_string(row + 1), dots));
}

void addGroup(Json &list, const ValueGroup &group) {
    int reference = group.sort == ValueGroup::Sort::pictures ? firstPicture : firstArray;
    switch (group.sort) {
        case ValueGroup::Sort::values:
            for (const NamedValue &value : group.values())
                list.push_back(variable(value.name, valueTextOf(value.value).plain));
            break;
        case ValueGroup::Sort::texts:
            for (const NamedText &text : group.texts()) list.push_back(variable(text.name, text.text));
            break;
        case ValueGroup::Sort::pictures:
            for (const NamedPicture &picture : debugPictures())
                list.push_back(variable(picture.name, std::to_string(picture.dots) + " dots", reference++));
            break;
        case ValueGroup::Sort::arrays:
            for (const NamedArray &array : debugArrays()) {
                const std::string size = std::to_string(array.rows) + " by " + std::to_string(array.columns);
                list.push_back(variable(array.name, size, reference++));
                list.back()["indexedVariables"] = array.rows * array.columns;
            }
            break;
    }
}

// The one of a list that a reference stands for, or null.
template <class Values>
const auto *ofReference(const Values &values, int reference, int first) {
    const bool isOne = reference >= first && reference - first < static_cast<int>(values.size());
    return isOne ? &values[static_cast<std::size_t>(reference - first)] : nullptr;
}

}  // namespace

void answerScopes(const Request &request) {
    Json scopes = Json::array();
    int reference = firstScope;
    for (const ValueGroup &group : valueGroups) {
        if (holdsAnything(group))
            scopes.push_back({{"name", group.name}, {"variablesReference", reference}, {"expensive", false}});
        reference++;
    }
    request.answer({{"scopes", scopes}});
}

void answerVariables(const Request &request) {
    const int reference = argument(request.arguments(), "variablesReference", 0);
    const std::span<const ValueGroup> groups = valueGroups;
    const std::vector<NamedPicture> pictures = debugPictures();
    const std::vector<NamedArray> arrays = debugArrays();
    Json list = Json::array();
    if (const ValueGroup *group = ofReference(groups, reference, firstScope)) {
        addGroup(list, *group);
    } else if (const NamedPicture *picture = ofReference(pictures, reference, firstPicture)) {
        addDots(list, *picture);
    } else if (const NamedArray *array = ofReference(arrays, reference, firstArray)) {
        addElements(list, *array, argument(request.arguments(), "start", 0), argument(request.arguments(), "count", 0));
    }
    request.answer({{"variables", list}});
}

std::string debugTargetNameOf(const Request &request) {
    const Json &arguments = request.arguments();
    const std::string name = argument(arguments, "name", std::string());
    const std::vector<NamedArray> arrays = debugArrays();
    const NamedArray *array = ofReference(arrays, argument(arguments, "variablesReference", 0), firstArray);
    return array != nullptr ? array->name + name : name;
}

void answerSetVariable(const Request &request) {
    const auto target = debugTargetNamed(debugTargetNameOf(request));
    if (!target) return request.refuse("that can't be changed");
    switch (debugChange(*target, argument(request.arguments(), "value", std::string()))) {
        case DebugChange::done:
            return request.answer({{"value", valueTextOf(debugTargetValue(*target).value_or(ComplexValue{})).plain}});
        case DebugChange::notANumber:
            return request.refuse("not a number");
        case DebugChange::notReal:
            return request.refuse("elements are real");
        case DebugChange::noSuchPlace:
            return request.refuse("there is no such element");
        case DebugChange::runsOn:
            return request.refuse("it runs");
    }
}

void answerEvaluate(const Request &request) {
    const WatchValue value = evaluateWatch(readWatch(argument(request.arguments(), "expression", std::string())));
    if (value.sort == WatchValue::Sort::error) return request.refuse(value.text);
    request.answer({{"result", watchText(value).plain}, {"variablesReference", 0}});
}

}  // namespace numalink
