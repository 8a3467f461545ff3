#include "link/wire_decoder.h"

#include <algorithm>
#include <string_view>

#include "calculator/charset.h"
#include "calculator/frames.h"
#include "calculator/number_text.h"
#include "link/control_bytes.h"

namespace numalink {

namespace {

constexpr std::uint8_t frameStart = ':';
constexpr std::size_t markSize = 7;             // bytes by which a head is told
constexpr std::uint64_t longestFrame = 200000;  // bytes; more is cut, whatever a head announces

struct ControlRow {
    std::uint8_t byte;
    const char *meaning;
    bool endsItem;  // no data follow the head that was sent last
};
constexpr ControlRow controlRows[] = {
    {control::attention, "attention", true},
    {control::cfxAttention, "attention of a CFX calculator", true},
    {control::ready, "ready", true},
    {control::acknowledge, "acknowledge", false},
    {control::cancel, "cancel: don't overwrite, no more items", true},
    {control::itemExists, "such an item exists: overwrite?", false},
    {control::unknownType, "refused: of no known type, or too large", true},
    {control::headRefused, "head refused", true},
    {control::checksumError, "error: checksum wrong, or not stored", true},
};

struct KindRow {
    ItemKind kind;
    const char *words;
};
constexpr KindRow kindRows[] = {
    {kind::program, "program"},
    {kind::functionMemory, "function memory"},
    {kind::matrix, "matrix"},
    {kind::list, "list"},
    {kind::backup, "backup"},
    {kind::graphMemory, "graph memory"},
    {kind::graphFunction, "graph function"},
    {kind::picture, "picture"},
    {kind::endOfTransmission, "end of transmission"},
    {kind::colorScreen, "screen copy in colours"},
    {kind::monochromeScreen, "screen copy"},
    {kind::modelFrame, "model frame"},
    {kind::algebraBlock, "item of an ALGEBRA calculator"},
};

bool startsWith(ByteView frame, std::string_view mark) {
    return frame.size() >= mark.size() && std::equal(mark.begin(), mark.end(), frame.begin(), [](char one, auto byte) {
               return static_cast<std::uint8_t>(one) == byte;
           });
}

ItemKind kindOf(ByteView head) {
    if (startsWith(head, ":MDL1")) return kind::modelFrame;
    if (startsWith(head, ":MCS1")) return kind::algebraBlock;
    return classifyFrame(head.subspan(1));
}

std::size_t headSize(ByteView head, ItemKind itemKind) {
    const bool isShort = itemKind == kind::modelFrame || itemKind == kind::algebraBlock || startsWith(head, ":END1");
    return isShort ? shortHeadFrameSize : headFrameLength(itemKind);
}

struct Announced {
    std::uint64_t frames = 0;
    std::uint64_t frameSize = 0;
};

// The data behind a head: how many frames, of how many bytes each.
Announced announcedBy(ByteView head, ItemKind itemKind) {
    if (itemKind == kind::algebraBlock) return {1, readBig16(head, algebraLengthOffset) + 2U};
    if (itemKind == kind::modelFrame || itemKind == kind::unknown) return {};
    const std::uint64_t length = frameDataLength(head);
    std::uint64_t size = length;
    if (isValuesKind(itemKind)) size = readBig16(head, frameRowsOffset) == 0 ? 0 : valueFrameSize;
    if (itemKind == kind::picture) size = picturePlaneLength(head);
    if (itemKind == kind::colorScreen) size = length / 3;
    if (size == 0 || size > longestFrame) return {};
    return {length / size, size};
}

std::string wordsOf(ItemKind itemKind) {
    const auto *row = std::ranges::find(kindRows, itemKind, &KindRow::kind);
    return row == std::end(kindRows) ? "of an unknown type" : row->words;
}

std::string sumOf(ByteView frame) { return frameIsGood(frame) ? "checksum right" : "checksum WRONG"; }

std::string headWords(ByteView head, ItemKind itemKind, const Announced &data) {
    std::string words = "head: " + wordsOf(itemKind);
    const bool isNamed = itemKind != kind::modelFrame && itemKind != kind::endOfTransmission && !isScreenKind(itemKind);
    if (isNamed && head.size() >= frameNameOffset + frameNameSize) {
        std::string name = utf8FromCalculator(copyFrameName(head.subspan(frameNameOffset)));
        std::erase_if(name, [](char c) { return static_cast<unsigned char>(c) < ' '; });
        words += " \"" + name + "\"";
    }
    words += ", " + std::to_string(head.size()) + " bytes";
    if (data.frames == 1) words += ", announces " + std::to_string(data.frameSize) + " bytes of data";
    if (data.frames > 1)
        words +=
            ", announces " + std::to_string(data.frames) + " frames of " + std::to_string(data.frameSize) + " bytes";
    return words + ", " + sumOf(head);
}

}  // namespace

std::vector<WireEvent> WireDecoder::pass(WireWay way, std::uint64_t microseconds, ByteView bytes) {
    std::vector<WireEvent> told;
    if (bytes.empty()) return told;
    cut(way == WireWay::sent ? WireWay::received : WireWay::sent, told);
    for (const std::uint8_t byte : bytes) passByte(way, microseconds, byte, told);
    return told;
}

std::vector<WireEvent> WireDecoder::end() {
    std::vector<WireEvent> told;
    cut(WireWay::sent, told);
    cut(WireWay::received, told);
    *this = {};
    return told;
}

void WireDecoder::passByte(WireWay way, std::uint64_t microseconds, std::uint8_t byte, std::vector<WireEvent> &told) {
    Side &side = sideOf(way);
    if (side.frame.empty() && byte != frameStart) return control(way, microseconds, byte, told);
    if (side.frame.empty()) side.begun = microseconds;
    side.frame.push_back(byte);
    const std::uint64_t size = frameSize(side);
    if (size != 0 && side.frame.size() >= size) complete(way, told);
}

void WireDecoder::control(WireWay way, std::uint64_t microseconds, std::uint8_t byte, std::vector<WireEvent> &told) {
    const auto *row = std::ranges::find(controlRows, byte, &ControlRow::byte);
    const bool isRefusal = byte == control::refuse && existsAsked;
    std::string meaning = row == std::end(controlRows) ? "no control byte" : row->meaning;
    if (isRefusal) meaning = "refuse: don't overwrite, on to the next item";
    if (row != std::end(controlRows) && row->endsItem)
        for (Side &side : sides) side.dataFrames = side.dataFrame = 0;
    existsAsked = byte == control::itemExists;
    told.push_back({way, microseconds, {byte}, meaning});
}

void WireDecoder::cut(WireWay way, std::vector<WireEvent> &told) {
    Side &side = sideOf(way);
    if (side.frame.empty()) return;
    const std::uint64_t size = frameSize(side);
    std::string meaning = "CUT: " + std::to_string(side.frame.size());
    if (size != 0) meaning += " of " + std::to_string(size);
    told.push_back({way, side.begun, std::move(side.frame), meaning + " bytes of a frame"});
    side = {};
}

void WireDecoder::complete(WireWay way, std::vector<WireEvent> &told) {
    Side &side = sideOf(way);
    Bytes frame = std::move(side.frame);
    side.frame.clear();
    std::string meaning;
    if (side.dataFrame < side.dataFrames) {
        side.dataFrame++;
        meaning = "data " + std::to_string(side.dataFrame) + " of " + std::to_string(side.dataFrames) + ", " +
                  std::to_string(frame.size()) + " bytes, " + sumOf(frame);
    } else {
        const ItemKind itemKind = kindOf(frame);
        const Announced data = announcedBy(frame, itemKind);
        meaning = headWords(frame, itemKind, data);
        side.dataFrames = data.frames;
        side.dataFrameSize = data.frameSize;
        side.dataFrame = 0;
    }
    told.push_back({way, side.begun, std::move(frame), meaning});
}

std::uint64_t WireDecoder::frameSize(const Side &side) {
    if (side.dataFrame < side.dataFrames) return side.dataFrameSize;
    if (side.frame.size() < markSize) return 0;
    const ItemKind itemKind = kindOf(side.frame);
    return itemKind == kind::unknown ? shortHeadFrameSize : headSize(side.frame, itemKind);
}

}  // namespace numalink
