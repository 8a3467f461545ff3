// The walk from bytes to lines, from lines back to tokens, and the classes of what is shown.
#include "text/view_runs.h"

#include <algorithm>
#include <utility>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "text/auto_correct.h"
#include "text/token_table.h"

namespace numalink {

namespace {

constexpr std::uint8_t lineEnd = 0x0D, displayCommand = 0x0C, endMark = 0xFF;
constexpr char displayGlyph = '\xDD';

// A packed origin: token byte 1 in bits 0 to 7, byte 2 in 8 to 15, place in the display text in 16 to 20, whether
// the token has two bytes in 21, whether it is a mark in 22, and 23 set so that none of the plain numbers is met.
constexpr CodeOrigin packedFlag = 1u << 23, markFlag = 1u << 22, pairFlag = 1u << 21;
constexpr unsigned placeShift = 16, placeMask = 31;

CodeOrigin packedOrigin(ByteView token, bool isMark, std::size_t place) {
    CodeOrigin packed = packedFlag | token[0] | static_cast<CodeOrigin>(place) << placeShift;
    if (token.size() == 2) packed |= pairFlag | static_cast<CodeOrigin>(token[1]) << 8;
    return isMark ? packed | markFlag : packed;
}

bool isPacked(CodeOrigin from) { return (from & packedFlag) != 0 && !isForeign(from); }
std::size_t placeOf(CodeOrigin from) { return from >> placeShift & placeMask; }

ViewToken tokenOf(CodeOrigin from) {
    ViewToken token;
    token.bytes = {static_cast<std::uint8_t>(from), static_cast<std::uint8_t>(from >> 8)};
    token.length = (from & pairFlag) != 0 ? 2 : 1;
    token.isMark = (from & markFlag) != 0;
    token.isKept = true;
    return token;
}

ByteView bytesOf(const ViewToken &token) { return ByteView(token.bytes).first(token.length); }

std::string markText(ByteView token) {
    if (token.size() == 2) return "<" + std::to_string(token[0]) + "," + std::to_string(token[1]) + ">";
    return "<" + std::to_string(token[0]) + "> ";
}

bool isLineText(std::string_view text) { return !text.empty() && text.find_first_of("\r\n") == std::string::npos; }

void appendToken(ViewLine &line, ByteView token, bool isMark) {
    const std::string text = tokenOnView(token, isMark);
    if (!isMark && token.size() == 1 && text.size() == 1 && text[0] == static_cast<char>(token[0])) {
        line.text += text;
        line.origins.push_back(origin::ownByte);
        return;
    }
    for (std::size_t place = 0; place < text.size(); place++)
        line.origins.push_back(packedOrigin(token, isMark, place));
    line.text += text;
}

void copyToken(ViewLine &target, const ViewLine &line, const ViewToken &token) {
    const auto from = line.origins.begin() + static_cast<std::ptrdiff_t>(token.from);
    target.text.append(line.text, token.from, token.size);
    target.origins.insert(target.origins.end(), from, from + static_cast<std::ptrdiff_t>(token.size));
}

// Length of the token at the start, and whether it can only be shown as a mark.
std::size_t tokenLength(ByteView tokens, bool &isMark) {
    isMark = false;
    if (tokens[0] == displayCommand || tokens[0] == lineEnd) return 1;
    std::string_view text;
    const int length = tokenToText(tokens, text);
    if (length > 0 && isLineText(text)) return static_cast<std::size_t>(length);
    isMark = true;
    if (length > 0) return static_cast<std::size_t>(length);
    return isTokenPrefix(tokens[0]) && tokens.size() >= 2 ? 2 : 1;
}

// The untouched token that starts at place: all its characters stand there in order. size is 0 when there is none. The
// blank of a mark may be missing.
ViewToken keptTokenAt(const ViewLine &line, std::size_t place) {
    const CodeOrigin from = line.origins[place];
    ViewToken token;
    if (from == origin::ownByte) {
        token.bytes[0] = static_cast<std::uint8_t>(line.text[place]);
        std::string_view own;
        if (tokenToText(bytesOf(token), own) != 1 || own != std::string_view(line.text).substr(place, 1)) return token;
        token.isKept = true;
        token.from = place;
        token.size = 1;
        return token;
    }
    if (!isPacked(from) || placeOf(from) != 0) return token;
    token = tokenOf(from);
    token.from = place;
    const std::string text = tokenOnView(bytesOf(token), token.isMark);
    std::size_t agreeing = 0;
    while (agreeing < text.size() && place + agreeing < line.text.size() &&
           line.text[place + agreeing] == text[agreeing] &&
           line.origins[place + agreeing] == packedOrigin(bytesOf(token), token.isMark, agreeing))
        agreeing++;
    const bool isWhole = agreeing == text.size() || (token.isMark && text[agreeing] == ' ');
    token.size = isWhole ? agreeing : 0;
    return token;
}

// What each character of a line is part of: the untouched tokens, and where they start.
struct KeptTokens {
    explicit KeptTokens(const ViewLine &line) : startAt(line.text.size() + 1, none) {
        for (std::size_t place = 0; place < line.text.size();) {
            const ViewToken token = keptTokenAt(line, place);
            if (token.size == 0) {
                hasTouched = true;
                place++;
                continue;
            }
            for (std::size_t i = 0; i < token.size; i++) startAt[place + i] = place;
            place += token.size;
        }
    }

    bool isTouched(std::size_t place) const { return startAt[place] == none; }
    bool starts(std::size_t place) const { return startAt[place] == place; }

    static constexpr std::size_t none = static_cast<std::size_t>(-1);
    std::vector<std::size_t> startAt;  // of the untouched token that holds a character, or none; one more at the end
    bool hasTouched = false;
};

// The signs of a keyboard in the place of what they have become, for display texts that hold them ("P/L-").
std::string asTyped(std::string_view text) {
    std::string typed(text.substr(0, tokenTextSize));
    for (char &code : typed) {
        for (const auto &[sign, become] : {std::pair('/', '\xB9'), std::pair('*', '\xA9'), std::pair('+', '\x89'),
                                           std::pair('^', '\xA8'), std::pair('-', '\x99')})
            if (code == become) code = sign;
    }
    return typed;
}

TypedToken typedTokenAt(std::string_view text, bool quoted, bool autoCorrect) {
    const TypedToken plain = textToToken(text, quoted, autoCorrect);
    if (!autoCorrect || quoted) return plain;
    const TypedToken spelled = textToToken(asTyped(text), quoted, autoCorrect);
    return spelled.used > plain.used ? spelled : plain;
}

struct LineWalk {
    const ViewLine &line;
    const KeptTokens &kept;
    bool autoCorrect;

    // Where a reading that starts at place has to end at the latest. No token's text is longer than tokenTextSize: a
    // line is read in steps of its own length, however long it is.
    std::size_t barrier(std::size_t place, bool quoted) const {
        const std::size_t last = std::min(line.text.size(), place + tokenTextSize);
        std::size_t end = place + 1;
        for (; end < last; end++) {
            if (isForeign(line.origins[end])) break;
            if (!kept.starts(end)) continue;
            if (quoted || isMark(end)) break;
        }
        return end;
    }

    bool isMark(std::size_t place) const {
        return isPacked(line.origins[place]) && (line.origins[place] & markFlag) != 0;
    }

    // The longest reading at place that ends on a border of untouched tokens. One that ends within such a token would
    // tear it, and what is left of it has no bytes of its own: it is tried again up to there.
    TypedToken typedAt(std::size_t place, bool quoted) const {
        std::size_t end = barrier(place, quoted);
        for (;;) {
            const TypedToken token =
                typedTokenAt(std::string_view(line.text).substr(place, end - place), quoted, autoCorrect);
            const std::size_t behind = place + static_cast<std::size_t>(token.used);
            const std::size_t start = kept.startAt[behind];
            if (token.used == 0 || start == KeptTokens::none || start == behind || start <= place) return token;
            end = start;
        }
    }

    bool touches(std::size_t from, std::size_t size) const {
        for (std::size_t place = from; place < from + size; place++)
            if (kept.isTouched(place)) return true;
        return false;
    }

    // size 0 when the character at place is none. An untouched token keeps its bytes, though others may be spelled
    // alike; it gives way only to a longer command that it makes with what was typed beside it ("For " by an "r" behind
    // "Fo"). Within quotes nothing joins, and a line that nobody has touched isn't read at all.
    ViewToken tokenAt(std::size_t place, bool quoted) const {
        const bool isKept = kept.starts(place);
        const ViewToken keptToken = isKept ? keptTokenAt(line, place) : ViewToken{};
        if (isKept && (quoted || keptToken.isMark || !kept.hasTouched)) return keptToken;
        if (isForeign(line.origins[place])) return {};
        const TypedToken typed = typedAt(place, quoted);
        const auto used = static_cast<std::size_t>(typed.used);
        if (isKept && (used < keptToken.size || !touches(place, used))) return keptToken;
        if (used == 0) return {};
        ViewToken token;
        token.bytes = {typed.byte1, typed.byte2};
        token.length = static_cast<std::uint8_t>(typed.length);
        token.from = place;
        token.size = used;
        return token;
    }
};

// The class of a token, and the flags behind it.
RunClass classOf(const ViewToken &token, std::string_view shown, bool &inString, bool &inComment) {
    if (token.isMark) return RunClass::error;
    const bool isOwnByte = token.length == 1 && shown.size() == 1 && shown[0] == static_cast<char>(token.bytes[0]);
    const char code = shown.empty() ? '\0' : shown[0];
    const bool isBrace = code == '{' || code == '}' || code == '\\' || code == displayGlyph;
    const bool isPlain = isOwnByte && !isBrace;
    if (isPlain && code == '\'' && !inString) inComment = true;
    if (isPlain && code == '"') inString = !inString;
    if (inComment) return RunClass::comment;
    if (inString || (isPlain && code == '"')) return RunClass::text;
    if (isPlain) return (code >= '0' && code <= '9') || code == '.' ? RunClass::numbers : RunClass::ascii;
    if (token.length == 1 && shown.size() == 1 && isBrace) return RunClass::ascii;
    if (shown.size() >= 2) return token.length == 1 ? RunClass::oneByteCommand : RunClass::twoByteCommand;
    return RunClass::oneByteCharacter;
}

void appendRun(std::vector<ColorRun> &runs, std::size_t from, std::size_t size, RunClass runClass) {
    if (size == 0) return;
    if (!runs.empty() && runs.back().runClass == runClass) {
        runs.back().size += size;
    } else {
        runs.push_back({from, size, runClass});
    }
}

}  // namespace

void Quoting::follow(const ViewToken &token) {
    if (!token.isMark) follow(token.bytes[0]);
}

void Quoting::follow(std::uint8_t firstByte) {
    switch (firstByte) {
        case displayCommand:
        case ';':
        case lineEnd:
            *this = {};
            break;
        case '\'':
            inComment = inComment || !inString;
            break;
        case '"':
            inString = !inString;
            break;
        default:
            break;
    }
}

char32_t characterAt(const ViewLine &line, std::size_t place) {
    const CodeOrigin from = line.origins[place];
    return isForeign(from) ? from & ~origin::foreign : charsetToUnicode(static_cast<std::uint8_t>(line.text[place]));
}

std::string tokenOnView(ByteView token, bool isMark) {
    if (isMark) return markText(token);
    if (token[0] == displayCommand) return {displayGlyph};
    std::string_view text;
    tokenToText(token, text);
    return std::string(text);
}

ByteView viewedBytes(ByteView image) {
    if (image.empty()) return {};
    const ByteView tokens = image.subspan(1);
    for (const std::size_t behind : {2u, 1u}) {
        const std::size_t at = tokens.size() - behind;
        // The last byte of a pair is no end mark: what the walk over the tokens takes counts.
        if (tokens.size() >= behind && tokens[at] == endMark && programTokens(image).size() <= at)
            return tokens.first(at);
    }
    return tokens;
}

std::vector<ViewLine> viewLines(ByteView image) {
    std::vector<ViewLine> lines(1);
    ByteView rest = viewedBytes(image);
    while (!rest.empty() && rest[0] != 0 && rest[0] != endMark) {
        bool isMark = false;
        const std::size_t length = tokenLength(rest, isMark);
        if (rest[0] != lineEnd) appendToken(lines.back(), rest.first(length), isMark);
        if (rest[0] == lineEnd || rest[0] == displayCommand) lines.emplace_back();
        rest = rest.subspan(length);
    }
    for (std::size_t i = 0; i < rest.size(); i++) appendToken(lines.back(), rest.subspan(i, 1), true);
    return lines;
}

ViewLine lineOfTokens(ByteView tokens) {
    ViewLine line;
    while (!tokens.empty()) {
        bool isMark = false;
        const std::size_t length = tokenLength(tokens, isMark);
        if (tokens[0] != lineEnd) appendToken(line, tokens.first(length), isMark);
        tokens = tokens.subspan(length);
    }
    return line;
}

LineReading readLine(const ViewLine &line, bool autoCorrect) {
    const KeptTokens kept(line);
    const LineWalk walk{line, kept, autoCorrect};
    LineReading reading;
    Quoting quoting;
    for (std::size_t place = 0; place < line.text.size();) {
        const ViewToken token = walk.tokenAt(place, quoting.quoted());
        if (token.size == 0) {
            reading.faultAt = static_cast<std::ptrdiff_t>(place);
            return reading;
        }
        quoting.follow(token);
        reading.tokens.push_back(token);
        place += token.size;
    }
    return reading;
}

ViewLine shownLine(const ViewLine &line, const LineReading &reading) {
    if (reading.faultAt >= 0) return line;
    ViewLine shown;
    for (const ViewToken &token : reading.tokens) {
        if (token.isKept) {
            copyToken(shown, line, token);
        } else {
            shown.text += tokenOnView(bytesOf(token), false);
            shown.origins.resize(shown.text.size(), origin::typed);
        }
    }
    return shown;
}

ViewLine keptLine(const ViewLine &line, const LineReading &reading) {
    ViewLine kept;
    for (const ViewToken &token : reading.tokens) {
        if (token.isKept) {
            copyToken(kept, line, token);
        } else {
            appendToken(kept, bytesOf(token), false);
        }
    }
    return kept;
}

LineBytes lineBytes(const LineReading &reading) {
    LineBytes line;
    for (const ViewToken &token : reading.tokens)
        line.bytes.insert(line.bytes.end(), token.bytes.begin(), token.bytes.begin() + token.length);
    line.endsInDisplay = !reading.tokens.empty() && !reading.tokens.back().isMark &&
                         reading.tokens.back().length == 1 && reading.tokens.back().bytes[0] == displayCommand;
    return line;
}

Bytes imageOfLines(const std::vector<LineBytes> &lines) {
    Bytes image = {':'};
    for (std::size_t i = 0; i < lines.size(); i++) {
        image.insert(image.end(), lines[i].bytes.begin(), lines[i].bytes.end());
        if (i + 1 < lines.size() && !lines[i].endsInDisplay) image.push_back(lineEnd);
    }
    image.push_back(endMark);
    return image;
}

std::vector<ColorRun> colorRuns(const ViewLine &line, const LineReading &reading) {
    std::vector<ColorRun> runs;
    if (reading.faultAt >= 0) {
        const auto fault = static_cast<std::size_t>(reading.faultAt);
        appendRun(runs, 0, fault, RunClass::ascii);
        appendRun(runs, fault, 1, RunClass::error);
        appendRun(runs, fault + 1, line.text.size() - fault - 1, RunClass::ascii);
        return runs;
    }
    bool inString = false;
    bool inComment = false;
    for (const ViewToken &token : reading.tokens) {
        const std::string_view shown = std::string_view(line.text).substr(token.from, token.size);
        appendRun(runs, token.from, token.size, classOf(token, shown, inString, inComment));
        if (token.length == 1 && token.bytes[0] == displayCommand && !token.isMark) inString = inComment = false;
    }
    return runs;
}

}  // namespace numalink
