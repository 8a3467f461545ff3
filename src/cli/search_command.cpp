// numalink-cli search: places in the programs and names of a library, and replacing them.
#include <cstdio>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "calculator/charset.h"
#include "cli/commands.h"
#include "cli/library_session.h"
#include "cli/terminal_ui.h"
#include "search/search.h"

namespace numalink {

namespace {

using Json = nlohmann::ordered_json;

struct SearchOptions {
    std::string library, pattern, how = "words", folder;
    std::optional<std::string> by;
    bool matchCase = false, names = false, apply = false, json = false;
};

const std::map<std::string, SearchHow> hows = {
    {"words", SearchHow::words}, {"tokens", SearchHow::tokens}, {"regex", SearchHow::expression}};

// The places of an item, and with a replacement what their lines become.
void printPlaces(const StoredItem &item, const std::vector<FoundPlace> &places, const std::vector<std::string> &lines) {
    std::size_t next = 0;
    for (const FoundPlace &place : places) {
        const std::string name = printableName(item.name);
        if (place.line < 0) {
            std::printf("%u %s\n", item.id, name.c_str());
            continue;
        }
        std::printf("%u %s:%d: %s\n", item.id, name.c_str(), place.line + 1, onOneLine(place.text).c_str());
        if (next < lines.size())
            std::printf("  -> %s\n", lines[next].empty() ? "(no program)" : onOneLine(lines[next]).c_str());
        next++;
    }
}

void addPlaces(Json &list, const StoredItem &item, const std::vector<FoundPlace> &places,
               const std::vector<std::string> &lines) {
    std::size_t next = 0;
    for (const FoundPlace &place : places) {
        Json record = {{"id", item.id}, {"name", utf8FromCalculator(item.name)}};
        if (place.line >= 0) record["line"] = place.line + 1;
        record["from"] = place.from;
        record["size"] = place.size;
        record["text"] = place.text;
        if (place.line >= 0 && next < lines.size()) record["becomes"] = lines[next];
        if (place.line >= 0) next++;
        list.push_back(std::move(record));
    }
}

const char *wordingOf(ReplaceResult result) {
    switch (result) {
        case ReplaceResult::changed:
            return "it has changed meanwhile";
        case ReplaceResult::unreadable:
            return "a line would be no program";
        default:
            return "it can't be written";
    }
}

int replaceAll(const CompiledSearch &search, const std::vector<FoundPlace> &places, const SearchOptions &options) {
    ItemId culprit = noItem;
    const ReplaceResult result = replaceEverywhere(search, places, *options.by, "", culprit);
    if (result == ReplaceResult::done) return exitDone;
    return commandFailed("nothing is replaced: item " + std::to_string(culprit) + ": " + wordingOf(result));
}

int runSearch(const SearchOptions &options) {
    const LibrarySession session(options.library);
    if (!session.open) return exitFailed;
    std::string fault;
    const Search search = compileSearch({.pattern = options.pattern,
                                         .how = hows.at(options.how),
                                         .matchCase = options.matchCase,
                                         .inNames = options.names},
                                        fault);
    if (!search)
        return commandFailed("\"" + options.pattern + "\" can't be searched for" + (fault.empty() ? "" : ": " + fault));
    const ItemId folder = options.folder.empty() ? rootId : findItem(options.folder);
    if (folder == noItem) return commandFailed("no folder \"" + options.folder + "\"");
    std::vector<FoundPlace> all;
    Json list = Json::array();
    bool goesOn = true;
    for (const ItemId id : searchedItems(folder)) {
        StoredItem item;
        if (!goesOn || !storeReadItem(id, item)) continue;
        std::vector<FoundPlace> places;
        goesOn = searchItem(*search, item, places);
        std::vector<std::string> lines;
        if (options.by && !places.empty()) {
            std::vector<FoundPlace> inText;
            for (const FoundPlace &place : places)
                if (place.line >= 0) inText.push_back(place);
            lines = replacePlaces(*search, item, inText, *options.by).lines;
        }
        if (options.json)
            addPlaces(list, item, places, lines);
        else
            printPlaces(item, places, lines);
        all.insert(all.end(), places.begin(), places.end());
        goesOn = goesOn && all.size() < searchPlaceLimit;
    }
    if (options.json) std::printf("%s\n", list.dump(1, ' ', false, Json::error_handler_t::replace).c_str());
    if (!goesOn) std::fprintf(stderr, "numalink-cli: there may be more places than these\n");
    if (options.apply) return replaceAll(*search, all, options);
    return all.empty() ? exitShown : exitDone;
}

}  // namespace

CommandRun declareSearch(CLI::App &command) {
    const auto options = std::make_shared<SearchOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat")->required();
    command.add_option("PATTERN", options->pattern, "What to look for, UTF-8")->required();
    command
        .add_option(
            "--as", options->how,
            "\"words\" as the text shows them (as without it), \"tokens\" with the bytes that a program has for "
            "them, or \"regex\", an expression of RE2 within a line")
        ->check(CLI::IsMember(hows));
    command.add_option("--in", options->folder, "Only in this folder: an id, or a path");
    command.add_flag("--match-case", options->matchCase, "A to Z and a to z differ");
    command.add_flag("--names", options->names, "In the names of items, too");
    auto *by = command.add_option("--replace-by", options->by,
                                  "Show what lines become with this in its place; \\1 is a group");
    command.add_flag("--apply", options->apply, "And store them")->needs(by);
    command.add_flag("--json", options->json, "As JSON: lines from 1, characters from 0");
    command.footer("Exit status: 0 found, 1 nothing found, 2 not done.");
    return [options] { return runSearch(*options); };
}

}  // namespace numalink
