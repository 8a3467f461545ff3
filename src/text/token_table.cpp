// The token records in file order, and three orders over them that find what a walk in file order would find.
#include "text/token_table.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string>

#include "calculator/program_info.h"
#include "platform/files.h"
#include "platform/program_folder.h"

namespace numalink {

namespace {

using RecordNumber = std::uint16_t;
static_assert(tokenRecordLimit <= std::numeric_limits<RecordNumber>::max());

constexpr std::uint64_t tableFileLimit = 1u << 20;

// The records of one first byte, or the words of one first character, are a stretch of an order.
struct Order {
    std::array<RecordNumber, tokenRecordLimit> numbers;
    std::array<RecordNumber, 257> starts;  // by first byte; [256] is the end
};

TokenRecord records[tokenRecordLimit];
std::size_t recordCount = 0;
Order byFirstByte;  // by first byte, then file order
Order byWord;       // records with an exchange word, by word, then file order
Order byDisplay;    // by the first character of what they show, then file order

std::string_view textOf(const char (&text)[tokenTextSize]) { return {text, strnlen(text, tokenTextSize)}; }
std::string_view wordOf(RecordNumber number) { return textOf(records[number].asciiText); }
std::uint8_t firstOfWord(RecordNumber number) { return static_cast<std::uint8_t>(records[number].asciiText[0]); }

std::uint8_t displayKey(char first) {
    if (first == '\x99' || first == '\x87') return '-';
    return static_cast<std::uint8_t>(first >= 'A' && first <= 'Z' ? first - 'A' + 'a' : first);
}
std::uint8_t firstShown(RecordNumber number) {
    const TokenRecord &record = records[number];
    return displayKey(record.glyph != 0 ? static_cast<char>(record.glyph) : record.displayText[0]);
}

// Fills starts for the count numbers of order, which rise by first(number).
template <typename First>
void markStarts(Order &order, std::size_t count, First first) {
    std::size_t at = 0;
    for (std::size_t byte = 0; byte < order.starts.size(); byte++) {
        while (at < count && first(order.numbers[at]) < byte) at++;
        order.starts[byte] = static_cast<RecordNumber>(at);
    }
}

void makeOrders() {
    std::size_t words = 0;
    for (std::size_t i = 0; i < recordCount; i++) {
        const auto number = static_cast<RecordNumber>(i);
        byFirstByte.numbers[i] = byDisplay.numbers[i] = number;
        if (!wordOf(number).empty()) byWord.numbers[words++] = number;
    }
    const auto firstByte = [](RecordNumber number) { return records[number].byte1; };
    std::ranges::stable_sort(std::span(byFirstByte.numbers).first(recordCount), {}, firstByte);
    std::ranges::stable_sort(std::span(byDisplay.numbers).first(recordCount), {}, firstShown);
    // char_traits<char> compares as unsigned bytes, as starts does.
    std::stable_sort(byWord.numbers.begin(), byWord.numbers.begin() + static_cast<std::ptrdiff_t>(words),
                     [](RecordNumber a, RecordNumber b) { return wordOf(a) < wordOf(b); });
    markStarts(byFirstByte, recordCount, firstByte);
    markStarts(byWord, words, firstOfWord);
    markStarts(byDisplay, recordCount, firstShown);
}

std::span<const RecordNumber> stretch(const Order &order, std::uint8_t first) {
    return std::span(order.numbers).subspan(order.starts[first], order.starts[first + 1u] - order.starts[first]);
}

}  // namespace

bool tokenTableLoad() {
    Bytes file;
    if (readWholeFile(dataPath("casio.ptt"), file, tableFileLimit) != FileResult::done) return false;
    tokenTableSet(file);
    return true;
}

void tokenTableSet(ByteView file) {
    recordCount = 0;
    for (; file.size() >= tokenRecordSize && recordCount < tokenRecordLimit; file = file.subspan(tokenRecordSize)) {
        TokenRecord record{};
        std::memcpy(&record, file.data(), tokenRecordSize);
        if (record.length != 1 && record.length != 2) continue;
        record.displayText[tokenTextSize - 1] = '\0';
        record.asciiText[tokenTextSize - 1] = '\0';
        records[recordCount++] = record;
    }
    makeOrders();
}

std::size_t tokenCount() { return recordCount; }

const TokenRecord &tokenRecord(std::size_t index) { return records[index]; }

std::string_view tokenDisplay(const TokenRecord &record) {
    return record.glyph ? std::string_view(reinterpret_cast<const char *>(&record.glyph), 1)
                        : textOf(record.displayText);
}

std::span<const std::uint16_t> tokensShownFrom(char first) { return stretch(byDisplay, displayKey(first)); }

int tokenToText(ByteView bytes, std::string_view &text) {
    text = {};
    if (bytes.empty()) return 0;
    for (const RecordNumber number : stretch(byFirstByte, bytes[0])) {
        const TokenRecord &record = records[number];
        if (record.length == 2 && (bytes.size() < 2 || bytes[1] != record.byte2)) continue;
        text = tokenDisplay(record);
        return record.length;
    }
    return 0;
}

std::optional<std::string_view> tokenToAscii(ByteView bytes, int &tokenLength) {
    tokenLength = 1;
    if (bytes.empty()) return std::nullopt;
    const bool pair = isTokenPrefix(bytes[0]);
    if (pair) tokenLength = 2;
    if (pair && bytes.size() < 2) return std::nullopt;
    for (const RecordNumber number : stretch(byFirstByte, bytes[0])) {
        if (pair && records[number].byte2 != bytes[1]) continue;
        const std::string_view word = wordOf(number);
        if (word.empty()) return std::nullopt;
        return word;
    }
    return std::nullopt;
}

// Narrows the stretch of words that agree with text, a character at a time. Of words that agree in all their
// characters the shortest, and of equal ones the first in file order, stands at the stretch's head.
const TokenRecord *asciiToToken(std::string_view text) {
    if (text.empty()) return nullptr;
    std::span<const RecordNumber> words = stretch(byWord, static_cast<std::uint8_t>(text[0]));
    const TokenRecord *longest = nullptr;
    for (std::size_t depth = 1; !words.empty(); depth++) {
        if (wordOf(words.front()).size() == depth) longest = &records[words.front()];
        if (depth == text.size() || depth == tokenTextSize) break;
        const auto next = [&](RecordNumber number) {
            return static_cast<std::uint8_t>(records[number].asciiText[depth]);
        };
        const auto wanted = static_cast<std::uint8_t>(text[depth]);
        if (wanted == 0) break;
        const auto first = std::ranges::lower_bound(words, wanted, {}, next);
        const auto last = std::ranges::upper_bound(words, wanted, {}, next);
        words = {first, last};
    }
    return longest;
}

}  // namespace numalink
