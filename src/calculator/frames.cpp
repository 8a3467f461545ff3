// The frames as tables of marks and fields, and the sums over them.
#include "calculator/frames.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string_view>

#include "calculator/number_text.h"

namespace numalink {

namespace {

constexpr std::uint8_t goodSum = 0x3A;
struct MarkRow {
    std::string_view mark;  // from offset 1
    ItemKind itemKind;
};

using namespace std::string_view_literals;
// In testing order.
constexpr MarkRow markRows[] = {
    {"TXT\0PG"sv, kind::program},       {"TXT\0FM"sv, kind::functionMemory}, {"VAL\0MT"sv, kind::matrix},
    {"VAL\0LT"sv, kind::list},          {"MEM\0BU"sv, kind::backup},         {"MEM\0GM"sv, kind::graphMemory},
    {"FNC\0GF"sv, kind::graphFunction}, {"IMG\0PC"sv, kind::picture},        {"END"sv, kind::endOfTransmission},
    {"DC"sv, kind::colorScreen},        {"DD"sv, kind::monochromeScreen},
};

std::string_view asText(ByteView bytes) { return {reinterpret_cast<const char *>(bytes.data()), bytes.size()}; }

std::uint8_t sumOf(ByteView bytes) {
    return static_cast<std::uint8_t>(std::accumulate(bytes.begin(), bytes.end(), 0u));
}

void putText(Bytes &frame, std::size_t offset, std::string_view text) {
    std::ranges::copy(text, frame.begin() + static_cast<std::ptrdiff_t>(offset));
}

// A frame of this size that starts with text and is 0xFF up to its checksum.
Bytes startFrame(std::size_t size, std::string_view text) {
    Bytes frame(size, 0xFF);
    putText(frame, 0, text);
    return frame;
}

void putField(Bytes &frame, std::size_t offset, std::string_view text) {
    putText(frame, offset, text.substr(0, frameNameSize));
}

struct OptionBytes {
    std::uint8_t bytes[2];
};

constexpr OptionBytes usualOption(ItemKind itemKind) {
    return itemKind == kind::program ? OptionBytes{{'N', 'L'}} : OptionBytes{{0xFF, 0xFF}};
}

Bytes textHead(ItemKind itemKind, const ProgramInfo &info) {
    const bool isProgram = itemKind == kind::program;
    Bytes frame = startFrame(headFrameSize, isProgram ? ":TXT\0PG\0\0"sv : ":TXT\0FM\0\0"sv);
    writeBig16(frame, frameColumnsOffset, info.imageLength);
    putField(frame, frameNameOffset, info.name);
    if (!isProgram) putText(frame, frameGroupOffset, "F\x99Mem"sv);
    putField(frame, framePasswordOffset, info.password);
    const bool usual = info.option[0] == 0 && info.option[1] == 0;
    const OptionBytes option = usual ? usualOption(itemKind) : OptionBytes{{info.option[0], info.option[1]}};
    std::ranges::copy(option.bytes, frame.begin() + frameOptionOffset);
    return frame;
}

Bytes algebraHead(const ProgramInfo &info) {
    constexpr std::uint32_t lengthExtra = 9;
    Bytes frame = startFrame(shortHeadFrameSize, ":MCS1\0\0\0"sv);
    writeBig16(frame, 8, info.imageLength + lengthExtra);
    frame[10] = 1;
    putField(frame, frameNameOffset, info.name);
    return frame;
}

Bytes frameOf(ItemKind itemKind, Family family, const ProgramInfo &info) {
    const bool cfx = family == Family::cfx;
    if (cfx && isTextKind(itemKind)) return textHead(itemKind, info);
    if (!cfx && itemKind == kind::program) return algebraHead(info);
    if (itemKind == kind::endOfTransmission)
        return cfx ? startFrame(headFrameSize, ":END") : startFrame(shortHeadFrameSize, ":END1");
    if (!cfx && itemKind == kind::modelFrame) {
        return startFrame(shortHeadFrameSize,
                          ":MDL1ZX945\xFF"
                          "038400N1.10"
                          "\0\0\x10\0\0\0\4\0\0\0\1\0\7"sv);
    }
    return {};
}

std::uint64_t screenLength(ByteView frame, ItemKind itemKind) {
    if (frame.size() < 5) return 0;
    const std::uint64_t product = std::uint64_t{frame[3]} * frame[4];
    return itemKind == kind::monochromeScreen ? product / 8 + 2 : product * 3 / 8 + 9;
}

}  // namespace

std::uint8_t frameChecksumOf(ByteView frame) {
    return static_cast<std::uint8_t>(goodSum - sumOf(frame.first(frame.size() - (frame.empty() ? 0 : 1))));
}

void frameChecksum(std::span<std::uint8_t> frame) {
    if (!frame.empty()) frame.back() = frameChecksumOf(frame);
}

bool frameIsGood(ByteView frame) { return sumOf(frame) == goodSum; }

std::optional<Bytes> buildHeadFrame(ItemKind itemKind, Family family, const ProgramInfo &info) {
    Bytes frame = frameOf(itemKind, family, info);
    if (frame.empty()) return std::nullopt;
    frameChecksum(frame);
    return frame;
}

ItemKind classifyFrame(ByteView bytes) {
    const std::string_view text = asText(bytes);
    for (const MarkRow &row : markRows) {
        if (text.starts_with(row.mark)) return row.itemKind;
    }
    return kind::unknown;
}

std::size_t headFrameLength(ItemKind itemKind) { return isScreenKind(itemKind) ? shortHeadFrameSize : headFrameSize; }

std::uint64_t frameDataLength(ByteView frame) {
    const ItemKind itemKind = frame.empty() ? kind::unknown : classifyFrame(frame.subspan(1));
    if (headFrameLength(itemKind) == shortHeadFrameSize) return screenLength(frame, itemKind);
    if (itemKind == kind::endOfTransmission) return 0;
    if (itemKind == kind::picture) return picturePlaneCount(frame) * picturePlaneLength(frame);
    if (frame.size() < frameDimensionsEnd) return 0;
    const std::uint64_t rows = readBig16(frame, frameRowsOffset);
    const std::uint64_t columns = readBig16(frame, frameColumnsOffset);
    return rows == 0 ? columns : rows * columns * valueFrameSize;
}

std::string copyFrameName(ByteView source) {
    const ByteView field = source.first(std::min(source.size(), frameNameSize));
    return {field.begin(), std::ranges::find_if(field, [](std::uint8_t byte) { return byte == 0 || byte == 0xFF; })};
}

std::optional<ProgramInfo> infoFromHeadFrame(ByteView frame) {
    if (frame.size() < frameOptionOffset + 2) return std::nullopt;
    const ItemKind itemKind = classifyFrame(frame.subspan(1));
    if (!isTextKind(itemKind)) return std::nullopt;
    ProgramInfo info{.imageLength = readBig16(frame, frameColumnsOffset),
                     .name = copyFrameName(frame.subspan(frameNameOffset)),
                     .password = copyFrameName(frame.subspan(framePasswordOffset))};
    const ByteView option = frame.subspan(frameOptionOffset, 2);
    if (!std::ranges::equal(option, usualOption(itemKind).bytes)) std::ranges::copy(option, info.option);
    return info;
}

std::uint64_t picturePlaneLength(ByteView head) {
    if (head.size() < frameDimensionsEnd) return 0;
    return std::uint64_t{readBig16(head, frameRowsOffset)} * readBig16(head, frameColumnsOffset) / 8 + planeExtra;
}

std::uint64_t picturePlaneCount(ByteView head) {
    if (head.size() < pictureHeadSize) return 0;
    return std::uint64_t{readBig16(head, frameColorsOffset)} * readBig16(head, frameSheetsOffset);
}

}  // namespace numalink
