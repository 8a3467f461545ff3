// The walks between text and token bytes.
#include "text/program_bytes.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "platform/letter_case.h"
#include "settings/settings_store.h"
#include "text/auto_correct.h"
#include "text/token_table.h"
#include "text/view_runs.h"

namespace numalink {

namespace {

constexpr std::uint8_t lineEnd = 0x0D;
constexpr std::uint8_t displayCommand = 0x0C;
constexpr char displayGlyph = '\xDD';

// A byte, or a prefix and what follows it, that no record has.
std::string unknownMark(ByteView tokens, std::size_t &length) {
    const bool pair = isTokenPrefix(tokens[0]) && tokens.size() >= 2;
    length = pair ? 2 : 1;
    if (pair) return "<" + std::to_string(tokens[0]) + "," + std::to_string(tokens[1]) + ">";
    return "<" + std::to_string(tokens[0]) + "> ";
}

std::string shownText(ByteView tokens, std::size_t &length) {
    std::string_view text;
    length = static_cast<std::size_t>(tokenToText(tokens, text));
    if (length == 0) return unknownMark(tokens, length);
    if (length == 1 && text == "\r") return "\r\n";
    if (length == 1 && text == "\n") return {};
    if (length == 1 && text == std::string_view(&displayGlyph, 1)) return std::string(text) + "\r\n";
    return std::string(text);
}

// A program as its words stand side by side, each a piece, and which of them need a backslash ahead.
struct Pieces {
    std::string text{};
    std::vector<std::size_t> starts{};
    std::vector<bool> escaped{};
    std::vector<bool> isByte{};  // a single token byte: with a backslash ahead it still means itself
};

void addPiece(Pieces &pieces, std::string_view text, bool escaped, bool isByte) {
    pieces.starts.push_back(pieces.text.size());
    pieces.escaped.push_back(escaped);
    pieces.isByte.push_back(isByte);
    pieces.text += text;
}

std::string_view pieceText(const Pieces &pieces, std::size_t i) {
    const bool last = i + 1 == pieces.starts.size();
    const std::size_t end = last ? pieces.text.size() : pieces.starts[i + 1];
    return std::string_view(pieces.text).substr(pieces.starts[i], end - pieces.starts[i]);
}

Pieces plainPieces(ByteView tokens) {
    Pieces pieces;
    while (!tokens.empty()) {
        int tokenLength = 1;
        const auto word = tokenToAscii(tokens, tokenLength);
        const std::size_t length = std::min(tokens.size(), static_cast<std::size_t>(tokenLength));
        if (tokens[0] == lineEnd) {
            addPiece(pieces, "\r\n", false, false);
        } else if (word) {
            const bool isByte = word->size() == 1 && static_cast<std::uint8_t>(word->front()) == tokens[0];
            addPiece(pieces, *word, false, isByte);
        } else {
            for (const std::uint8_t byte : tokens.first(length))
                addPiece(pieces, std::string(1, static_cast<char>(byte)), true, true);
        }
        tokens = tokens.subspan(length);
    }
    return pieces;
}

// What a reader of cat files would take for a line of the file's own.
bool readsAsMark(std::string_view text, bool atStart) {
    if (atStart && (startsWithoutCase(text, "Password:") || startsWithoutCase(text, "BaseN:"))) return true;
    constexpr std::string_view end = "%End";
    if (text[0] != '%') return false;
    if (startsWithoutCase(text, end)) return text.size() == end.size() || text[end.size()] == '\r';
    return startsWithoutCase(text, "%Header Record");
}

void guardMarks(Pieces &pieces) {
    const std::string_view text = pieces.text;
    for (std::size_t i = 0; i < pieces.starts.size(); i++) {
        if (pieces.isByte[i] && readsAsMark(text.substr(pieces.starts[i]), i == 0)) pieces.escaped[i] = true;
    }
}

// Where a word and what follows would read as a longer word, the piece behind the word gets a backslash. That one
// in turn may make a word with what follows it, so the walk goes forward.
void guardLongerWords(Pieces &pieces) {
    const std::string_view text = pieces.text;
    std::string ahead;
    for (std::size_t i = 0; i + 1 < pieces.starts.size(); i++) {
        if (text[pieces.starts[i]] == '\r' || !pieces.isByte[i + 1]) continue;
        ahead.assign(pieces.escaped[i] ? "\\" : "");
        ahead += text.substr(pieces.starts[i], tokenTextSize);
        const TokenRecord *record = asciiToToken(ahead);
        if (!record) continue;
        const std::size_t own = pieces.escaped[i] ? 0 : pieceText(pieces, i).size();
        if (strnlen(record->asciiText, tokenTextSize) > own) pieces.escaped[i + 1] = true;
    }
}

}  // namespace

std::ptrdiff_t lineFromText(std::string_view text, Bytes &tokens) {
    const bool autoCorrect = settingsInt(setting::autoCorrect) > 0;
    Quoting quoting;
    for (std::size_t place = 0; place < text.size();) {
        if (text[place] == '\n') {
            place++;
            continue;
        }
        const TypedToken token = textToToken(text.substr(place), quoting.quoted(), autoCorrect);
        if (token.used == 0) return static_cast<std::ptrdiff_t>(place);
        quoting.follow(token.byte1);
        place += static_cast<std::size_t>(token.used);
        if (token.byte1 == displayCommand && text.substr(place).starts_with('\r')) place++;
        tokens.push_back(token.byte1);
        if (token.length == 2) tokens.push_back(token.byte2);
    }
    return -1;
}

std::string programPlainText(ByteView image) {
    std::string text;
    for (ByteView tokens = programTokens(image); !tokens.empty();) {
        std::size_t length = 0;
        text += shownText(tokens, length);
        tokens = tokens.subspan(length);
    }
    return text;
}

std::size_t readWord(std::string_view words, std::size_t place, Bytes &tokens) {
    const std::string_view rest = words.substr(place);
    if (rest.empty()) return 0;
    if (rest[0] == '\n') return 1;
    if (rest[0] == '\r') {
        if (place == 0 || words[place - 1] != '\r') tokens.push_back(lineEnd);
        return 1;
    }
    if (const TokenRecord *record = asciiToToken(rest)) {
        tokens.push_back(record->byte1);
        if (record->length == 2) tokens.push_back(record->byte2);
        return strnlen(record->asciiText, tokenTextSize);
    }
    if (rest[0] != '\\' || rest.size() < 2) return 0;
    tokens.push_back(static_cast<std::uint8_t>(rest[1]));
    return 2;
}

std::string wordsFromTokens(ByteView tokens) {
    Pieces pieces = plainPieces(tokens);
    guardMarks(pieces);
    guardLongerWords(pieces);
    std::string words;
    words.reserve(pieces.text.size() + pieces.text.size() / 16);
    for (std::size_t i = 0; i < pieces.starts.size(); i++) {
        if (pieces.escaped[i]) words += '\\';
        words += pieceText(pieces, i);
    }
    return words;
}

std::ptrdiff_t tokensFromWords(std::string_view words, Bytes &tokens) {
    for (std::size_t place = 0; place < words.size();) {
        const std::size_t used = readWord(words, place, tokens);
        if (used == 0) return static_cast<std::ptrdiff_t>(place);
        place += used;
    }
    return -1;
}

}  // namespace numalink
