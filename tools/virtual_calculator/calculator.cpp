#include "virtual_calculator/calculator.h"

#include <algorithm>

namespace calculator {

namespace {

void say(Calculator &own, std::uint8_t byte) {
    if (!own.manners.silent) own.said.push_back(byte);
}

void say(Calculator &own, const Bytes &bytes) {
    for (const std::uint8_t byte : bytes) say(own, byte);
}

void giveUp(Calculator &own) {
    own.failures++;
    own.state = State::over;
    own.heard.clear();
}

bool isSameField(const Bytes &a, const Bytes &b, std::size_t at, std::size_t count) {
    return a.size() >= at + count && b.size() >= at + count &&
           std::equal(a.begin() + static_cast<std::ptrdiff_t>(at), a.begin() + static_cast<std::ptrdiff_t>(at + count),
                      b.begin() + static_cast<std::ptrdiff_t>(at));
}

// The sending side.

void sayNextHead(Calculator &own) {
    if (own.toSend.empty()) {
        say(own, closingFrame(own.algebra));
        own.closed = true;
        own.state = State::over;
        return;
    }
    own.item = own.toSend.front();
    own.toSend.pop_front();
    own.position = 0;
    say(own, own.item.head);
    own.state = State::waitHeadAnswer;
}

void sayData(Calculator &own) {
    const std::size_t frame = frameLength(own.item.head);
    const std::size_t left = own.item.data.size() - own.position;
    const std::size_t count = frame == 0 || frame > left ? left : frame;
    const auto begin = own.item.data.begin() + static_cast<std::ptrdiff_t>(own.position);
    say(own, Bytes(begin, begin + static_cast<std::ptrdiff_t>(count)));
    own.position += count;
    const bool colorScreen = startsWith(own.item.head, ":DC");
    const bool whole = own.position == own.item.data.size();
    own.state = whole && !colorScreen ? State::waitLast : State::waitDataAnswer;
}

void endItem(Calculator &own) {
    if (isLastByNature(own.item.head)) {
        own.state = State::over;
        own.closed = true;
        return;
    }
    sayNextHead(own);
}

void hearHeadAnswer(Calculator &own, std::uint8_t byte) {
    if (byte == 0x06 && own.item.data.empty()) return endItem(own);
    if (byte == 0x06) return sayData(own);
    if (byte != 0x21) return giveUp(own);
    say(own, own.manners.existsAnswer);
    if (own.manners.existsAnswer == 0x18) own.state = State::over;
    if (own.manners.existsAnswer == 0x15) own.state = State::waitLast;
}

void hearDataAnswer(Calculator &own, std::uint8_t byte) {
    if (byte != 0x06) return giveUp(own);
    if (own.position < own.item.data.size()) return sayData(own);
    own.state = State::waitLast;
}

// The receiving side.

// A request names an item by the sort and the name in its head; the item is then sent as any other.
void hearRequest(Calculator &own) {
    const auto isAsked = [&](const Item &item) {
        return isSameField(item.head, own.item.head, 5, 2) && isSameField(item.head, own.item.head, 11, 8);
    };
    const auto asked = std::find_if(own.library.begin(), own.library.end(), isAsked);
    if (!isGood(own.item.head) || asked == own.library.end()) {
        say(own, std::uint8_t{0x24});
        return giveUp(own);
    }
    say(own, std::uint8_t{0x06});
    own.toSend.push_back(*asked);
    startSending(own);
}

void hearHead(Calculator &own) {
    if (own.heard.size() < 5 || own.heard.size() < headLength(own.heard)) return;
    own.item = {own.heard, {}};
    own.heard.clear();
    own.asked = false;
    if (startsWith(own.item.head, ":END")) {
        own.closed = isGood(own.item.head);
        own.failures += own.closed ? 0 : 1;
        own.state = State::over;
        return;
    }
    if (startsWith(own.item.head, ":REQ")) return hearRequest(own);
    if (own.manners.silentAfterHead) return giveUp(own);
    const bool refused = own.manners.headAnswer == 0x24;
    if (!isGood(own.item.head) || refused) {
        say(own, refused ? std::uint8_t{0x24} : std::uint8_t{0x2B});
        return giveUp(own);
    }
    own.asked = own.manners.headAnswer == 0x21;
    say(own, own.manners.headAnswer);
    own.position = 0;
    if (own.manners.headAnswer != 0x21 && own.manners.headAnswer != 0x06) return giveUp(own);
    own.state = State::hearData;
}

void takeItem(Calculator &own) {
    own.received.push_back(own.item);
    own.state = State::hearHead;
}

// The other side answers to "item exists".
void hearOverwrite(Calculator &own, std::uint8_t byte) {
    own.asked = false;
    if (byte == 0x18) {
        own.state = State::over;
        return;
    }
    say(own, 0x06);
    if (byte == 0x15) own.state = State::hearHead;
}

void hearData(Calculator &own, std::uint8_t byte) {
    if (own.asked) return hearOverwrite(own, byte);
    own.heard.push_back(byte);
    const std::size_t whole = dataLength(own.item.head);
    const std::size_t frame = frameLength(own.item.head) == 0 ? whole : frameLength(own.item.head);
    if (own.heard.size() < frame) return;
    const bool good = isGood(own.heard);
    own.item.data.insert(own.item.data.end(), own.heard.begin(), own.heard.end());
    own.heard.clear();
    say(own, good ? own.manners.dataAnswer : std::uint8_t{0x2B});
    if (!good || own.manners.dataAnswer != 0x06) return giveUp(own);
    if (own.item.data.size() >= whole) takeItem(own);
}

// ALGEBRA: the other's model frame, then 0x06 on both sides. Whoever was called says its model frame last.
void hearModel(Calculator &own, std::uint8_t byte) {
    const bool receives = own.state == State::hearModel;
    if (own.modelHeard) {
        if (byte != 0x06) return giveUp(own);
        if (!receives) return sayNextHead(own);
        say(own, 0x06);
        own.state = State::hearHead;
        return;
    }
    own.heard.push_back(byte);
    if (own.heard.size() < 40) return;
    own.modelHeard = isGood(own.heard);
    own.heard.clear();
    if (!own.modelHeard) return giveUp(own);
    receives ? say(own, modelFrame()) : say(own, 0x06);
}

void hearAtRest(Calculator &own, std::uint8_t byte) {
    if (byte != 0x16 && (own.algebra || byte != 0x15)) return;
    say(own, 0x13);
    own.modelHeard = false;
    own.heard.clear();
    own.state = own.algebra ? State::hearModel : State::hearHead;
}

void hearReady(Calculator &own, std::uint8_t byte) {
    if (byte != 0x13) return;
    if (!own.algebra) return sayNextHead(own);
    say(own, modelFrame());
    own.modelHeard = false;
    own.heard.clear();
    own.state = State::waitModel;
}

}  // namespace

void startSending(Calculator &own) {
    say(own, own.manners.attention);
    own.state = State::waitReady;
}

void hear(Calculator &own, std::uint8_t byte) {
    switch (own.state) {
        case State::rest:
        case State::over:
            return hearAtRest(own, byte);
        case State::waitReady:
            return hearReady(own, byte);
        case State::waitHeadAnswer:
            return hearHeadAnswer(own, byte);
        case State::waitDataAnswer:
            return hearDataAnswer(own, byte);
        case State::waitLast:
            return byte == 0x06 ? endItem(own) : giveUp(own);
        case State::hearHead:
            own.heard.push_back(byte);
            return hearHead(own);
        case State::waitModel:
        case State::hearModel:
            return hearModel(own, byte);
        case State::hearData:
            return hearData(own, byte);
    }
}

void hearSilence(Calculator &own) {
    if (own.state == State::rest || own.state == State::over) return;
    giveUp(own);
}

}  // namespace calculator
