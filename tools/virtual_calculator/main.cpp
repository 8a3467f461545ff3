// numalink-calculator: a calculator to try the link with. It opens a pseudo terminal, prints the path to give as
// serial port, and sends item files, or takes what comes into a folder, as often as it is spoken to.
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "virtual_calculator/calculator_mover.h"
#include "virtual_calculator/pseudo_terminal.h"

namespace {

using calculator::Bytes;

struct Options {
    std::string type = "cfx";
    std::vector<std::string> sent;
    std::vector<std::string> given;
    std::string folder;
    std::string linkPath;
    std::string exists = "overwrite";
    std::string answer = "take";
    int noise = 0;
    int seconds = 0;
    int pauseMilliseconds = 500;
    bool paced = false;
    bool silent = false;
    bool once = false;
    calculator::Moving moving;
    std::uint64_t seed = 1;
};

bool somebodyIsThere(int master) {
    pollfd entry{master, POLLIN, 0};
    poll(&entry, 1, 0);
    return (entry.revents & POLLHUP) == 0;
}

Bytes readFile(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string fileNameOf(const calculator::Item &item, std::size_t number) {
    std::string name;
    for (std::size_t i = 11; i < 19 && item.head[i] != 0xFF; i++)
        name += isalnum(item.head[i]) ? static_cast<char>(item.head[i]) : '_';
    return std::to_string(number) + "-" + name + ".cas";
}

// The first number from this one on under which the folder holds no such file: what came earlier stays.
std::size_t freeNumber(const std::string &folder, const calculator::Item &item, std::size_t number) {
    std::error_code ignored;
    while (!folder.empty() && std::filesystem::exists(folder + "/" + fileNameOf(item, number), ignored)) number++;
    return number;
}

// False when a file could not be written.
bool writeReceived(const std::string &folder, const calculator::Item &item, std::size_t number) {
    const std::string name = fileNameOf(item, number);
    std::printf("received %s: %zu bytes\n", name.c_str(), item.data.size());
    std::fflush(stdout);
    if (folder.empty()) return true;
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    std::ofstream file(folder + "/" + name, std::ios::binary);
    file.write(reinterpret_cast<const char *>(item.head.data()), static_cast<std::streamsize>(item.head.size()));
    file.write(reinterpret_cast<const char *>(item.data.data()), static_cast<std::streamsize>(item.data.size()));
    file.close();
    if (!file) std::fprintf(stderr, "numalink-calculator: %s/%s can't be written\n", folder.c_str(), name.c_str());
    return !file.fail();
}

calculator::Calculator calculatorOf(const Options &options) {
    calculator::Calculator own;
    own.algebra = options.type == "algebra";
    own.manners.silent = options.silent;
    own.manners.existsAnswer = options.exists == "skip" ? 0x15 : options.exists == "stop" ? 0x18 : 0x06;
    own.manners.headAnswer = options.answer == "exists" ? 0x21 : options.answer == "refuse" ? 0x24 : 0x06;
    for (const std::string &path : options.sent)
        for (const calculator::Item &item : calculator::itemsOf(readFile(path))) own.toSend.push_back(item);
    for (const std::string &path : options.given) {
        const std::vector<calculator::Item> items = calculator::itemsOf(readFile(path));
        own.library.insert(own.library.end(), items.begin(), items.end());
    }
    return own;
}

void sendNoise(int master, int count, std::uint64_t seed) {
    std::mt19937_64 chance(seed);
    for (int i = 0; i < count; i++) {
        const auto byte = static_cast<std::uint8_t>(chance());
        if (::write(master, &byte, 1) != 1) return;
    }
}

// Gives the port a lasting name in the place of an earlier run's, and of nothing else that lies there.
bool linkPort(const std::string &port, const std::string &link) {
    std::error_code failure;
    const auto target = std::filesystem::status(link, failure).type();
    const bool isPort =
        std::filesystem::is_symlink(link, failure) &&
        (target == std::filesystem::file_type::character || target == std::filesystem::file_type::not_found);
    if (isPort) unlink(link.c_str());
    return symlink(port.c_str(), link.c_str()) == 0;
}

int run(Options options) {
    const numalink::PseudoTerminal terminal;
    const int master = terminal.master;
    std::string path = terminal.path;
    if (path.empty()) return 2;
    // Only after one end has been opened and closed does the other tell whether somebody is there.
    ::close(::open(path.c_str(), O_RDWR | O_NOCTTY));
    if (!options.linkPath.empty()) {
        if (!linkPort(path, options.linkPath)) {
            std::fprintf(stderr, "numalink-calculator: %s is taken, or can't be made\n", options.linkPath.c_str());
            return 2;
        }
        path = options.linkPath;
    }
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    if (options.paced)
        options.moving.byteMicroseconds = calculator::lineByteMicroseconds(options.type == "algebra" ? 38400 : 9600);
    options.moving.faults.chance.seed(options.seed);
    std::atomic<bool> stop = false;
    options.moving.stop = &stop;
    std::thread timer([&] {
        for (int i = 0; !stop && (options.seconds == 0 || i < options.seconds * 10); i++)
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        stop = true;
    });
    calculator::Calculator own = calculatorOf(options);
    const bool sends = !own.toSend.empty();
    std::size_t taken = 0;
    bool allWritten = true;
    options.moving.taken = [&](const calculator::Item &item) {
        taken = freeNumber(options.folder, item, taken + 1);
        if (!writeReceived(options.folder, item, taken)) allWritten = false;
    };
    bool begun = false;
    while (!stop) {
        if (!somebodyIsThere(master)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            continue;
        }
        if (sends && !begun) {
            std::this_thread::sleep_for(std::chrono::milliseconds(options.pauseMilliseconds));
            sendNoise(master, options.noise, options.seed);
            startSending(own);
            begun = true;
        }
        const bool ended = moveCalculator(own, master, options.moving);
        if (ended) {
            std::printf("%s, failures: %d\n", own.closed ? "closed" : "ended", own.failures);
            std::fflush(stdout);
            if (options.once) break;
        }
        own.state = calculator::State::rest;
        own.said.clear();
    }
    stop = true;
    timer.join();
    return own.failures == 0 && allWritten ? 0 : 1;
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): it ends the program with its wording
int main(int argc, char **argv) {
    Options options;
    CLI::App app("Plays a calculator on a pseudo terminal, whose path it prints first.", "numalink-calculator");
    app.set_version_flag("--version", "numalink-calculator " NUMALINK_VERSION);
    app.add_option("--type", options.type, "cfx or algebra")->check(CLI::IsMember({"cfx", "algebra"}));
    app.add_option("--send", options.sent, "Item files (cas) to send, once, when the program has opened the port");
    app.add_option("--give", options.given, "Item files (cas) whose items are given to programs that ask by Receive(");
    app.add_option("--receive", options.folder, "Folder for what comes");
    app.add_option("--link", options.linkPath, "A lasting name for the port");
    app.add_option("--exists", options.exists, "Answer to an existing item when sending: overwrite, skip or stop");
    app.add_option("--answer", options.answer, "Answer to a head when receiving: take, exists or refuse");
    app.add_option("--noise", options.noise, "Random bytes ahead of sending");
    app.add_option("--drop", options.moving.faults.lost, "Share of lost bytes, 0 to 1");
    app.add_option("--double", options.moving.faults.doubled, "Share of doubled bytes");
    app.add_option("--flip", options.moving.faults.flipped, "Share of bytes with a wrong bit");
    app.add_option("--delay", options.moving.answerMilliseconds, "Milliseconds ahead of each answer");
    app.add_option("--patience", options.moving.patience, "Milliseconds of silence until it gives up");
    app.add_option("--pause", options.pauseMilliseconds, "Milliseconds between the port's opening and sending");
    app.add_option("--seed", options.seed, "Of the faults");
    app.add_option("--seconds", options.seconds, "Ends after so many; 0: never");
    app.add_flag("--paced", options.paced, "At the speed of a real line");
    app.add_flag("--silent", options.silent, "Hears, and never answers");
    app.add_flag("--once", options.once, "Ends after one conversation");
    CLI11_PARSE(app, argc, argv);
    return run(options);
}
