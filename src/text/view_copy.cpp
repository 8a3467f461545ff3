#include "text/view_copy.h"

#include <algorithm>
#include <cstdio>
#include <span>
#include <string_view>

#include "calculator/charset.h"

namespace numalink {

namespace {

// What the text of tokens reads as.
struct PieceReading {
    std::vector<ViewToken> tokens;
    bool isWhole = false;  // without a fault
};

ByteView bytesOf(const ViewToken &token) { return ByteView(token.bytes).first(token.length); }

// "<250> " or "<127,80>", the form of what no record has; the blank may have gone on the way. size 0 for other text.
ViewToken markOf(std::string_view piece) {
    ViewToken token;
    int first = 0;
    int second = -1;
    // NOLINTNEXTLINE(cert-err34-c): three digits at most, and the mark is compared with the text below
    const int numbers = std::sscanf(std::string(piece).c_str(), "<%3d,%3d", &first, &second);
    // 0 and 255 would end the program.
    if (numbers < 1 || first <= 0 || first >= 0xFF || second > 0xFF) return token;
    token.bytes = {static_cast<std::uint8_t>(first), static_cast<std::uint8_t>(std::max(second, 0))};
    token.length = static_cast<std::uint8_t>(numbers);
    token.isMark = true;
    const std::string shown = lineOfTokens(bytesOf(token)).text;
    if (shown.starts_with('<') && (shown == piece || shown == std::string(piece) + ' ')) token.size = piece.size();
    return token;
}

ViewToken ownByteOf(std::string_view piece) {
    ViewToken token;
    token.bytes[0] = static_cast<std::uint8_t>(piece[0]);
    token.size = piece.size() == 1 && tokenOnView(bytesOf(token), false) == piece ? 1 : 0;
    return token;
}

// The piece alone, as if typed; quotes ahead of it open what it lies in.
PieceReading readPiece(std::string_view piece, const Quoting &quoting) {
    for (const ViewToken &token : {markOf(piece), ownByteOf(piece)})
        if (token.size > 0) return {{token}, true};
    ViewLine line;
    if (quoting.inComment) line.text += '\'';
    if (quoting.inString) line.text += '"';
    const std::size_t ahead = line.text.size();
    line.text += piece;
    line.origins.resize(line.text.size(), origin::typed);
    LineReading reading = readLine(line, true);
    std::erase_if(reading.tokens, [&](const ViewToken &token) { return token.from < ahead; });
    for (ViewToken &token : reading.tokens) token.from -= ahead;
    return {std::move(reading.tokens), reading.faultAt < 0};
}

// How many of the wanted tokens, the first of which starts at from in its line, the reading begins with.
std::size_t agreeing(const PieceReading &reading, std::span<const ViewToken> wanted, std::size_t from) {
    std::size_t count = 0;
    while (count < std::min(reading.tokens.size(), wanted.size()) &&
           reading.tokens[count].from + from == wanted[count].from &&
           reading.tokens[count].size == wanted[count].size &&
           std::ranges::equal(bytesOf(reading.tokens[count]), bytesOf(wanted[count])))
        count++;
    return count;
}

// Whether the text of a line, which reads as its tokens, comes back as others when it is read as text from elsewhere.
bool changesOnTheWay(const ViewLine &line, const LineReading &reading) {
    LenientText text;
    const ViewLine back = lenientLine(text, utf8FromCalculator(line.text));
    return lineBytes(readLine(back, true)).bytes != lineBytes(reading).bytes;
}

}  // namespace

std::vector<std::string> piecesOfLine(const ViewLine &line) {
    const LineReading reading = readLine(line, true);
    if (reading.faultAt >= 0) return {line.text};
    std::vector<std::string> pieces;
    Quoting quoting;
    for (std::span<const ViewToken> rest = reading.tokens; !rest.empty();) {
        const std::string_view text = std::string_view(line.text).substr(rest[0].from);
        std::size_t count = std::max<std::size_t>(1, agreeing(readPiece(text, quoting), rest, rest[0].from));
        const auto piece = [&] { return text.substr(0, rest[count - 1].from + rest[count - 1].size - rest[0].from); };
        // Letters and digits that would be a mark once they stand alone: their first sign does.
        if (!rest[0].isMark && markOf(piece()).size > 0) count = 1;
        pieces.emplace_back(piece());
        for (const ViewToken &token : rest.first(count)) quoting.follow(token);
        rest = rest.subspan(count);
    }
    const bool endsInBlank = pieces.size() > 1 && pieces.back().ends_with(' ') && markOf(pieces.back()).size == 0;
    if (pieces.empty() || endsInBlank || (pieces.size() == 1 && changesOnTheWay(line, reading))) pieces.emplace_back();
    return pieces;
}

bool lineOfPieces(const std::vector<std::string> &pieces, ViewLine &line) {
    Bytes tokens;
    Quoting quoting;
    for (const std::string &piece : pieces) {
        if (piece.empty()) continue;
        const PieceReading reading = readPiece(piece, quoting);
        if (!reading.isWhole) return false;
        for (const ViewToken &token : reading.tokens) {
            quoting.follow(token);
            const ByteView bytes = bytesOf(token);
            tokens.insert(tokens.end(), bytes.begin(), bytes.end());
        }
    }
    line = lineOfTokens(tokens);
    return true;
}

std::string partedUtf8(const ViewLine &line) {
    std::string text;
    const std::vector<std::string> pieces = piecesOfLine(line);
    for (std::size_t i = 0; i < pieces.size(); i++) {
        if (i > 0) text += pieceSeparator;
        text += utf8FromCalculator(pieces[i]);
    }
    return text;
}

bool lineOfPartedUtf8(LenientText &text, std::string_view utf8, ViewLine &line) {
    if (utf8.find(pieceSeparator) == std::string_view::npos) {
        line = lenientLine(text, utf8);
        const LineReading reading = readLine(line, true);
        if (reading.faultAt < 0) line = keptLine(line, reading);
        return reading.faultAt < 0;
    }
    std::vector<std::string> pieces;
    for (;;) {
        const std::size_t end = std::min(utf8.find(pieceSeparator), utf8.size());
        int missing = 0;
        pieces.push_back(calculatorFromUtf8(utf8.substr(0, end), &missing));
        if (missing > 0) return false;
        if (end == utf8.size()) return lineOfPieces(pieces, line);
        utf8.remove_prefix(end + pieceSeparator.size());
    }
}

}  // namespace numalink
