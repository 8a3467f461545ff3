#include "text/text_faults.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

#include "calculator/charset.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr std::size_t linesTold = 12;

std::string codeText(char32_t character) {
    std::array<char, 8> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), std::uint32_t{character}, 16).ptr;
    std::string code(digits.data(), end);
    for (char &digit : code) digit = static_cast<char>(std::toupper(digit));
    return "U+" + std::string(code.size() < 4 ? 4 - code.size() : 0, '0') + code;
}

std::string shown(char32_t character) {
    std::string text;
    const bool isControl = character < ' ' || (character >= 0x7F && character < 0xA0);
    if (!isControl) appendUtf8(text, character);
    return text;
}

}  // namespace

std::string textOfFaults(const std::vector<TextFault> &faults) {
    std::string text = wording(Text::lineNotStorable, {std::to_string(faults.front().line)});
    for (std::size_t i = 0; i < std::min(faults.size(), linesTold); i++)
        text += "\n" + wording(Text::faultyLine, {std::to_string(faults[i].line), shown(faults[i].character),
                                                  codeText(faults[i].character)});
    if (faults.size() > linesTold)
        text += "\n" + wording(Text::faultyLinesMore, {std::to_string(faults.size() - linesTold)});
    return text;
}

void tellFaults(const std::vector<TextFault> &faults) {
    tellComposed(Text::lineNotStorable, textOfFaults(faults), {std::to_string(faults.front().line)}, BoxIcon::error);
}

}  // namespace numalink
