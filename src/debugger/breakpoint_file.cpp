#include "debugger/breakpoint_file.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "debugger/breakpoints.h"
#include "platform/files.h"

namespace numalink {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::uint64_t fileLimit = 1u << 20;  // bytes
constexpr std::size_t recordLimit = 1000;
constexpr std::size_t textLimit = 1000;  // bytes of a condition or a name

template <class Value>
Value valueOr(const Json &record, const char *name, Value otherwise) {
    const auto found = record.find(name);
    if (found == record.end()) return otherwise;
    if constexpr (std::is_same_v<Value, std::string>) {
        return found->is_string() && found->get_ref<const std::string &>().size() <= textLimit ? found->get<Value>()
                                                                                               : otherwise;
    } else if constexpr (std::is_same_v<Value, bool>) {
        return found->is_boolean() ? found->get<Value>() : otherwise;
    } else {
        return found->is_number_unsigned() && found->get<std::uint64_t>() <= std::numeric_limits<Value>::max()
                   ? found->get<Value>()
                   : otherwise;
    }
}

Json recordOf(const Breakpoint &breakpoint) {
    Json record = Json::object();
    if (breakpoint.isOfData()) {
        record["changes"] = breakpoint.target;
    } else {
        record["item"] = breakpoint.item;
        record["line"] = breakpoint.line;
        record["statement"] = breakpoint.statement;
        record["tokens"] = {breakpoint.ahead, breakpoint.own, breakpoint.behind};
    }
    if (!breakpoint.enabled) record["enabled"] = false;
    if (breakpoint.isLost) record["lost"] = true;
    if (!breakpoint.condition.empty()) record["condition"] = breakpoint.condition;
    if (breakpoint.count > 1) record["count"] = breakpoint.count;
    return record;
}

Breakpoint breakpointOf(const Json &record) {
    Breakpoint breakpoint;
    breakpoint.target = valueOr(record, "changes", std::string());
    breakpoint.item = valueOr(record, "item", ItemId{noItem});
    breakpoint.line = valueOr(record, "line", 0);
    breakpoint.statement = valueOr(record, "statement", 0);
    breakpoint.enabled = valueOr(record, "enabled", true);
    breakpoint.isLost = valueOr(record, "lost", false);
    breakpoint.condition = valueOr(record, "condition", std::string());
    breakpoint.count = valueOr(record, "count", std::uint64_t{0});
    const auto tokens = record.find("tokens");
    if (tokens == record.end() || !tokens->is_array() || tokens->size() != 3) return breakpoint;
    const auto digest = [&](std::size_t i) {
        return (*tokens)[i].is_number_unsigned() ? (*tokens)[i].get<std::uint64_t>() : 0;
    };
    breakpoint.ahead = digest(0);
    breakpoint.own = digest(1);
    breakpoint.behind = digest(2);
    return breakpoint;
}

}  // namespace

bool breakpointsLoad(const std::string &folder) {
    breakpointsClear();
    Bytes bytes;
    const FileResult read = readWholeFile(folder + breakpointFileName, bytes, fileLimit);
    if (read == FileResult::missing) return true;
    const Json file = Json::parse(bytes.begin(), bytes.end(), nullptr, false);
    if (read != FileResult::done || !file.is_array()) return false;
    std::vector<Breakpoint> list;
    for (const Json &record : file) {
        if (record.is_object() && list.size() < recordLimit) list.push_back(breakpointOf(record));
    }
    breakpointsSet(std::move(list));
    return true;
}

bool breakpointsSave(const std::string &folder) {
    const std::string path = folder + breakpointFileName;
    Json file = Json::array();
    for (const Breakpoint &breakpoint : breakpoints()) {
        if (breakpoint.isOfData() || breakpoint.item != noItem) file.push_back(recordOf(breakpoint));
    }
    if (file.empty()) return !fileExists(path) || std::remove(path.c_str()) == 0;
    const std::string text = file.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
    return writeWholeFile(path, {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()}) == FileResult::done;
}

}  // namespace numalink
