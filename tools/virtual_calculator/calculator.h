// A calculator of either family as a machine of states: it hears bytes and silence, and what it says is collected.
// It knows nothing of devices or time; a program or a test moves its bytes.
#pragma once

#include <deque>
#include <string>

#include "virtual_calculator/calculator_frames.h"

namespace calculator {

// What it answers, and when it misbehaves.
struct Manners {
    std::uint8_t existsAnswer = 0x06;  // to "item exists": 0x06 overwrite, 0x15 next, 0x18 stop
    std::uint8_t headAnswer = 0x06;    // to a head: 0x06, 0x21 (once for each item) or 0x24
    std::uint8_t dataAnswer = 0x06;    // to a frame of data
    std::uint8_t attention = 0x16;     // how it begins to send: 0x16, or 0x15 in the CFX family
    bool silent = false;               // hears, and says nothing
    bool silentAfterHead = false;      // stops answering at the first head
};

enum class State {
    rest,       // may be spoken to
    waitReady,  // has called, waits for 0x13
    waitModel,  // ALGEBRA sender: has sent its model frame, waits for the other's
    waitHeadAnswer,
    waitDataAnswer,
    waitLast,  // the acknowledgement of a whole item
    hearHead,
    hearModel,  // ALGEBRA receiver
    hearData,
    over  // closed, or given up
};

struct Calculator {
    bool algebra = false;
    Manners manners;
    std::deque<Item> toSend;
    std::vector<Item> library;  // what it gives at a request
    std::vector<Item> received;

    State state = State::rest;
    Bytes said;                // what it has to say; the mover takes it away
    Bytes heard;               // of the frame under way
    Item item;                 // that is being sent or heard
    std::size_t position = 0;  // in the data of the item
    bool asked = false;        // whether it has said "item exists" for this item
    bool modelHeard = false;
    int failures = 0;     // errors that it was told or saw
    bool closed = false;  // a closing frame has gone or come
};

void startSending(Calculator &calculator);  // says its attention byte
void hear(Calculator &calculator, std::uint8_t byte);
void hearSilence(Calculator &calculator);  // gives up what it was waiting for

}  // namespace calculator
