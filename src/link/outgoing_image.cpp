#include "link/outgoing_image.h"

#include <algorithm>

#include "calculator/charset.h"
#include "calculator/number_text.h"
#include "platform/letter_case.h"

namespace numalink {

namespace {

constexpr std::uint64_t longestCfxImage = 65535;
constexpr std::uint64_t longestAlgebraImage = 65535 - 9;  // its head counts 9 more
constexpr std::size_t algebraFill = 10;                   // zero bytes between the ':' and the tokens

// For ALGEBRA a program goes as it is stored, since one that came from there never had a place for a checksum; unless
// its head counts one.
Bytes sentImage(const StoredItem &item, const ProgramInfo &info, Family family) {
    const std::size_t stored = item.data.size();
    return family == Family::algebra && stored >= 2 && stored >= info.imageLength ? item.data
                                                                                  : imageWithChecksumPlace(item.data);
}

Refusal textRefusal(const StoredItem &item, Family family) {
    const auto info = decodeProgramInfo(item.head);
    if (!info || item.data.empty()) return Refusal::shorterThanHead;
    const std::size_t length = sentImage(item, *info, family).size();
    if (info->imageLength > length) return Refusal::shorterThanHead;
    return length > (family == Family::cfx ? longestCfxImage : longestAlgebraImage) ? Refusal::tooLong : Refusal::none;
}

Refusal blockRefusal(const StoredItem &item) {
    if (item.head.size() != shortHeadFrameSize) return Refusal::shorterThanHead;
    return item.data.size() < std::size_t{readBig16(item.head, algebraLengthOffset)} + 2 ? Refusal::shorterThanHead
                                                                                         : Refusal::none;
}

// Writes the checksum of each whole frame of this length.
void sumFrames(std::span<std::uint8_t> data, std::size_t length) {
    for (std::size_t at = 0; at + length <= data.size(); at += length) frameChecksum(data.subspan(at, length));
}

ProgramInfo infoOf(const StoredItem &item) { return decodeProgramInfo(item.head).value_or(ProgramInfo{}); }

}  // namespace

Refusal outgoingRefusal(const StoredItem &item, Family family) {
    const bool isScreen = isScreenKind(item.kind);
    const bool forAlgebra = item.kind == kind::program || item.kind == kind::algebraBlock;
    if (isFolderKind(item.kind) || isScreen || (family == Family::algebra && !forAlgebra)) return Refusal::kind;
    if (isTextKind(item.kind)) return textRefusal(item, family);
    if (item.kind == kind::algebraBlock) return blockRefusal(item);
    if (item.head.size() != headFrameSize) return Refusal::shorterThanHead;
    return item.data.size() < frameDataLength(item.head) ? Refusal::shorterThanHead : Refusal::none;
}

Bytes imageWithoutColor(ByteView image) {
    Bytes kept;
    kept.reserve(image.size());
    for (const std::uint8_t byte : image) {
        if (byte >= 0x34 && byte <= 0x36 && !kept.empty() && kept.back() == 0x7F) {
            kept.pop_back();
        } else {
            kept.push_back(byte);
        }
    }
    return kept;
}

std::optional<int> slotOfPictureName(std::string_view name) {
    for (const std::string_view prefix : {"picture", "picture "}) {
        if (name.size() != prefix.size() + 1 || !startsWithoutCase(name, prefix)) continue;
        if (name.back() >= '1' && name.back() <= '6') return name.back() - '0';
    }
    return std::nullopt;
}

int slotOfPictureHead(ByteView head) {
    if (head.size() <= frameDigitOffset) return 1;
    const std::uint8_t digit = head[frameDigitOffset];
    return digit >= '1' && digit <= '6' ? digit - '0' : 1;
}

Outgoing outgoingToCfx(const StoredItem &item, bool removeColor, int slot) {
    Outgoing outgoing{.head = item.head, .data = item.data};
    if (isTextKind(item.kind)) {
        ProgramInfo info = infoOf(item);
        outgoing.data = sentImage(item, info, Family::cfx);
        if (removeColor) outgoing.data = imageWithoutColor(outgoing.data);
        info.imageLength = static_cast<std::uint32_t>(outgoing.data.size());
        outgoing.head = *buildHeadFrame(item.kind, Family::cfx, info);
    }
    if (item.kind == kind::picture) {
        outgoing.head[frameDigitOffset] = static_cast<std::uint8_t>('0' + slot);
        outgoing.frameLength = picturePlaneLength(outgoing.head);
        outgoing.chunk = 1;
    }
    if (isValuesKind(item.kind)) outgoing.frameLength = valueFrameSize;
    frameChecksum(outgoing.head);
    if (outgoing.frameLength == 0) {
        frameChecksum(outgoing.data);
    } else {
        sumFrames(outgoing.data, outgoing.frameLength);
    }
    return outgoing;
}

Outgoing outgoingToAlgebra(const StoredItem &item) {
    if (item.kind == kind::algebraBlock) return {.head = item.head, .data = item.data};
    ProgramInfo info = infoOf(item);
    Bytes data = sentImage(item, info, Family::algebra);
    info.imageLength = static_cast<std::uint32_t>(data.size());
    Outgoing outgoing{.head = *buildHeadFrame(kind::program, Family::algebra, info), .data = {}};
    data.back() = 0;
    data.insert(data.begin() + 1, algebraFill, 0);
    data.push_back(0);
    frameChecksum(data);
    outgoing.data = std::move(data);
    return outgoing;
}

}  // namespace numalink
