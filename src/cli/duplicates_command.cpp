// numalink-cli duplicates
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "calculator/charset.h"
#include "cli/commands.h"
#include "cli/library_session.h"
#include "cli/terminal_ui.h"
#include "search/duplicates.h"

namespace numalink {

namespace {

struct DuplicatesOptions {
    std::string library;
    bool json = false;
};

int runDuplicates(const DuplicatesOptions &options) {
    const LibrarySession session(options.library);
    if (!session.open) return exitFailed;
    const std::vector<Duplicates> found = findDuplicates();
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Duplicates &group : found) {
        const char *likeness = group.likeness == Likeness::bytes ? "same" : "same but for colours and comments";
        nlohmann::ordered_json items = nlohmann::ordered_json::array();
        if (!options.json) std::printf("%s:\n", likeness);
        for (const ItemId id : group.ids) {
            const auto entry = storeReadEntry(id);
            if (!entry) continue;
            if (options.json)
                items.push_back({{"id", id}, {"name", utf8FromCalculator(entry->name)}});
            else
                std::printf("%6u  %s\n", id, printableName(entry->name).c_str());
        }
        list.push_back({{"likeness", group.likeness == Likeness::bytes ? "same" : "loose"}, {"items", items}});
    }
    if (options.json) std::printf("%s\n", list.dump(1).c_str());
    return found.empty() ? exitDone : exitShown;
}

}  // namespace

CommandRun declareDuplicates(CLI::App &command) {
    const auto options = std::make_shared<DuplicatesOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat")->required();
    command.add_flag("--json", options->json, "As JSON");
    command.footer("Exit status: 0 none, 1 some, 2 not done.");
    return [options] { return runDuplicates(*options); };
}

}  // namespace numalink
