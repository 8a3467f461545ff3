// numalink-cli export
#include "exchange/export/export.h"

#include <memory>

#include "cli/commands.h"
#include "cli/export_target.h"
#include "cli/library_session.h"
#include "cli/text_folder.h"

namespace numalink {

namespace {

struct ExportOptions {
    std::string library;
    std::string target;
    std::string file;
    std::vector<std::string> items;
    std::string texts;
    bool replace = false, each = false;
};

int runExport(const ExportOptions &options) {
    const LibrarySession session(options.library);
    if (!session.open) return exitFailed;
    if (!options.texts.empty()) return exportTexts(options.texts);
    if (options.items.empty()) return commandFailed("export takes --to, a file and items, or --text and a folder");
    ExportJob job{
        .path = options.file, .ids = {}, .target = targetOfOption(options.target), .mayReplace = options.replace};
    for (const std::string &item : options.items) {
        job.ids.push_back(findItem(item));
        if (job.ids.back() == noItem) return commandFailed("no item " + item);
    }
    return (options.each ? exportEach(job) : exportItems(job)) ? exitDone : exitFailed;
}

}  // namespace

CommandRun declareExport(CLI::App &command) {
    const auto options = std::make_shared<ExportOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat")->required();
    auto *target = command.add_option("--to", options->target, targetOptionHelp);
    target->check(CLI::IsMember(targetOptions()));
    auto *file = command.add_option("FILE", options->file, "The file to write");
    command.add_option("ITEM", options->items, "Ids, or paths such as /Programs/SNAKE");
    auto *each =
        command.add_flag("--each", options->each, "FILE is a folder, and each item gets a file of its own in it");
    auto *replace = command.add_flag("--replace", options->replace, "Replace files that exist");
    command
        .add_option("--text", options->texts,
                    "Bring this folder of texts in step with the programs of the library, instead of writing a file. "
                    "Exit status: 1 where something was told that stays on both sides")
        ->excludes(target)
        ->excludes(file)
        ->excludes(each)
        ->excludes(replace);
    return [options] { return runExport(*options); };
}

}  // namespace numalink
