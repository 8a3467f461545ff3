// From a CFX calculator: head, perhaps a question about an existing item, data with its inner frames, and on to the
// next head until the closing frame.
#include <algorithm>
#include <cctype>

#include "calculator/charset.h"
#include "calculator/number_text.h"
#include "link/control_bytes.h"
#include "link/conversation.h"
#include "link/conversations.h"
#include "link/receive_storage.h"
#include "store/undo/undo.h"
#include "telling/texts.h"

namespace numalink {

namespace {

constexpr std::size_t dataChunk = 16;
constexpr std::uint64_t pauseBeforeLastAcknowledge = 2;

// One item under way.
struct Incoming : Received {
    std::uint64_t length = 0;       // of the data
    std::uint64_t frameLength = 0;  // of the frames inside the data; 0 when there are none
    std::size_t chunk = dataChunk;
    bool sumsAreGood = true;  // of a colour screen copy, which is stored in any case
};

bool isColorScreen(const Incoming &item) { return item.kind == kind::colorScreen; }

// The marks of a head that has no place here, as a person can read them.
std::string readableMark(ByteView head) {
    std::string mark;
    for (const std::uint8_t byte : head.first(std::min<std::size_t>(head.size(), 7)))
        if (byte > 0x20 && byte < 0x7F) mark += static_cast<char>(byte);
    return "\"" + mark + "\"";
}

bool failUnknownKind(ByteView head, int itemCount) {
    if (!conversationOver())
        tellMore(Text::kindNotTransferable, Text::headPassedOver, {readableMark(head), std::to_string(itemCount)},
                 BoxIcon::none);
    send(control::unknownType);
    dropInput();
    return false;
}

// A head that is known and whole. False ends the conversation, told where something is to be told.
bool readCfxHead(Incoming &item, int itemCount) {
    item.head.assign(shortHeadFrameSize, 0);
    const std::size_t count = readHead(item.head, Wait::lasting);
    if (count == 0 || conversationOver()) return false;
    item.kind = classifyFrame(ByteView(item.head).subspan(1));
    if (item.kind == kind::unknown) return failUnknownKind(item.head, itemCount);
    if (item.kind == kind::endOfTransmission) {
        std::uint8_t rest[headFrameSize - shortHeadFrameSize];
        readBytes(rest, Wait::brief);
        return false;
    }
    const std::size_t length = headFrameLength(item.kind);
    item.head.resize(length);
    const bool whole = count == shortHeadFrameSize &&
                       (length == shortHeadFrameSize || readBytes(std::span(item.head).subspan(shortHeadFrameSize),
                                                                  Wait::brief) == length - shortHeadFrameSize);
    return (whole && frameIsGood(item.head)) || failChecksum();
}

// What the head says of the data: length, frames, and how much is read at a time.
void measure(Incoming &item) {
    const bool isValues = isValuesKind(item.kind);
    item.length = isValues && readBig16(item.head, frameRowsOffset) == 0 ? 0 : frameDataLength(item.head);
    if (isValues) item.frameLength = valueFrameSize;
    if (item.kind == kind::picture) item.frameLength = picturePlaneLength(item.head);
    if (isColorScreen(item)) item.frameLength = item.length / 3;
    if (isColorScreen(item) || item.kind == kind::picture) item.chunk = 1;
    if (item.head.size() == shortHeadFrameSize) return;
    item.name = copyFrameName(ByteView(item.head).subspan(frameNameOffset));
    item.group = copyFrameName(ByteView(item.head).subspan(frameGroupOffset));
}

// What is on its way, in the status bar and on the bar of the progress.
void showItem(const Incoming &item) {
    progressStart(item.length);
    if (isColorScreen(item)) return linkStatus(Text::receivingColorScreen);
    if (item.kind == kind::monochromeScreen) return linkStatus(Text::receivingMonochromeScreen);
    const std::string group = item.group.empty() ? "" : utf8FromCalculator(item.group) + ".";
    linkStatus(Text::receivingItem, {}, group + utf8FromCalculator(item.name) + "...");
}

// A calculator's own names of these mean nothing to people.
bool isNamedByTime(const Incoming &item) {
    constexpr ItemKind kinds[] = {kind::backup, kind::colorScreen, kind::monochromeScreen, kind::picture,
                                  kind::graphMemory};
    return item.name.empty() || std::ranges::find(kinds, item.kind) != std::end(kinds);
}

bool failTooLarge(const Incoming &item) {
    send(control::unknownType);
    return failBox(Text::itemTooLarge, {utf8FromCalculator(item.name), std::to_string(item.length)});
}

enum class Overwrite { yes, no, stop };

// The calculator asks its user whether what it has here is to be replaced.
Overwrite askAboutExisting() {
    send(control::itemExists);
    const auto answer = readByte(Wait::lasting);
    if (conversationOver() || answer == control::cancel) return Overwrite::stop;
    return answer == control::refuse ? Overwrite::no : Overwrite::yes;
}

std::uint8_t sumOf(ByteView bytes) {
    std::uint8_t sum = 0;
    for (const std::uint8_t byte : bytes) sum = static_cast<std::uint8_t>(sum + byte);
    return sum;
}

// At the end of a frame inside the data.
bool endInnerFrame(Incoming &item, std::uint8_t &sum, bool dataFollow) {
    constexpr std::uint8_t goodSum = 0x3A;
    if (isColorScreen(item)) {
        item.sumsAreGood = item.sumsAreGood && sum == goodSum;
    } else if (!dataFollow) {
        return true;
    } else if (sum != goodSum) {
        return failChecksum();
    }
    sum = 0;
    send(control::acknowledge);
    return true;
}

// All data, each inner frame acknowledged but the last.
bool readData(Incoming &item) {
    item.data.assign(item.length, 0);
    std::uint8_t sum = 0;
    std::uint64_t count = 0;
    std::uint64_t frameEnd = item.frameLength;
    while (count < item.length) {
        const std::uint64_t limit = std::min(item.length, item.frameLength == 0 ? item.length : frameEnd);
        const std::size_t chunk = std::min<std::uint64_t>(item.chunk, limit - count);
        const auto part = std::span(item.data).subspan(count, chunk);
        if (readBytes(part, Wait::brief) < chunk) return failBox(Text::dataEndedEarly);
        sum = static_cast<std::uint8_t>(sum + sumOf(part));
        count += chunk;
        progressAt(count);
        if (item.frameLength == 0 || count < frameEnd) continue;
        frameEnd += item.frameLength;
        if (!endInnerFrame(item, sum, count < item.length)) return false;
    }
    return isColorScreen(item) || sum == 0x3A || failChecksum();
}

// The last acknowledgement says that the item is safe, so it goes out only then.
bool storeAndAcknowledge(Incoming &item) {
    if (const auto info = infoFromHeadFrame(item.head); info && isTextKind(item.kind))
        item.head = encodeProgramInfo(*info);
    HoldBoxes boxes;
    if (conversationOver()) return false;
    const bool stored = storeReceived(item);
    if (stored && item.length > 0) pauseMilliseconds(pauseBeforeLastAcknowledge);
    send(stored ? control::acknowledge : control::checksumError);
    if (stored) {
        userInterface.refreshTree();
        return true;
    }
    if (!conversationOver()) boxes.show();
    dropInput();
    return false;
}

bool endsTransmission(const Incoming &item) {
    return item.kind == kind::backup || headFrameLength(item.kind) == shortHeadFrameSize;
}

// One pass: false when the conversation has ended.
bool receiveItem(int &itemCount) {
    Incoming item;
    if (!readCfxHead(item, itemCount)) return false;
    measure(item);
    if (item.length > itemDataLimit) return failTooLarge(item);
    showItem(item);
    if (isNamedByTime(item)) item.name = nameOfNow();
    if (receivedNameTaken(item)) {
        const Overwrite answer = askAboutExisting();
        if (answer == Overwrite::stop) return false;
        if (answer == Overwrite::no) {
            send(control::acknowledge);
            return true;
        }
    }
    if (item.length > 0) {
        send(control::acknowledge);
        if (!readData(item)) return false;
    }
    if (!storeAndAcknowledge(item)) return false;
    itemCount++;
    if (!item.sumsAreGood) return failBox(Text::screenPerhapsDamaged, {});
    return !endsTransmission(item);
}

}  // namespace

void receiveFromCfx() {
    const UndoGroup group;  // what one conversation replaces is taken back together
    int itemCount = 0;
    send(control::ready);
    while (!conversationOver() && receiveItem(itemCount)) {
    }
}

}  // namespace numalink
