// numalink-cli list
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "calculator/charset.h"
#include "cli/commands.h"
#include "cli/hex_text.h"
#include "cli/library_session.h"
#include "cli/terminal_ui.h"
#include "store/item_store.h"

namespace numalink {

namespace {

struct ListOptions {
    std::string library;
    bool json = false;
};

int listAsJson() {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    int status = exitDone;
    for (const ItemEntry &entry : storeListItems()) {
        StoredItem item;
        if (!storeReadItem(entry.id, item)) {
            status = exitFailed;
            continue;
        }
        list.push_back({{"id", item.id},
                        {"parent", item.parent},
                        {"kind", item.kind},
                        {"name", utf8FromCalculator(item.name)},
                        {"flags", item.flags},
                        {"head", hexFromBytes(item.head)},
                        {"data", hexFromBytes(item.data)}});
    }
    std::printf("%s\n", list.dump(1).c_str());
    return status;
}

int listAsText() {
    std::printf("%6s %6s %5s %7s %7s  name\n", "id", "parent", "kind", "head", "data");
    for (const ItemEntry &entry : storeListItems())
        std::printf("%6u %6u %5u %7u %7u  %s\n", entry.id, entry.parent, entry.kind, entry.headSize, entry.dataSize,
                    printableName(entry.name).c_str());
    return exitDone;
}

}  // namespace

CommandRun declareList(CLI::App &command) {
    const auto options = std::make_shared<ListOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat")->required();
    command.add_flag("--json", options->json, "As JSON, with both payloads in hexadecimal");
    return [options] {
        const LibrarySession session(options->library);
        if (!session.open) return exitFailed;
        return options->json ? listAsJson() : listAsText();
    };
}

}  // namespace numalink
