// numalink-cli export
#include "exchange/export/export.h"

#include <memory>

#include "cli/commands.h"
#include "cli/export_target.h"
#include "cli/library_session.h"

namespace numalink {

namespace {

struct ExportOptions {
    std::string library;
    std::string target;
    std::string file;
    std::vector<std::string> items;
    bool replace = false;
};

int runExport(const ExportOptions &options) {
    const LibrarySession session(options.library);
    if (!session.open) return exitFailed;
    ExportJob job{
        .path = options.file, .ids = {}, .target = targetOfOption(options.target), .mayReplace = options.replace};
    for (const std::string &item : options.items) {
        job.ids.push_back(findItem(item));
        if (job.ids.back() == noItem) return commandFailed("no item " + item);
    }
    if (!exportItems(job)) return exitFailed;
    return exitDone;
}

}  // namespace

CommandRun declareExport(CLI::App &command) {
    const auto options = std::make_shared<ExportOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat")->required();
    command.add_option("--to", options->target, targetOptionHelp)->required()->check(CLI::IsMember(targetOptions()));
    command.add_option("FILE", options->file, "The file to write")->required();
    command.add_option("ITEM", options->items, "Ids, or paths such as /Programs/SNAKE")->required();
    command.add_flag("--replace", options->replace, "Replace a file that exists");
    return [options] { return runExport(*options); };
}

}  // namespace numalink
