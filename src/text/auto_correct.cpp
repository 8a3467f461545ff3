// One token from typed text: the spellings of an ordinary keyboard first, then the longest display text.
#include "text/auto_correct.h"

#include <algorithm>

#include "settings/settings_store.h"
#include "text/token_table.h"

namespace numalink {

namespace {

struct SpellingRow {
    std::string_view spelling;
    std::uint8_t byte1;
    std::uint8_t byte2;
    int length;
    bool outsideQuotes = false;  // only there: in a string these characters may be meant as they stand
};

// In testing order. 0x99 stands where an earlier recolouring has turned a "-" into the calculator's minus, and
// 0xB9 where it has turned a "/" into the division sign.
constexpr SpellingRow spellings[] = {
    {"List->Mat(", 0x7F, 0x4A, 2},
    {"Mat->List(", 0x7F, 0x4B, 2},
    {"Graph Y>=", 0xF2, 0, 1, true},
    {"Graph Y<=", 0xF3, 0, 1, true},
    {"Y>=Type", 0xF7, 0x6C, 2, true},
    {"Y<=Type", 0xF7, 0x6D, 2, true},
    {"<=", 0x10, 0, 1, true},
    {">=", 0x12, 0, 1, true},
    {"<>", 0x11, 0, 1, true},
    {"!=", 0x11, 0, 1, true},
    {"=/=", 0x11, 0, 1},
    {"=\xB9=", 0x11, 0, 1},
    {"=>", 0x13, 0, 1},
    {" => ", 0x13, 0, 1},
    {"->", 0x0E, 0, 1},
    {"\x99>", 0x0E, 0, 1},
    {" -> ", 0x0E, 0, 1},
    {" \x99> ", 0x0E, 0, 1},
    {"-", 0x99, 0, 1},
    {"+", 0x89, 0, 1},
    {"*", 0xA9, 0, 1},
    {"^", 0xA8, 0, 1},
};

constexpr SpellingRow signsWithoutTable[] = {{"+", 0x89, 0, 1}, {"-", 0x99, 0, 1}};

TypedToken firstSpelling(std::span<const SpellingRow> rows, std::string_view text, bool quoted) {
    for (const SpellingRow &row : rows) {
        if (text.starts_with(row.spelling) && !(quoted && row.outsideQuotes))
            return {row.byte1, row.byte2, row.length, static_cast<int>(row.spelling.size())};
    }
    return {};
}

bool isDash(char code) { return code == '-' || code == '\x99' || code == '\x87'; }
char folded(char code) { return code >= 'A' && code <= 'Z' ? static_cast<char>(code - 'A' + 'a') : code; }

// "Int(" for "Int ": a parenthesis stands in the place of the final blank of a command. It wins over what is as long
// ("Log", which no parenthesis follows, over "log ").
bool opensParenthesis(std::string_view display, std::string_view text) {
    const std::size_t name = display.size() - 1;
    return name >= 2 && display.back() == ' ' && text.size() > name && text[name] == '(' &&
           textMatches(display, text, name, false, true);
}

TypedToken longestDisplay(std::string_view text, bool quoted, bool autoCorrect) {
    const TokenRecord *best = nullptr;
    std::size_t bestLength = 0;
    bool bestOpens = false;
    if (text.empty()) return {};
    for (const std::uint16_t number : tokensShownFrom(text[0])) {
        const TokenRecord &record = tokenRecord(number);
        const std::string_view display = tokenDisplay(record);
        const bool exact = !autoCorrect || display.size() < 2 || quoted;
        if (!exact && opensParenthesis(display, text)) {
            const std::size_t length = display.size() - 1;
            if (length < bestLength || (bestOpens && length == bestLength)) continue;
            best = &record;
            bestLength = length;
            bestOpens = true;
            continue;
        }
        if (display.size() <= bestLength || !textMatches(display, text, display.size(), exact, autoCorrect)) continue;
        best = &record;
        bestLength = display.size();
        bestOpens = false;
    }
    if (!best) return {};
    return {best->byte1, best->byte2, best->length, static_cast<int>(bestLength)};
}

}  // namespace

TypedToken textToToken(std::string_view text, bool quoted) {
    return textToToken(text, quoted, settingsInt(setting::autoCorrect) > 0);
}

TypedToken textToToken(std::string_view text, bool quoted, bool autoCorrect) {
    if (autoCorrect) {
        const TypedToken corrected = firstSpelling(spellings, text, quoted);
        if (corrected.used > 0) return corrected;
    }
    const TypedToken found = longestDisplay(text, quoted, autoCorrect);
    return found.used > 0 ? found : firstSpelling(signsWithoutTable, text, quoted);
}

bool textMatches(std::string_view tokenText, std::string_view text, std::size_t count, bool exact, bool dashes) {
    if (tokenText.size() < count || text.size() < count) return false;
    for (std::size_t i = 0; i < count; i++) {
        const char a = tokenText[i];
        const char b = text[i];
        const bool agree =
            a == b || (!exact && folded(a) == folded(b)) || (count >= 2 && dashes && isDash(a) && isDash(b));
        if (!agree) return false;
    }
    return true;
}

}  // namespace numalink
