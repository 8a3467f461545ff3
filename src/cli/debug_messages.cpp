#include "cli/debug_messages.h"

#include <cstdlib>
#include <istream>
#include <ostream>
#include <string_view>

#include "platform/lock.h"

namespace numalink {

namespace {

using Json = DebugJson;

constexpr std::size_t messageLimit = 16u << 20;  // bytes

Lock answerLock;
std::ostream *answerStream GUARDED_BY(answerLock) = nullptr;
int answersSent GUARDED_BY(answerLock) = 0;

void send(Json message) {
    const HoldLock held(answerLock);
    message["seq"] = ++answersSent;
    writeMessage(*answerStream, message);
}

void respond(const DebugRequest &request, bool success, Json body, const std::string &why) {
    Json response = {{"type", "response"},
                     {"request_seq", argument(request.message, "seq", 0)},
                     {"command", request.command()},
                     {"success", success},
                     {"body", std::move(body)}};
    if (!success) response["message"] = why;
    send(std::move(response));
}

}  // namespace

void debugAnswersTo(std::ostream &stream) {
    const HoldLock held(answerLock);
    answerStream = &stream;
    answersSent = 0;
}

void sendDebugEvent(const char *event, Json body) {
    send({{"type", "event"}, {"event", event}, {"body", std::move(body)}});
}

void writeMessage(std::ostream &stream, const Json &message) {
    const std::string text = message.dump(-1, ' ', false, Json::error_handler_t::replace);
    stream << "Content-Length: " << text.size() << "\r\n\r\n" << text << std::flush;
}

bool readDebugMessage(std::istream &requests, std::string &text) {
    std::size_t length = 0;
    for (std::string line; std::getline(requests, line);) {
        if (line.ends_with('\r')) line.pop_back();
        if (line.empty() && length > 0) break;
        constexpr std::string_view field = "Content-Length:";
        if (line.starts_with(field)) length = std::strtoull(line.c_str() + field.size(), nullptr, 10);
    }
    if (length == 0 || length > messageLimit) return false;
    text.resize(length);
    return static_cast<bool>(requests.read(text.data(), static_cast<std::streamsize>(length)));
}

const Json &DebugRequest::arguments() const {
    static const Json none = Json::object();
    const auto found = message.find("arguments");
    return found != message.end() && found->is_object() ? *found : none;
}

void DebugRequest::answer(Json body) const { respond(*this, true, std::move(body), {}); }
void DebugRequest::refuse(const std::string &why) const { respond(*this, false, Json::object(), why); }

}  // namespace numalink
