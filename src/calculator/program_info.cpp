// ProgramInfo as it lies in the library, little-endian, and the walk over an image's tokens.
#include "calculator/program_info.h"

#include <algorithm>

namespace numalink {

namespace {

constexpr std::size_t imageLengthOffset = 4;
constexpr std::size_t passwordOffset = 20;
constexpr std::uint8_t endMark = 0xFF;

void putText(Bytes &head, std::size_t offset, std::string_view text) {
    text = text.substr(0, std::min(text.find('\0'), programNameLimit));
    std::ranges::copy(text, head.begin() + static_cast<std::ptrdiff_t>(offset));
}

std::string takeText(ByteView head, std::size_t offset) {
    const ByteView field = head.subspan(offset, programNameLimit);
    return {field.begin(), std::ranges::find(field, 0)};
}

constexpr std::uint8_t hyphen = 0x2D, shownHyphen = 0x8E;  // the second is how the first is shown as text
constexpr std::uint8_t minusByte = 0x99;

std::uint8_t upperCase(char c) { return static_cast<std::uint8_t>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c); }
bool isHyphen(std::uint8_t c) { return c == hyphen || c == shownHyphen || c == minusByte; }

}  // namespace

Bytes encodeProgramInfo(const ProgramInfo &info) {
    Bytes head(programInfoSize);
    writeLittle32(head, 0, programInfoSize);
    writeLittle32(head, imageLengthOffset, info.imageLength);
    putText(head, programNameOffset, info.name);
    putText(head, passwordOffset, info.password);
    head[optionOffset] = info.option[0];
    head[optionOffset + 1] = info.option[1];
    return head;
}

std::optional<ProgramInfo> decodeProgramInfo(ByteView head) {
    if (head.size() < programInfoSize) return std::nullopt;
    return ProgramInfo{.imageLength = readLittle32(head, imageLengthOffset),
                       .name = takeText(head, programNameOffset),
                       .password = takeText(head, passwordOffset),
                       .option = {head[optionOffset], head[optionOffset + 1]}};
}

ByteView programTokens(ByteView image) {
    if (image.empty()) return {};
    const ByteView tokens = image.subspan(1);
    std::size_t end = 0;
    while (end < tokens.size() && tokens[end] != 0 && tokens[end] != endMark) end += isTokenPrefix(tokens[end]) ? 2 : 1;
    if (end < tokens.size()) return tokens.first(end);
    for (const std::size_t behind : {2u, 1u}) {
        if (tokens.size() >= behind && tokens[tokens.size() - behind] == endMark)
            return tokens.first(tokens.size() - behind);
    }
    return tokens;
}

Bytes imageWithChecksumPlace(ByteView image) {
    Bytes whole(image.begin(), image.end());
    const std::size_t end = 1 + programTokens(image).size();
    if (end + 1 == whole.size() && whole[end] == endMark) whole.push_back(0);
    if (whole.size() == 1) whole.insert(whole.end(), {endMark, 0});
    return whole;
}

Bytes headWithoutName(ItemKind itemKind, ByteView head) {
    Bytes rest(head.begin(), head.end());
    if (isTextKind(itemKind) && head.size() == programInfoSize)
        std::fill_n(rest.begin() + programNameOffset, programNameLimit + 1, std::uint8_t{0});
    return rest;
}

bool sameProgramName(std::string_view left, std::string_view right) {
    if (left.size() != right.size()) return false;
    for (std::size_t i = 0; i < left.size(); i++) {
        const std::uint8_t a = upperCase(left[i]);
        const std::uint8_t b = upperCase(right[i]);
        if (a != b && !(isHyphen(a) && isHyphen(b))) return false;
    }
    return true;
}

}  // namespace numalink
