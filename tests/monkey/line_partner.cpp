#include "monkey/line_partner.h"

#include <filesystem>
#include <memory>
#include <random>

#include "virtual_calculator/calculator_mover.h"
#include "virtual_calculator/pseudo_terminal.h"

namespace monkey {

namespace {

using namespace calculator;

Item someItem(bool algebra, std::mt19937_64 &chance) {
    const std::string names[] = {"HELLO", "GAME", "A", "LOOP", "SNAKE", "M-2"};
    const std::string texts[] = {"\"HELLO\"\r\"YOU\"", "1",
                                 "\"A\"?\x0E"
                                 "A",
                                 ""};
    const std::string &name = names[chance() % std::size(names)];
    const std::string &text = texts[chance() % std::size(texts)];
    const auto seed = static_cast<std::uint8_t>(chance());
    if (algebra)
        return chance() % 2 == 0 ? algebraProgram(name, {text.begin(), text.end()}) : algebraBlock(name, 1, 200, seed);
    switch (chance() % 6) {
        case 0:
            return valueItem("MT", "Mat A", "", 3, 4, seed);
        case 1:
            return picture(64, 128, 1, 1, seed);
        case 2:
            return screenCopy(true, 64, 128, seed);
        default:
            return program(name, {text.begin(), text.end()});
    }
}

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
        const bool sends = chance() % 3 != 0;
        if (sends) {
            for (std::uint64_t count = 1 + chance() % 3; count > 0; count--)
                own.toSend.push_back(someItem(own.algebra, chance));
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
