#include "telling/language_file.h"

#include <algorithm>

#include "platform/letter_case.h"
#include "telling/texts.h"

namespace numalink {

namespace {

constexpr std::size_t recordTextLimit = 99;  // bytes
constexpr std::string_view unknownRecordText = "<unknown>";
constexpr std::string_view infoSection = "[Language Info]";
constexpr std::string_view textSection = "[Translation]";

// What the program gives for a number, one letter an argument. Numbers that aren't here have none.
struct TextArguments {
    Text text;
    std::string_view letters;
};
constexpr TextArguments textArguments[] = {
    {Text::lineNotStorable, "d"}, {Text::sizeWithPassword, "ds"},   {Text::size, "d"},
    {Text::sendingItem, "s"},     {Text::itemExists, "s"},          {Text::haltedAtLine, "sd"},
    {Text::codeNotExported, "d"}, {Text::algebraNotConfirmed, "d"},
};

// Takes the next line off the text, with neither form of its end.
std::string_view takeLine(std::string_view &text) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string_view withoutQuotes(std::string_view text) {
    const bool quoted = text.size() >= 2 && text.front() == text.back() && (text[0] == '"' || text[0] == '\'');
    return quoted ? text.substr(1, text.size() - 2) : text;
}

// Cut to the limit, at the start of a character.
std::string bounded(std::string_view text) {
    if (text.size() <= recordTextLimit) return std::string(text);
    std::size_t end = recordTextLimit;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) end--;
    return std::string(text.substr(0, end));
}

// The first value of key in the section, as the platform's profile files have it: section and key without case,
// blanks and one pair of quotes around the value gone.
std::string profileValue(std::string_view text, std::string_view key) {
    bool inSection = false;
    while (!text.empty()) {
        const std::string_view line = trimmed(takeLine(text));
        if (line.starts_with('[')) {
            if (inSection) break;
            inSection = equalWithoutCase(line, infoSection);
            continue;
        }
        const std::size_t equals = line.find('=');
        if (!inSection || equals == std::string_view::npos) continue;
        if (equalWithoutCase(trimmed(line.substr(0, equals)), key))
            return bounded(withoutQuotes(trimmed(line.substr(equals + 1))));
    }
    return std::string(unknownRecordText);
}

std::string lettersOf(std::string_view text) {
    std::string letters;
    for (std::size_t i = 0; i + 1 < text.size(); i++) {
        if (text[i] != '%') continue;
        const char which = text[++i];
        if (which == 'd' || which == 's') letters += which;
    }
    return letters;
}

bool argumentsFit(int number, std::string_view text) {
    const auto *const row = std::ranges::find_if(
        textArguments, [number](const TextArguments &each) { return textNumber(each.text) == number; });
    return row == std::end(textArguments) || lettersOf(text) == row->letters;
}

// The number at the start of the line, or -1 when there is none or the table has no place for it.
int lineNumber(std::string_view line) {
    int number = -1;
    for (const char c : line) {
        if (c < '0' || c > '9') break;
        number = std::max(number, 0) * 10 + (c - '0');
        if (number >= languageTextCount) return -1;
    }
    return number;
}

void takeText(LanguageFile &file, std::string_view line) {
    const int number = lineNumber(line);
    const std::size_t equals = line.find('=');
    if (number < 0 || equals == std::string_view::npos) return;
    std::string_view text = line.substr(equals + 1);
    if (text.starts_with('"')) {
        text.remove_prefix(1);
        text = text.substr(0, text.find('"'));
    }
    if (argumentsFit(number, text)) file.texts.emplace_back(number, text);
}

}  // namespace

LanguageFile languageParse(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    bytes = bytes.substr(0, bytes.find('\0'));
    LanguageFile file;
    file.record = {profileValue(bytes, "Name"), profileValue(bytes, "Author"), profileValue(bytes, "EMail"),
                   profileValue(bytes, "Date")};
    while (!bytes.empty())
        if (startsWithoutCase(takeLine(bytes), textSection)) break;
    while (!bytes.empty()) takeText(file, takeLine(bytes));
    return file;
}

}  // namespace numalink
