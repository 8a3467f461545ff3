// Recorded sessions of numalink-cli language-server, one a file of language_sessions/:
//
//   > {"method":"shutdown","id":1}   a message to the server
//   < {"id":1,"result":null}         the next one from it, with at least these members
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/commands.h"
#include "cli/language_server.h"
#include "support/json_parts.h"
#include "telling/language_table.h"
#include "text/token_table.h"

namespace numalink {
namespace {

using Json = nlohmann::json;

std::vector<Json> messagesOf(const std::string &stream) {
    std::vector<Json> messages;
    for (std::size_t at = 0; at < stream.size();) {
        const std::size_t body = stream.find("\r\n\r\n", at) + 4;
        const std::size_t length = std::stoul(stream.substr(at + 15));
        messages.push_back(Json::parse(stream.substr(body, length)));
        at = body + length;
    }
    return messages;
}

TEST(LanguageSessions, GoAsTheyTell) {
    ASSERT_TRUE(tokenTableLoad());
    languageLoad("English", "English");
    int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator(NUMALINK_LANGUAGE_SESSIONS)) {
        SCOPED_TRACE(entry.path().filename());
        std::ifstream session(entry.path());
        std::stringstream requests, answers;
        std::vector<std::string> expected;
        for (std::string line; std::getline(session, line);) {
            if (line.starts_with("> "))
                requests << "Content-Length: " << line.size() - 2 << "\r\n\r\n" << line.substr(2);
            if (line.starts_with("< ")) expected.push_back(line.substr(2));
        }
        EXPECT_EQ(serveLanguage(requests, answers), exitDone);
        const std::vector<Json> messages = messagesOf(answers.str());
        EXPECT_EQ(messages.size(), expected.size());
        for (std::size_t i = 0; i < std::min(messages.size(), expected.size()); i++)
            EXPECT_TRUE(hasAll(Json::parse(expected[i]), messages[i])) << expected[i] << "\n" << messages[i].dump();
        count++;
    }
    EXPECT_GE(count, 2);
}

}  // namespace
}  // namespace numalink
