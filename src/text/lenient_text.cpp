#include "text/lenient_text.h"

#include <algorithm>
#include <span>

#include "calculator/charset.h"
#include "text/auto_correct.h"
#include "text/token_table.h"

namespace numalink {

namespace {

struct LenientRow {
    char32_t from;
    char32_t to;  // 0: nothing
};

// In order of from. A character that a calculator has counts outside of quotes only, where its own meaning is rare.
constexpr LenientRow lenientRows[] = {
    {U'\t', U' '},
    {U'\u00A0', U' '},
    {U'\u00A5', U'\\'},
    {U'\u00AD', 0},
    {U'\u00B4', U'\''},
    {U'\u00B7', U'\u00D7'},
    {U'\u02BC', U'\''},
    {U'\u03BC', U'\u00B5'},
    {U'\u2002', U' '},
    {U'\u2003', U' '},
    {U'\u2004', U' '},
    {U'\u2005', U' '},
    {U'\u2006', U' '},
    {U'\u2007', U' '},
    {U'\u2008', U' '},
    {U'\u2009', U' '},
    {U'\u200A', U' '},
    {U'\u200B', 0},
    {U'\u200C', 0},
    {U'\u200D', 0},
    {U'\u200E', 0},
    {U'\u2011', U'\u2212'},
    {U'\u2012', U'\u2212'},
    {U'\u2013', U'\u2212'},
    {U'\u2014', U'\u2212'},
    {U'\u2015', U'\u2212'},
    {U'\u2018', U'\''},
    {U'\u2019', U'\''},
    {U'\u201A', U'\''},
    {U'\u201B', U'\''},
    {U'\u201C', U'"'},
    {U'\u201D', U'"'},
    {U'\u201E', U'"'},
    {U'\u201F', U'"'},
    {U'\u2022', U'\u00D7'},
    {U'\u202F', U' '},
    {U'\u2032', U'\''},
    {U'\u2033', U'"'},
    {U'\u2044', U'\u2215'},
    {U'\u2060', 0},
    {U'\u2206', U'\u0394'},
    {U'\u2211', U'\u03A3'},
    {U'\u2219', U'\u00D7'},
    {U'\u2236', U':'},
    {U'\u223C', U'~'},
    {U'\u2266', U'\u2264'},
    {U'\u2267', U'\u2265'},
    {U'\u22C5', U'\u00D7'},
    {U'\u2715', U'\u00D7'},
    {U'\u2794', U'\u2192'},
    {U'\u279C', U'\u2192'},
    {U'\u27F6', U'\u2192'},
    {U'\u2A7D', U'\u2264'},
    {U'\u2A7E', U'\u2265'},
    {U'\u3000', U' '},
    {U'\uFE63', U'\u2212'},
    {U'\uFEFF', 0},
    {U'\uFF0D', U'\u2212'},
    {U'\uFFE5', U'\\'},
    {U'\uFFEB', U'\u2192'},
    {U'\U0001F86A', U'\u2192'},
};
static_assert(std::ranges::is_sorted(lenientRows, {}, &LenientRow::from));

constexpr char32_t firstFullWidth = 0xFF01;
constexpr char32_t lastFullWidth = 0xFF5E;
constexpr std::string_view printedLineEnd = "\u21B5";
constexpr std::string_view lineEnds[] = {"\r\n", "\n", "\r", "\f", "\u2028", "\u2029"};
constexpr char raisedDot = '\xFA';  // in the text of some tokens; alone it is a dot for times

bool isFullWidthForm(char32_t codePoint) { return codePoint >= firstFullWidth && codePoint <= lastFullWidth; }

char32_t standsFor(char32_t codePoint) {
    const auto row = std::ranges::lower_bound(lenientRows, codePoint, {}, &LenientRow::from);
    if (row != std::end(lenientRows) && row->from == codePoint) return row->to;
    return isFullWidthForm(codePoint) ? codePoint - firstFullWidth + U'!' : codePoint;
}

// How many bytes of a line end stand at the start, 0 for none.
std::size_t lineEndAt(std::string_view utf8) {
    const std::size_t printed = utf8.starts_with(printedLineEnd) ? printedLineEnd.size() : 0;
    for (const std::string_view end : lineEnds)
        if (utf8.substr(printed).starts_with(end)) return printed + end.size();
    return printed;
}

// Full-width letters that a calculator has as codes of their own, other than hexadecimal digits: Y of a graph, n of a
// statistic. A text from the view is full of them.
bool isOwnLetter(char32_t codePoint) {
    const bool isHex = codePoint >= U'\uFF21' && codePoint <= U'\uFF26';
    return isFullWidthForm(codePoint) && !isHex && codePoint != U'\uFF0C' && codePoint != U'\uFF0B' &&
           charsetFromUnicode(codePoint).has_value();
}

void append(ViewLine &line, char32_t codePoint) {
    if (codePoint == brokenCodePoint) codePoint = U'\uFFFD';
    const auto code = charsetFromUnicode(codePoint);
    std::string utf8;
    if (!code) appendUtf8(utf8, codePoint);
    int missing = 0;
    line.text += code ? std::string(1, static_cast<char>(*code)) : calculatorFromUtf8(utf8, &missing);
    line.origins.resize(line.text.size(), missing > 0 ? origin::foreign | codePoint : origin::typed);
}

// Characters that a calculator has, and that stand for others outside of quotes, or where they are no token. Quotes
// ahead of start count.
void takeOutsideQuotes(const LenientText &text, ViewLine &line, std::size_t start) {
    Quoting quoting;
    for (std::size_t place = 0; place < line.text.size(); place++) {
        char &code = line.text[place];
        const char32_t own = charsetToUnicode(static_cast<std::uint8_t>(code));
        const auto other = charsetFromUnicode(standsFor(own));
        if (place >= start && !isForeign(line.origins[place]) && other && static_cast<char>(*other) != code) {
            const int used =
                textToToken(std::string_view(line.text).substr(place, tokenTextSize), quoting.quoted(), true).used;
            const bool isOwn = quoting.quoted() || (code == raisedDot && used > 1);
            const bool isLetter = isOwnLetter(own) && !text.isFullWidth;
            if (used == 0 || (!isOwn && !isLetter)) code = static_cast<char>(*other);
        }
        quoting.follow(static_cast<std::uint8_t>(code));
    }
}

bool isSeparator(const ViewToken &token) {
    constexpr std::string_view separators = "+-*/^=<>,:\x89\x99\xA9\xB9\xA8\x0C\x0E\x10\x11\x12\x13";
    return token.length == 1 && separators.find(static_cast<char>(token.bytes[0])) != std::string_view::npos;
}

// Which tokens of a line are blanks that only lay it out: ahead of it, around operators and separators, beside the
// blank of a command, and tabs.
struct BlankWalk {
    const ViewLine &line;
    std::span<const ViewToken> tokens;
    const LinePlace &place;

    std::string_view textOf(std::size_t i) const {
        return std::string_view(line.text).substr(tokens[i].from, tokens[i].size);
    }
    bool isBlank(std::size_t i) const { return textOf(i) == " "; }

    bool endsStretch(std::size_t behind) const {
        if (behind == tokens.size()) return place.reachesEnd;
        return isSeparator(tokens[behind]) || (textOf(behind).size() > 1 && textOf(behind).front() == ' ');
    }
    bool startsStretch(std::size_t first) const {
        if (first == 0) return place.startsLine;
        return isSeparator(tokens[first - 1]) || (textOf(first - 1).size() > 1 && textOf(first - 1).back() == ' ');
    }
};

// The line without such blanks; start is where it begins behind what only opens quotes.
ViewLine withoutBlanks(const ViewLine &line, const std::vector<bool> &isTab, std::size_t start,
                       const LinePlace &place) {
    const LineReading reading = readLine(line, true);
    const auto first =
        std::ranges::find_if(reading.tokens, [&](const ViewToken &token) { return token.from >= start; });
    const std::span tokens(first, reading.tokens.end());
    const BlankWalk walk{line, tokens, place};
    Quoting quoting = place.quoting;
    ViewLine kept;
    const auto take = [&](std::size_t from, std::size_t size) {
        kept.text.append(line.text, from, size);
        kept.origins.insert(kept.origins.end(), line.origins.begin() + static_cast<std::ptrdiff_t>(from),
                            line.origins.begin() + static_cast<std::ptrdiff_t>(from + size));
    };
    for (std::size_t i = 0; i < tokens.size();) {
        std::size_t behind = i;
        while (!quoting.quoted() && behind < tokens.size() && walk.isBlank(behind)) behind++;
        const bool goes = behind > i && (walk.startsStretch(i) || walk.endsStretch(behind));
        for (; i < behind; i++)
            if (!goes && !isTab[tokens[i].from]) take(tokens[i].from, 1);
        if (i == tokens.size()) break;
        take(tokens[i].from, tokens[i].size);
        quoting.follow(tokens[i]);
        i++;
    }
    const std::size_t read = reading.faultAt < 0 ? line.text.size() : static_cast<std::size_t>(reading.faultAt);
    take(read, line.text.size() - read);
    return kept;
}

// Characters that open the quotes in which a text begins.
std::string opening(const Quoting &quoting) {
    return std::string(quoting.inComment ? "'" : "") + (quoting.inString ? "\"" : "");
}

}  // namespace

std::vector<std::string_view> linesOfText(std::string_view utf8) {
    constexpr std::string_view byteOrderMark = "\uFEFF";
    if (utf8.starts_with(byteOrderMark)) utf8.remove_prefix(byteOrderMark.size());
    std::vector<std::string_view> lines;
    std::size_t from = 0;
    for (std::size_t at = 0; at < utf8.size();) {
        const std::size_t end = lineEndAt(utf8.substr(at));
        if (end > 0) lines.push_back(utf8.substr(from, at - from));
        at += std::max<std::size_t>(1, end);
        if (end > 0) from = at;
    }
    lines.push_back(utf8.substr(from));
    return lines;
}

LenientText lenientTextOf(std::string_view utf8) {
    LenientText text;
    while (!utf8.empty() && !text.isFullWidth) {
        const char32_t codePoint = takeCodePoint(utf8);
        text.isFullWidth = isFullWidthForm(codePoint) && !charsetFromUnicode(codePoint);
    }
    return text;
}

ViewLine lenientLine(LenientText &text, std::string_view utf8, const LinePlace &place) {
    ViewLine line;
    std::vector<bool> isTab;
    line.text = opening(place.quoting);
    line.origins.resize(line.text.size(), origin::typed);
    const std::size_t start = line.text.size();
    bool isAhead = place.startsLine && !place.quoting.quoted();
    while (!utf8.empty()) {
        const char32_t codePoint = takeCodePoint(utf8);
        const char32_t character = lenientCharacter(codePoint);
        isAhead = isAhead && character == U' ';
        if (isAhead) text.blanksLeftOut = true;
        if (isAhead || character == 0) continue;
        append(line, character);
        isTab.resize(line.text.size(), false);
        isTab.back() = codePoint == U'\t';
    }
    isTab.resize(line.text.size() + 1, false);
    takeOutsideQuotes(text, line, start);
    ViewLine kept = withoutBlanks(line, isTab, start, place);
    text.blanksLeftOut = text.blanksLeftOut || kept.text.size() + start < line.text.size();
    ViewLine quoted{opening(place.quoting) + kept.text, {}};
    quoted.origins.resize(start, origin::typed);
    quoted.origins.insert(quoted.origins.end(), kept.origins.begin(), kept.origins.end());
    LineReading reading = readLine(quoted, true);
    if (reading.faultAt >= 0) return kept;
    std::erase_if(reading.tokens, [&](const ViewToken &token) { return token.from < start; });
    return keptLine(quoted, reading);
}

ViewLine typedLine(std::string_view utf8) {
    ViewLine line;
    while (!utf8.empty()) append(line, takeCodePoint(utf8));
    return line;
}

char32_t lenientCharacter(char32_t codePoint) {
    return charsetFromUnicode(codePoint) ? codePoint : standsFor(codePoint);
}

std::size_t readLenientCharacter(std::string_view utf8, Quoting quoting, Bytes &tokens) {
    LenientText text;
    std::string_view rest = utf8;
    if (utf8.empty()) return 0;
    const char32_t codePoint = takeCodePoint(rest);
    const std::size_t size = utf8.size() - rest.size();
    if (codePoint < 0x80 || codePoint == brokenCodePoint) return 0;
    if (lenientCharacter(codePoint) == 0) return size;
    const LinePlace place{.quoting = quoting, .startsLine = false, .reachesEnd = false};
    const LineReading reading = readLine(lenientLine(text, utf8.substr(0, size), place), true);
    if (reading.faultAt >= 0 || reading.tokens.empty()) return 0;
    const Bytes bytes = lineBytes(reading).bytes;
    tokens.insert(tokens.end(), bytes.begin(), bytes.end());
    return size;
}

}  // namespace numalink
