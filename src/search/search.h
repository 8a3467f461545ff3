// Looking for words, tokens or a regular expression in programs and names, and putting something else in their place.
// Any thread once the tables are loaded; what is compiled may be shared.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "store/item_store.h"
#include "text/view_runs.h"

namespace numalink {

inline constexpr std::size_t searchPatternLimit = 1000;  // bytes
inline constexpr std::size_t searchPlaceLimit = 10'000;  // places that one search gives at most

enum class SearchHow : std::uint8_t {
    words,      // as the text shows it
    tokens,     // the bytes that a program would have for it
    expression  // of RE2, within a line: its time grows with the length of the text alone
};

struct SearchQuery {
    std::string pattern;  // UTF-8
    SearchHow how = SearchHow::words;
    bool matchCase = false;  // else A to Z count as a to z; tokens have no case
    bool inNames = false;    // of items, too
};

struct FoundPlace {
    ItemId id = noItem;
    int line = -1;                   // from 0; -1 in the item's name
    std::size_t from = 0, size = 0;  // characters
    std::string text = {};           // of the line or the name, UTF-8
    bool operator==(const FoundPlace &) const = default;
};

struct CompiledSearch;
using Search = std::shared_ptr<const CompiledSearch>;

// Null for what can't be searched for; fault then tells why (UTF-8, in the words of the expression's reader, which are
// English; empty where nothing is wanted, or where it is no token).
Search compileSearch(const SearchQuery &query, std::string &fault);

// Appends the places of one item, in order; places that overlap count once. False when places is full.
bool searchItem(const CompiledSearch &search, const StoredItem &item, std::vector<FoundPlace> &places);

// A stretch of an item's text, by what lies ahead of it and behind it: so it stays one while places in it are replaced.
struct SearchStretch {
    int linesAhead = 0;
    std::size_t charactersAhead = 0;  // of its first line
    int linesBehind = 0;
    std::size_t charactersBehind = 0;  // of its last line
};
// Those places of a program that lie within the stretch whole, and none of its name.
std::vector<FoundPlace> placesWithin(const SearchStretch &stretch, const StoredItem &item,
                                     const std::vector<FoundPlace> &places);

// The items to be searched in a folder and all below it, rootId for the whole library; what waits in the temporary
// folder isn't among them.
std::vector<ItemId> searchedItems(ItemId folder);

// A program with the places replaced: in a regular expression "\1" stands for its first group. What comes in is read as
// if typed; with tokens it is tokens.
struct ReplacedProgram {
    Bytes image;                     // empty when a line can't be read as a program
    std::vector<std::string> lines;  // for each place: its line as it becomes, UTF-8; empty where it can't be read
};
// places are those of this item, as a search found them.
ReplacedProgram replacePlaces(const CompiledSearch &search, const StoredItem &item,
                              const std::vector<FoundPlace> &places, const std::string &by);

// Of each place its line as it would become with that place alone replaced, UTF-8; empty where it can't be read, or
// where the place is none of the text. The text is read once, however many places there are.
std::vector<std::string> previewPlaces(const CompiledSearch &search, const StoredItem &item,
                                       const std::vector<FoundPlace> &places, const std::string &by);

enum class ReplaceResult {
    done,
    changed,     // an item isn't as it was searched
    unreadable,  // a line would be no program
    failed       // told
};
// Replaces places of any items, as one step that can be taken back, or nothing. culprit is the item that kept it from
// being done. stepName is what the step is called (calculator codes).
ReplaceResult replaceEverywhere(const CompiledSearch &search, const std::vector<FoundPlace> &places,
                                const std::string &by, const std::string &stepName, ItemId &culprit);

}  // namespace numalink
