// numalink-cli share
#include <memory>

#include "cli/commands.h"
#include "cli/library_session.h"
#include "exchange/export/share_page.h"

namespace numalink {

namespace {

struct ShareOptions {
    std::string library;
    std::string item;
    std::string file;
    std::string title;
    bool replace = false;
};

int runShare(const ShareOptions &options) {
    const LibrarySession session(options.library);
    if (!session.open) return exitFailed;
    const ItemId id = findItem(options.item);
    if (id == noItem) return commandFailed("no item " + options.item);
    const PageJob job{.program = id, .title = options.title, .path = options.file, .mayReplace = options.replace};
    return sharePage(job) ? exitDone : exitFailed;
}

}  // namespace

CommandRun declareShare(CLI::App &command) {
    const auto options = std::make_shared<ShareOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat")->required();
    command.add_option("ITEM", options->item, "A program: an id, or a path such as /Games/SNAKE")->required();
    command.add_option("-o,--out", options->file, "The page to write")->required();
    command.add_option("--title", options->title, "The title of the page, in place of the program's name");
    command.add_flag("--replace", options->replace, "Replace a file that exists");
    return [options] { return runShare(*options); };
}

}  // namespace numalink
