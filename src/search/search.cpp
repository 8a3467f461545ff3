#include "search/search.h"

#include <re2/re2.h>

#include <algorithm>
#include <map>

#include "calculator/charset.h"
#include "platform/letter_case.h"
#include "search/search_text.h"
#include "store/undo/undo.h"
#include "text/lenient_text.h"
#include "text/program_bytes.h"
#include "text/program_images.h"
#include "text/view_edit.h"

namespace numalink {

namespace {

constexpr std::int64_t expressionMemory = std::int64_t{8} << 20;  // bytes that RE2 may use for one
constexpr int groupLimit = 10;                                    // "\0" to "\9"

}  // namespace

struct CompiledSearch {
    SearchQuery query;
    std::string folded;                 // the words, in the case that they are compared in
    std::vector<std::uint16_t> tokens;  // as SearchText has them
    std::unique_ptr<RE2> expression;
};

namespace {

std::vector<std::uint16_t> tokensOf(const ViewLine &line) {
    std::vector<std::uint16_t> tokens;
    for (const ViewToken &token : readLine(line, true).tokens)
        tokens.push_back(static_cast<std::uint16_t>((token.length == 2 ? token.bytes[1] : 0) << 8 | token.bytes[0]));
    return tokens;
}

// What the text may mean: itself, a command whose blank at the end wasn't typed ("Locate"), or words of item files
// ("\\Locate").
std::vector<std::string> meaningsOf(const std::string &utf8) {
    std::vector<std::string> meanings{utf8, utf8 + ' '};
    if (utf8.find('\\') == std::string::npos) return meanings;
    for (const std::string &words : {utf8, utf8 + ' '}) {
        Bytes image{':'};
        if (tokensFromWords(calculatorFromUtf8(words), image) >= 0) continue;
        image.push_back(0xFF);
        meanings.push_back(utf8FromCalculator(programPlainText(image)));
    }
    return meanings;
}

// The text as tokens that stand by themselves, in the meaning that has the fewest of them; false where it is none.
bool readAsTokens(const std::string &utf8, ViewLine &line) {
    std::size_t fewest = 0;
    for (const std::string &meaning : meaningsOf(utf8)) {
        LenientText text = lenientTextOf(meaning);
        const ViewLine typed = lenientLine(text, meaning);
        const LineReading reading = readLine(typed, true);
        const std::size_t count = reading.tokens.size();
        if (reading.faultAt >= 0 || count == 0 || (fewest > 0 && count >= fewest)) continue;
        fewest = count;
        line = keptLine(typed, reading);
    }
    return fewest > 0;
}

// By lines, whatever the expression itself says first; fault tells of that alone.
std::unique_ptr<RE2> compileExpression(const SearchQuery &query, std::string &fault) {
    RE2::Options options;
    options.set_case_sensitive(query.matchCase);
    options.set_log_errors(false);
    options.set_never_nl(true);
    options.set_max_mem(expressionMemory);
    auto expression = std::make_unique<RE2>("(?m)" + query.pattern, options);
    if (expression->ok()) return expression;
    const RE2 alone(query.pattern, options);
    fault = alone.ok() ? expression->error() : alone.error();
    return nullptr;
}

struct Stretch {
    std::size_t from, end;  // bytes of the text
};

std::vector<Stretch> wordsIn(const CompiledSearch &search, const std::string &text) {
    std::vector<Stretch> found;
    const std::string folded = search.query.matchCase ? std::string() : foldCase(text);
    const std::string &searched = search.query.matchCase ? text : folded;
    for (std::size_t at = searched.find(search.folded); at != std::string::npos;
         at = searched.find(search.folded, at + search.folded.size()))
        found.push_back({at, at + search.folded.size()});
    return found;
}

std::vector<Stretch> tokensIn(const CompiledSearch &search, const SearchText &text) {
    std::vector<Stretch> found;
    for (auto at = text.tokens.begin();;) {
        at = std::search(at, text.tokens.end(), search.tokens.begin(), search.tokens.end());
        if (at == text.tokens.end()) return found;
        const auto first = static_cast<std::size_t>(at - text.tokens.begin());
        const std::size_t behind = first + search.tokens.size();
        found.push_back({text.starts[first], behind < text.starts.size() ? text.starts[behind] : text.text.size()});
        at += static_cast<std::ptrdiff_t>(search.tokens.size());
    }
}

std::vector<Stretch> expressionIn(const RE2 &expression, const std::string &text) {
    std::vector<Stretch> found;
    re2::StringPiece match;
    for (std::size_t at = 0; at <= text.size();) {
        if (!expression.Match(text, at, text.size(), RE2::UNANCHORED, &match, 1)) break;
        const auto from = static_cast<std::size_t>(match.data() - text.data());
        if (match.size() > 0) found.push_back({from, from + match.size()});
        at = from + match.size() + (match.empty() ? 1 : 0);
    }
    return found;
}

std::size_t charactersIn(std::string_view utf8) {
    const auto isFirst = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; };
    return static_cast<std::size_t>(std::ranges::count_if(utf8, isFirst));
}

struct PlaceMaker {
    ItemId id = 0;
    const std::string &text;
    int line = 0;
    std::size_t lineStart = 0, counted = 0;

    // Stretches come by rising places. One that reaches over a line's end isn't counted: nothing replaces line ends.
    std::optional<FoundPlace> placeOf(const Stretch &stretch) {
        for (; counted < stretch.from; counted++) {
            if (text[counted] != '\n') continue;
            line++;
            lineStart = counted + 1;
        }
        const std::size_t lineEnd = std::min(text.find('\n', stretch.from), text.size());
        if (stretch.end > lineEnd) return std::nullopt;
        const std::string_view all = text;
        FoundPlace place{
            .id = id, .line = line, .from = 0, .size = 0, .text = text.substr(lineStart, lineEnd - lineStart)};
        place.from = charactersIn(all.substr(lineStart, stretch.from - lineStart));
        place.size = charactersIn(all.substr(stretch.from, stretch.end - stretch.from));
        return place;
    }
};

std::vector<Stretch> stretchesIn(const CompiledSearch &search, const SearchText &text) {
    switch (search.query.how) {
        case SearchHow::words:
            return wordsIn(search, text.text);
        case SearchHow::tokens:
            return tokensIn(search, text);
        case SearchHow::expression:
            return expressionIn(*search.expression, text.text);
    }
    return {};
}

void searchName(const CompiledSearch &search, const StoredItem &item, std::vector<FoundPlace> &places) {
    const SearchText name{.text = utf8FromCalculator(item.name), .tokens = {}, .starts = {}};
    PlaceMaker maker{.id = item.id, .text = name.text};
    for (const Stretch &stretch : search.query.how == SearchHow::expression
                                      ? expressionIn(*search.expression, name.text)
                                      : wordsIn(search, name.text)) {
        if (auto place = maker.placeOf(stretch)) {
            place->line = -1;
            places.push_back(std::move(*place));
            return;
        }
    }
}

// What stands in the place of this one.
std::string replacementAt(const CompiledSearch &search, const FoundPlace &place, const std::string &by) {
    if (search.query.how != SearchHow::expression) return by;
    std::size_t from = 0;
    for (std::size_t characters = 0; from < place.text.size(); from++) {
        if ((static_cast<unsigned char>(place.text[from]) & 0xC0) != 0x80 && characters++ == place.from) break;
    }
    re2::StringPiece groups[groupLimit];
    const int count = std::min(groupLimit, search.expression->NumberOfCapturingGroups() + 1);
    std::string rewritten, fault;
    if (!search.expression->CheckRewriteString(by, &fault)) return by;
    if (!search.expression->Match(place.text, from, place.text.size(), RE2::ANCHOR_START, groups, count)) return by;
    return search.expression->Rewrite(&rewritten, by, groups, count) ? rewritten : by;
}

void putIn(ViewLine &line, const FoundPlace &place, const ViewLine &by) {
    const auto from = static_cast<std::ptrdiff_t>(place.from), end = from + static_cast<std::ptrdiff_t>(place.size);
    line.text.replace(place.from, place.size, by.text);
    line.origins.erase(line.origins.begin() + from, line.origins.begin() + end);
    line.origins.insert(line.origins.begin() + from, by.origins.begin(), by.origins.end());
}

void replaceIn(const CompiledSearch &search, ViewLine &line, const FoundPlace &place, const std::string &by) {
    ViewLine in;
    const std::string text = replacementAt(search, place, by);
    if (search.query.how != SearchHow::tokens || !readAsTokens(text, in)) in = typedLine(text);
    putIn(line, place, in);
}

// UTF-8; nothing for a line that can't be read as a program's.
std::optional<std::string> shownText(const ViewLine &line) {
    const LineReading reading = readLine(line, true);
    if (reading.faultAt >= 0) return std::nullopt;
    return withPlainPlus(utf8FromCalculator(shownLine(line, reading).text));
}

bool fitsLine(const FoundPlace &place, const std::vector<ViewLine> &lines) {
    if (place.line < 0 || place.line >= std::ssize(lines)) return false;
    return place.from + place.size <= lines[static_cast<std::size_t>(place.line)].text.size();
}

}  // namespace

Search compileSearch(const SearchQuery &query, std::string &fault) {
    fault.clear();
    if (query.pattern.empty() || query.pattern.size() > searchPatternLimit) return nullptr;
    auto search = std::make_shared<CompiledSearch>();
    search->query = query;
    search->query.pattern = withPlainPlus(query.pattern);
    search->folded = query.matchCase ? search->query.pattern : foldCase(search->query.pattern);
    if (query.how == SearchHow::tokens) {
        ViewLine line;
        if (!readAsTokens(query.pattern, line)) return nullptr;
        search->tokens = tokensOf(line);
        if (search->tokens.empty()) return nullptr;
    }
    if (query.how == SearchHow::expression) {
        search->expression = compileExpression(search->query, fault);
        if (!search->expression) return nullptr;
    }
    return search;
}

bool searchItem(const CompiledSearch &search, const StoredItem &item, std::vector<FoundPlace> &places) {
    if (search.query.inNames) searchName(search, item, places);
    if (!isTextKind(item.kind)) return places.size() < searchPlaceLimit;
    const SearchText text = searchTextOf(item.data, search.query.how == SearchHow::tokens);
    PlaceMaker maker{.id = item.id, .text = text.text};
    for (const Stretch &stretch : stretchesIn(search, text)) {
        if (places.size() >= searchPlaceLimit) return false;
        if (auto place = maker.placeOf(stretch)) places.push_back(std::move(*place));
    }
    return places.size() < searchPlaceLimit;
}

std::vector<FoundPlace> placesWithin(const SearchStretch &stretch, const StoredItem &item,
                                     const std::vector<FoundPlace> &places) {
    const std::vector<ViewLine> lines = viewLines(item.data);
    const auto last = std::ssize(lines) - 1 - stretch.linesBehind;
    std::vector<FoundPlace> within;
    for (const FoundPlace &place : places) {
        if (place.line < stretch.linesAhead || place.line > last || place.line >= std::ssize(lines)) continue;
        const std::size_t size = lines[static_cast<std::size_t>(place.line)].text.size();
        const bool isAhead = place.line == stretch.linesAhead && place.from < stretch.charactersAhead;
        const bool isBehind = place.line == last && place.from + place.size + stretch.charactersBehind > size;
        if (!isAhead && !isBehind) within.push_back(place);
    }
    return within;
}

std::vector<ItemId> searchedItems(ItemId folder) {
    std::map<ItemId, ItemEntry> entries;
    for (ItemEntry &entry : storeListItems()) entries.emplace(entry.id, std::move(entry));
    const auto liesIn = [&](const ItemEntry &entry) {
        ItemId parent = entry.parent;
        for (std::size_t steps = 0; steps <= entries.size(); steps++) {
            if (parent == folder) return true;
            const auto above = entries.find(parent);
            if (above == entries.end() || above->second.kind == kind::temporaryFolder) return false;
            parent = above->second.parent;
        }
        return folder == rootId;
    };
    std::vector<ItemId> ids;
    for (const auto &[id, entry] : entries)
        if (!isFolderKind(entry.kind) && liesIn(entry)) ids.push_back(id);
    return ids;
}

ReplacedProgram replacePlaces(const CompiledSearch &search, const StoredItem &item,
                              const std::vector<FoundPlace> &places, const std::string &by) {
    ReplacedProgram replaced;
    std::vector<ViewLine> lines = viewLines(item.data);
    // From the last to the first, so that the places ahead stay where they are.
    for (auto place = places.rbegin(); place != places.rend(); ++place)
        if (fitsLine(*place, lines)) replaceIn(search, lines[static_cast<std::size_t>(place->line)], *place, by);
    bool readable = true;
    for (const FoundPlace &place : places) {
        if (!fitsLine({.id = {}, .line = place.line}, lines)) continue;
        const auto shown = shownText(lines[static_cast<std::size_t>(place.line)]);
        readable = readable && shown;
        replaced.lines.push_back(shown.value_or(std::string()));
    }
    if (readable) imageOfViewLines(lines, true, replaced.image);
    return replaced;
}

std::vector<std::string> previewPlaces(const CompiledSearch &search, const StoredItem &item,
                                       const std::vector<FoundPlace> &places, const std::string &by) {
    std::vector<std::string> becoming;
    const std::vector<ViewLine> lines = viewLines(item.data);
    for (const FoundPlace &place : places) {
        becoming.emplace_back();
        if (!fitsLine(place, lines)) continue;
        ViewLine line = lines[static_cast<std::size_t>(place.line)];
        replaceIn(search, line, place, by);
        becoming.back() = shownText(line).value_or(std::string());
    }
    return becoming;
}

ReplaceResult replaceEverywhere(const CompiledSearch &search, const std::vector<FoundPlace> &places,
                                const std::string &by, const std::string &stepName, ItemId &culprit) {
    std::map<ItemId, std::vector<FoundPlace>> byItem;
    for (const FoundPlace &place : places)
        if (place.line >= 0) byItem[place.id].push_back(place);
    std::vector<std::pair<ItemId, Bytes>> images;
    for (const auto &[id, wanted] : byItem) {
        culprit = id;
        StoredItem item;
        if (!storeReadEntry(id) || !storeReadItem(id, item)) return ReplaceResult::changed;
        std::vector<FoundPlace> there;
        searchItem(search, item, there);
        const auto isThere = [&](const FoundPlace &place) { return std::ranges::find(there, place) != there.end(); };
        if (!std::ranges::all_of(wanted, isThere)) return ReplaceResult::changed;
        ReplacedProgram replaced = replacePlaces(search, item, wanted, by);
        if (replaced.image.empty()) return ReplaceResult::unreadable;
        images.emplace_back(id, std::move(replaced.image));
    }
    const UndoGroup group(UndoAct::edit, stepName);
    for (auto &[id, image] : images) {
        culprit = id;
        if (!writeProgramImage(id, std::move(image))) return ReplaceResult::failed;
    }
    return ReplaceResult::done;
}

}  // namespace numalink
