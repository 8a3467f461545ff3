// numalink-cli show
#include <algorithm>
#include <cstdio>
#include <memory>

#include "calculator/charset.h"
#include "cli/commands.h"
#include "cli/library_session.h"
#include "store/item_store.h"
#include "text/program_bytes.h"

namespace numalink {

namespace {

struct ShowOptions {
    std::string library;
    std::string item;
};

void showText(ByteView image) {
    std::string text = programPlainText(image);
    std::erase(text, '\r');
    std::printf("%s\n", utf8FromCalculator(text).c_str());
}

int runShow(const ShowOptions &options) {
    const LibrarySession session(options.library);
    if (!session.open) return exitFailed;
    const ItemId id = findItem(options.item);
    StoredItem item;
    if (id == noItem)
        return commandFailed("no item \"" + options.item + "\" in this library; \"list\" tells ids and names");
    if (!storeReadItem(id, item)) return exitFailed;
    if (isTextKind(item.kind)) {
        showText(item.data);
    } else {
        std::printf("%s: kind %u, head of %u bytes, data of %u bytes\n", utf8FromCalculator(item.name).c_str(),
                    item.kind, item.headSize, item.dataSize);
    }
    return exitDone;
}

}  // namespace

CommandRun declareShow(CLI::App &command) {
    const auto options = std::make_shared<ShowOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat")->required();
    command.add_option("ITEM", options->item, "An id, or a path such as /Programs/SNAKE")->required();
    return [options] { return runShow(*options); };
}

}  // namespace numalink
