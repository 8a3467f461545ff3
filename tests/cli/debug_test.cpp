// Recorded sessions of numalink-cli debug, one a file of debug_sessions/:
//
//   file games.cat, |A line       as in sessions/: imported into the library
//   item games/MAIN               what is debugged
//   > {"command":"next"}          a request; its number and type are added
//   < {"event":"stopped"}         a message that comes sooner or later behind the last one, with at least these members
#include <gtest/gtest.h>

#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <istream>
#include <nlohmann/json.hpp>
#include <thread>

#include "cli/commands.h"
#include "cli/debug_adapter.h"
#include "cli/library_session.h"
#include "platform/clock.h"
#include "platform/lock.h"
#include "settings/settings_store.h"
#include "support/byte_text.h"
#include "support/json_parts.h"
#include "support/scratch_folder.h"
#include "telling/user_interface.h"

namespace numalink {
namespace {

using Json = nlohmann::json;

constexpr auto patience = std::chrono::seconds(20);

// Bytes from one thread to another; who reads waits for them.
class Pipe : public std::streambuf {
public:
    void close() {
        const HoldLock held(lock);
        isClosed = true;
        changed.notify_all();
    }
    // The next byte, or end of file when it's closed or nothing comes.
    int take() {
        HoldLock held(lock);
        const auto end = std::chrono::steady_clock::now() + patience;
        while (!isClosed && at == bytes.size() && std::chrono::steady_clock::now() < end) held.waitUntil(changed, end);
        return at < bytes.size() ? static_cast<unsigned char>(bytes[at++]) : traits_type::eof();
    }

protected:
    int_type underflow() override {
        const int byte = take();
        if (byte == traits_type::eof()) return byte;
        current = static_cast<char>(byte);
        setg(&current, &current, &current + 1);
        return byte;
    }
    std::streamsize xsputn(const char *text, std::streamsize count) override {
        const HoldLock held(lock);
        bytes.append(text, static_cast<std::size_t>(count));
        changed.notify_all();
        return count;
    }
    int_type overflow(int_type byte) override {
        const char text = static_cast<char>(byte);
        xsputn(&text, 1);
        return byte;
    }

private:
    Lock lock;
    std::condition_variable changed;
    std::string bytes GUARDED_BY(lock);
    std::size_t at GUARDED_BY(lock) = 0;
    bool isClosed GUARDED_BY(lock) = false;
    char current = 0;
};

Json readMessage(std::istream &stream) {
    std::string line;
    std::size_t length = 0;
    while (std::getline(stream, line) && line != "\r")
        if (line.starts_with("Content-Length:")) length = std::stoul(line.substr(15));
    std::string text(length, ' ');
    if (length == 0 || !stream.read(text.data(), static_cast<std::streamsize>(length))) return nullptr;
    return Json::parse(text);
}

struct Session {
    std::string item;
    std::vector<std::string> lines;  // of requests and messages
};

// Plays the editor; what is missing is told.
std::string playEditor(const Session &session, Pipe &requests, Pipe &answers) {
    std::ostream out(&requests);
    std::istream in(&answers);
    std::string seen;
    int number = 0;
    for (const std::string &line : session.lines) {
        Json message = Json::parse(line.substr(2));
        if (line[0] == '>') {
            message["seq"] = ++number;
            message["type"] = "request";
            const std::string text = message.dump();
            out << "Content-Length: " << text.size() << "\r\n\r\n" << text << std::flush;
            seen.clear();
            continue;
        }
        for (;;) {
            const Json found = readMessage(in);
            if (found.is_null()) return "missing: " + line + "\nseen:\n" + seen;
            seen += found.dump() + "\n";
            if (hasAll(message, found)) break;
        }
    }
    return {};
}

void runCommand(const std::vector<const char *> &arguments) {
    ASSERT_EQ(runCommandLine(static_cast<int>(arguments.size()), arguments.data()), 0);
}

TEST(DebugSessions, GoAsTheyTell) {
    int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator(NUMALINK_DEBUG_SESSIONS)) {
        SCOPED_TRACE(entry.path().filename());
        const ScratchFolder scratch;
        Session session;
        std::ofstream file(scratch.path + "items.cat", std::ios::binary);
        std::ifstream stream(entry.path());
        for (std::string line; std::getline(stream, line);) {
            if (line.starts_with('|'))
                for (const std::uint8_t byte : parseFileLine(line)) file.put(static_cast<char>(byte));
            if (line.starts_with("item ")) session.item = line.substr(5);
            if (line.starts_with("> ") || line.starts_with("< ")) session.lines.push_back(line);
        }
        file.close();
        const std::string library = scratch.path + "library", items = scratch.path + "items.cat";
        testing::internal::CaptureStdout();
        runCommand({"numalink-cli", "import", library.c_str(), items.c_str(), "--into", "games"});
        testing::internal::GetCapturedStdout();
        const LibrarySession open(library);
        settingsSetInt(setting::fullSpeed, 1);
        settingsSetInt(setting::fillListsMatrices, 0);
        clockPort.sleepMilliseconds = [](std::uint64_t) {};
        Pipe requests, answers;
        std::string missing;
        std::thread editor([&] {
            missing = playEditor(session, requests, answers);
            requests.close();
        });
        std::istream in(&requests);
        std::ostream out(&answers);
        EXPECT_EQ(serveDebugger(session.item, in, out), 0);
        answers.close();
        editor.join();
        EXPECT_EQ(missing, "");
        clockPort = systemClock;
        userInterface = userInterfaceSilent;
        count++;
    }
    EXPECT_GE(count, 1);
}

}  // namespace
}  // namespace numalink
