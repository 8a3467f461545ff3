#include "monkey/line_partner.h"

#include <filesystem>
#include <memory>

#include "support/random_items.h"
#include "virtual_calculator/calculator_mover.h"
#include "virtual_calculator/pseudo_terminal.h"

namespace monkey {

namespace {

using namespace calculator;

std::unique_ptr<numalink::PseudoTerminal> plugIn(const std::string &port) {
    auto terminal = std::make_unique<numalink::PseudoTerminal>();
    std::error_code ignored;
    std::filesystem::remove(port, ignored);
    std::filesystem::create_symlink(terminal->path, port, ignored);
    return terminal;
}

}  // namespace

LinePartner::LinePartner(std::string portPath, std::uint64_t seed) : port(std::move(portPath)) {
    hand = std::thread([this, seed] { live(seed); });
}

LinePartner::~LinePartner() {
    ending = true;
    turn = true;
    hand.join();
}

void LinePartner::live(std::uint64_t seed) {
    std::mt19937_64 chance(seed);
    std::unique_ptr<numalink::PseudoTerminal> terminal = plugIn(port);
    while (!ending) {
        if (chance() % 12 == 0) terminal = plugIn(port);
        turn = false;
        if (ending) break;
        Calculator own;
        own.algebra = algebra;
        if (chance() % 4 == 0) own.manners.dataAnswer = 0x15;
        const bool sends = chance() % 2 == 0;
        if (sends) {
            for (std::uint64_t count = 1 + chance() % 3; count > 0; count--)
                own.toSend.push_back(randomItem(chance, own.algebra, true));
            startSending(own);
        }
        const std::size_t wanted = own.toSend.size();
        Moving moving{.byteMicroseconds = chance() % 2 * 100, .patience = 300 + chance() % 1500, .stop = &turn};
        if (chance() % 4 == 0) moving.faults = {.lost = 0.002, .doubled = 0.002, .flipped = 0.002};
        moveCalculator(own, terminal->master, moving);
        sent += wanted - own.toSend.size();
        received += own.received.size();
        if (own.state != State::over || own.failures > 0) std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

}  // namespace monkey
