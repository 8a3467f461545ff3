// The actions of the monkey, made of random numbers and given to the window as the window system would.
#pragma once

#include <cstdint>
#include <string>

#include "monkey/line_partner.h"

namespace monkey {

struct Monkey {
    std::uint64_t seed = 1;
    std::uint64_t actionLimit = 0;   // 0: none
    std::uint64_t secondsLimit = 0;  // 0: none
    std::string scratch;             // with a final "/"; holds samples/ and out/
    LinePartner *partner = nullptr;
    std::uint64_t actions = 0;  // done so far
};

extern Monkey theMonkey;

void beginActing();  // once; from then on the event loop brings the actions, in dialogs too
void beginLife();    // the program has started
void endLife();
bool allDone();

}  // namespace monkey
