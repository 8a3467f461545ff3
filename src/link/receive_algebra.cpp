// From an ALGEBRA calculator: model frames are exchanged, then head and data alternate until the closing frame.
// Nothing is asked about existing items.
#include <algorithm>

#include "calculator/charset.h"
#include "link/control_bytes.h"
#include "link/conversation.h"
#include "link/conversations.h"
#include "link/notices.h"
#include "link/receive_storage.h"
#include "store/undo/undo.h"
#include "telling/texts.h"

namespace numalink {

namespace {

constexpr std::uint8_t programType = 1;
constexpr std::size_t tokensOffset = 11;     // in the data of a program; ten zero bytes lie ahead
constexpr std::size_t shortestProgram = 13;  // with a ':', the ten, a zero at the end and the checksum
constexpr std::size_t dataBeyondImage = 11;  // how much longer the data is than the image made of it

struct Tally {
    int stored = 0;
    bool treeIsFresh = false;
    std::string passedOver;  // marks of the first heads that are no items, with commas
};

bool startsWith(ByteView head, std::string_view mark) {
    return std::equal(mark.begin(), mark.end(), head.begin(),
                      [](char code, std::uint8_t byte) { return static_cast<std::uint8_t>(code) == byte; });
}

// The calculator sends its model frame first; ours is the answer, which it confirms.
bool exchangeModels() {
    Bytes model(shortHeadFrameSize);
    if (!readGoodHead(model)) return failChecksum();
    sendSlowly(*buildHeadFrame(kind::modelFrame, Family::algebra, {}));
    const auto answer = readByte(Wait::lasting);
    return answer == control::acknowledge || failUnconfirmed(answer);
}

ByteView tokensOf(ByteView data) { return data.subspan(tokensOffset, data.size() - shortestProgram); }

Received asProgram(std::string name, ByteView data) {
    Received received{.kind = kind::program, .name = std::move(name), .group = {}, .head = {}, .data = {':'}};
    std::ranges::copy(tokensOf(data), std::back_inserter(received.data));
    received.data.push_back(0xFF);
    ProgramInfo info{.imageLength = static_cast<std::uint32_t>(data.size() - dataBeyondImage),
                     .name = received.name,
                     .password = {}};
    received.head = encodeProgramInfo(info);
    return received;
}

Received asBlock(std::string name, ByteView head, ByteView data) {
    return {.kind = kind::algebraBlock,
            .name = std::move(name),
            .group = {},
            .head = {head.begin(), head.end()},
            .data = {data.begin(), data.end()}};
}

bool storeOrRefuse(Received received, Tally &tally) {
    HoldBoxes boxes;
    if (conversationOver()) return false;
    if (received.name.empty()) received.name = nameOfNow();
    if (storeReceived(received)) {
        tally.stored++;
        return true;
    }
    send(control::checksumError);
    if (!conversationOver()) boxes.show();
    dropInput();
    return false;
}

// The data of a head that announced a program or a block.
bool receiveBlock(ByteView head, Tally &tally) {
    const std::string name = copyFrameName(head.subspan(frameNameOffset));
    const bool isProgram = head[algebraTypeOffset] == programType;
    Bytes data(std::size_t{readBig16(head, algebraLengthOffset)} + 2);
    linkStatus(Text::receivingItem, {}, utf8FromCalculator(name) + "...");
    send(control::acknowledge);
    if (!readGoodData(data) || (isProgram && data.size() < shortestProgram)) return failChecksum();
    return storeOrRefuse(isProgram ? asProgram(name, data) : asBlock(name, head, data), tally);
}

void passOver(ByteView head, Tally &tally) {
    constexpr std::size_t longestList = 80;  // characters in a box
    if (tally.passedOver.size() > longestList) return;
    if (!tally.passedOver.empty()) tally.passedOver += ", ";
    tally.passedOver += "\"";
    for (const std::uint8_t byte : head.first(5))
        if (byte > 0x20 && byte < 0x7F) tally.passedOver += static_cast<char>(byte);
    tally.passedOver += "\"";
}

// One head and its data: false at the closing frame and after a failure.
bool receiveNext(Tally &tally) {
    send(control::acknowledge);
    Bytes head(shortHeadFrameSize);
    if (!readGoodHead(head)) return failChecksum();
    using namespace std::string_view_literals;
    if (startsWith(head, ":MCS1\0"sv)) return receiveBlock(head, tally);
    if (!startsWith(head, ":END")) {
        passOver(head, tally);
        return true;
    }
    userInterface.refreshTree();
    tally.treeIsFresh = true;
    linkResult(Text::algebraReceived);
    return false;
}

}  // namespace

void receiveFromAlgebra() {
    const UndoGroup group;  // what one conversation replaces is taken back together
    Tally tally;
    linkStatus(Text::receivingItem);
    send(control::ready);
    if (!exchangeModels()) return;
    while (!conversationOver() && receiveNext(tally)) {
    }
    if (tally.stored > 0 && !tally.treeIsFresh) userInterface.refreshTree();
    if (!tally.passedOver.empty()) failBox(Text::headsPassedOver, {tally.passedOver, std::to_string(tally.stored)});
}

}  // namespace numalink
