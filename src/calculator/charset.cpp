// The character table and its reverse, UTF-8 in and out, and the comparison of names.
#include "calculator/charset.h"

#include <algorithm>
#include <array>

namespace numalink {

namespace {

constexpr std::size_t nameLimit = 52;

constexpr std::array<char16_t, 256> codePoints = {
#include "calculator/charset_table.inc"
};

struct ReverseRow {
    char16_t codePoint;
    std::uint8_t code;
};

constexpr std::array<ReverseRow, 256> makeReverse() {
    std::array<ReverseRow, 256> rows{};
    for (std::size_t i = 0; i < rows.size(); i++) rows[i] = {codePoints[i], static_cast<std::uint8_t>(i)};
    std::ranges::sort(rows, {}, &ReverseRow::codePoint);
    return rows;
}

constexpr std::array<ReverseRow, 256> reverseRows = makeReverse();
static_assert(std::ranges::adjacent_find(reverseRows, {}, &ReverseRow::codePoint) == reverseRows.end());

// The plain letters of U+00C0 to U+017F in order; "?" where there is none.
constexpr char32_t firstAccented = 0xC0;
constexpr std::string_view plainLetters =
    "AAAAAAACEEEEIIIIDNOOOOO?OUUUUY?saaaaaaaceeeeiiiidnooooo?ouuuuy?y"
    "AaAaAaCcCcCcCcDdDdEeEeEeEeEeGgGgGgGgHhHhIiIiIiIiIi??JjKk?LlLlLlLlLlNnNnNnn??OoOoOo??RrRrRrSsSsSsSs"
    "TtTtTtUuUuUuUuUuUuWwYyYZzZzZzs";
static_assert(plainLetters.size() == 0x180 - firstAccented);

bool isCombiningAccent(char32_t codePoint) { return codePoint >= 0x300 && codePoint <= 0x36F; }

// How many bytes follow a first byte of UTF-8, or -1.
int followers(std::uint8_t first) {
    if (first < 0x80) return 0;
    if (first >= 0xC2 && first <= 0xDF) return 1;
    if (first >= 0xE0 && first <= 0xEF) return 2;
    if (first >= 0xF0 && first <= 0xF4) return 3;
    return -1;
}

// The plain letter of an accented one, or 0.
char plainLetter(char32_t codePoint) {
    if (codePoint < firstAccented || codePoint - firstAccented >= plainLetters.size()) return 0;
    const char letter = plainLetters[codePoint - firstAccented];
    return letter == '?' ? '\0' : letter;
}

}  // namespace

char32_t charsetToUnicode(std::uint8_t code) { return codePoints[code]; }

std::optional<std::uint8_t> charsetFromUnicode(char32_t codePoint) {
    const auto row = std::ranges::lower_bound(
        reverseRows, codePoint, {}, [](const ReverseRow &each) { return static_cast<char32_t>(each.codePoint); });
    if (row == reverseRows.end() || row->codePoint != codePoint) return std::nullopt;
    return row->code;
}

char32_t takeCodePoint(std::string_view &utf8) {
    constexpr char32_t lowest[] = {0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<std::uint8_t>(utf8[0]);
    const int more = followers(first);
    const std::string_view rest = utf8.substr(1);
    utf8 = rest;
    if (more <= 0) return more == 0 ? first : brokenCodePoint;
    const auto count = static_cast<std::size_t>(more);
    if (rest.size() < count) return brokenCodePoint;
    char32_t codePoint = first & (0x3Fu >> more);
    for (std::size_t i = 0; i < count; i++) {
        const auto next = static_cast<std::uint8_t>(rest[i]);
        if ((next & 0xC0) != 0x80) return brokenCodePoint;
        codePoint = codePoint << 6 | (next & 0x3Fu);
    }
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (codePoint < lowest[count] || surrogate || codePoint > 0x10FFFF) return brokenCodePoint;
    utf8 = rest.substr(count);
    return codePoint;
}

void appendUtf8(std::string &utf8, char32_t codePoint) {
    const auto put = [&](char32_t value) { utf8 += static_cast<char>(value); };
    const bool isNone = codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF);
    if (isNone) codePoint = 0xFFFD;
    if (codePoint < 0x80) return put(codePoint);
    if (codePoint < 0x800) {
        put(0xC0 | codePoint >> 6);
    } else if (codePoint < 0x10000) {
        put(0xE0 | codePoint >> 12);
        put(0x80 | (codePoint >> 6 & 0x3F));
    } else {
        put(0xF0 | codePoint >> 18);
        put(0x80 | (codePoint >> 12 & 0x3F));
        put(0x80 | (codePoint >> 6 & 0x3F));
    }
    put(0x80 | (codePoint & 0x3F));
}

std::string utf8FromCalculator(std::string_view calculatorText) {
    std::string utf8;
    utf8.reserve(calculatorText.size());
    for (const char code : calculatorText) appendUtf8(utf8, codePoints[static_cast<std::uint8_t>(code)]);
    return utf8;
}

std::string calculatorFromUtf8(std::string_view utf8, int *missing) {
    std::string text;
    int lost = 0;
    while (!utf8.empty()) {
        const char32_t codePoint = takeCodePoint(utf8);
        if (isCombiningAccent(codePoint) && !text.empty()) continue;
        if (const auto code = charsetFromUnicode(codePoint)) {
            text += static_cast<char>(*code);
        } else if (const char letter = plainLetter(codePoint)) {
            text += letter;
        } else {
            text += '?';
            lost++;
        }
    }
    if (missing) *missing = lost;
    return text;
}

std::string calculatorName(std::string_view utf8) {
    std::string name = calculatorFromUtf8(utf8);
    // These end a text or a line, which a name can't survive.
    for (const char ending : {'\0', '\n', '\r'}) std::ranges::replace(name, ending, '?');
    if (name.size() > nameLimit) name.resize(nameLimit);
    return name;
}

}  // namespace numalink
