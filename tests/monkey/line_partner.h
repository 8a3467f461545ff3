// A calculator of either family at the program's serial port, which sends, listens, falters and is unplugged, on a
// thread of its own.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>

namespace monkey {

struct LinePartner {
    // The port is a link of that name to a pseudo terminal, which changes with every plugging in.
    LinePartner(std::string portPath, std::uint64_t seed);
    ~LinePartner();

    std::atomic<bool> algebra = false;
    std::atomic<bool> turn = false;                     // set to end what it does: it starts something else
    std::atomic<std::uint64_t> sent = 0, received = 0;  // items

private:
    void live(std::uint64_t seed);

    std::string port;
    std::atomic<bool> ending = false;
    std::thread hand;
};

}  // namespace monkey
