#include "platform/letter_case.h"

#include <algorithm>

namespace numalink {

namespace {

char foldByte(char byte) { return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte; }

}  // namespace

std::string foldCase(std::string_view text) {
    std::string folded(text);
    std::ranges::transform(folded, folded.begin(), foldByte);
    return folded;
}

bool equalWithoutCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && startsWithoutCase(a, b);
}

bool startsWithoutCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::ranges::equal(text.substr(0, prefix.size()), prefix, {}, foldByte, foldByte);
}

}  // namespace numalink
