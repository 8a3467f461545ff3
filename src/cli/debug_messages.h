// Messages of the Debug Adapter Protocol: objects behind their length, as those of the Language Server Protocol are.
// Answers may be sent on any thread.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>
#include <type_traits>

namespace numalink {

using DebugJson = nlohmann::ordered_json;

void debugAnswersTo(std::ostream &stream);  // numbered from 1 on
void sendDebugEvent(const char *event, DebugJson body = DebugJson::object());

void writeMessage(std::ostream &stream, const DebugJson &message);
// The text of the next message; false at the end of the requests, or where what comes is none.
bool readDebugMessage(std::istream &requests, std::string &text);

// What an object has by that name, if it is of the sort that is asked for.
template <class Value>
Value argument(const DebugJson &object, const char *name, Value otherwise) {
    const auto found = object.is_object() ? object.find(name) : object.end();
    if (found == object.end()) return otherwise;
    if constexpr (std::is_same_v<Value, bool>) return found->is_boolean() ? found->template get<Value>() : otherwise;
    if constexpr (std::is_same_v<Value, std::string>)
        return found->is_string() ? found->template get<Value>() : otherwise;
    if constexpr (std::is_same_v<Value, DebugJson>) return found->type() == otherwise.type() ? *found : otherwise;
    if constexpr (std::is_integral_v<Value>)
        return found->is_number_integer() ? static_cast<Value>(found->template get<std::int64_t>()) : otherwise;
}

struct DebugRequest {
    DebugJson message;  // an object

    const DebugJson &arguments() const;
    std::string command() const { return argument(message, "command", std::string()); }
    void answer(DebugJson body = DebugJson::object()) const;
    void refuse(const std::string &why) const;
};

}  // namespace numalink
