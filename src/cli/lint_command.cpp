// numalink-cli lint: what is wrong in the programs of a library.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>

#include "calculator/charset.h"
#include "cli/commands.h"
#include "cli/library_session.h"
#include "cli/terminal_ui.h"
#include "language/folder_context.h"
#include "language/program_text.h"
#include "search/search.h"
#include "store/item_store.h"
#include "store/items/item_path.h"

namespace numalink {

namespace {

struct LintOptions {
    std::string library;
    std::vector<std::string> items;
    bool json = false;
};

constexpr const char *severityWords[] = {"error", "warning", "hint"};

std::string pathOf(const ItemEntry &entry) {
    std::string path;
    for (const std::string &name : storePathOf(entry)) path += "/" + printableName(name);
    return path;
}

// The item itself if it is a program, and the programs in a folder, however deep; each once.
bool findPrograms(const std::vector<std::string> &items, std::vector<ItemEntry> &programs) {
    std::vector<ItemId> found = items.empty() ? searchedItems(rootId) : std::vector<ItemId>();
    for (const std::string &item : items) {
        const ItemId id = findItem(item);
        const auto entry = id == noItem ? std::nullopt : storeReadEntry(id);
        if (!entry) {
            commandFailed("no item \"" + item + "\" in this library; \"list\" tells ids and names");
            return false;
        }
        if (!isTextKind(entry->kind) && !isFolderKind(entry->kind)) {
            commandFailed("\"" + item + "\" is no program and no folder");
            return false;
        }
        const std::vector<ItemId> within = isFolderKind(entry->kind) ? searchedItems(id) : std::vector{id};
        found.insert(found.end(), within.begin(), within.end());
    }
    std::set<ItemId> taken;
    for (const ItemId id : found) {
        const auto entry = storeReadEntry(id);
        if (entry && isTextKind(entry->kind) && taken.insert(id).second) programs.push_back(*entry);
    }
    return true;
}

nlohmann::ordered_json jsonOf(const Problem &problem, const TextPlace &place) {
    nlohmann::ordered_json told = {{"line", place.line + 1},
                                   {"column", place.character + 1},
                                   {"severity", severityWords[static_cast<std::size_t>(severityOf(problem.kind))]},
                                   {"kind", problemId(problem.kind)},
                                   {"text", problemText(problem)},
                                   {"at", problem.at},
                                   {"length", problem.length}};
    if (problem.mend)
        told["mend"] = {{"at", problem.mend->at}, {"length", problem.mend->length}, {"bytes", problem.mend->bytes}};
    return told;
}

// How many were told.
std::size_t lintProgram(const StoredItem &item, const std::string &path, bool json, nlohmann::ordered_json &list) {
    const std::vector<Problem> problems = problemsOf(structureOf(item.data), problemContextOf(item.id));
    const ProgramText text = programText(item.data);
    nlohmann::ordered_json told = nlohmann::ordered_json::array();
    for (const Problem &problem : problems) {
        const TextPlace place = placeOfByte(text, problem.at);
        if (json) {
            told.push_back(jsonOf(problem, place));
            continue;
        }
        std::printf("%s:%zu:%zu: %s: %s [%s]\n", path.c_str(), place.line + 1, place.character + 1,
                    severityWords[static_cast<std::size_t>(severityOf(problem.kind))], problemText(problem).c_str(),
                    problemId(problem.kind));
    }
    if (!problems.empty()) list.push_back({{"id", item.id}, {"path", path}, {"problems", told}});
    return problems.size();
}

int runLint(const LintOptions &options) {
    const LibrarySession session(options.library);
    if (!session.open || !session.tokens) return exitFailed;
    std::vector<ItemEntry> programs;
    if (!findPrograms(options.items, programs)) return exitFailed;
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    int status = exitDone;
    for (const ItemEntry &entry : programs) {
        StoredItem item;
        if (!storeReadItem(entry.id, item))
            status = exitFailed;  // the others are told all the same
        else if (lintProgram(item, pathOf(entry), options.json, list) > 0)
            status = std::max(status, exitShown);
    }
    if (options.json) std::printf("%s\n", list.dump(1).c_str());
    return status;
}

}  // namespace

CommandRun declareLint(CLI::App &command) {
    const auto options = std::make_shared<LintOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat")->required();
    command.add_option("ITEM", options->items,
                       "Programs or folders, as ids or paths; all programs when there are none");
    command.add_flag("--json", options->json, "As JSON, with the places in bytes and the mends that are sure");
    command.footer(
        "Prints PATH:LINE:COLUMN: SEVERITY: TEXT [KIND]. Exit status: 0 nothing to tell, 1 problems, 2 not done.");
    return [options] { return runLint(*options); };
}

}  // namespace numalink
