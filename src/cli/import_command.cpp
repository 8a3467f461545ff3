// numalink-cli import
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>

#include "cli/commands.h"
#include "cli/library_session.h"
#include "cli/terminal_ui.h"
#include "cli/text_folder.h"
#include "exchange/import/import.h"
#include "exchange/import/import_formats.h"
#include "platform/program_folder.h"
#include "store/item_store.h"

namespace numalink {

namespace {

struct ImportOptions {
    std::string library;
    std::vector<std::string> files;
    std::string into;
    std::string existing = "keep";
    std::string raster = "image";
    std::string texts;
    bool replace = false, keepBoth = false, skip = false, dryRun = false;
};

// Whether there is an item with an id from this one on that isn't still waiting in the temporary folder.
bool cameSince(ItemId first) {
    const ItemId waiting = storeTempFolder();
    return std::ranges::any_of(storeListItems(), [&](const ItemEntry &entry) {
        return entry.id >= first && !isFolderKind(entry.kind) && entry.parent != waiting;
    });
}
const std::map<std::string, ArrivalChoice> existingOptions = {
    {"keep", ArrivalChoice::keepBoth}, {"replace", ArrivalChoice::replace}, {"skip", ArrivalChoice::skip}};

ArrivalChoice choiceOf(const ImportOptions &options) {
    if (options.replace) return ArrivalChoice::replace;
    if (options.skip) return ArrivalChoice::skip;
    return options.keepBoth ? ArrivalChoice::keepBoth : existingOptions.at(options.existing);
}

void readFiles(const ImportOptions &options) {
    terminalRasterAnswer(options.raster);
    terminalArrivalChoice(choiceOf(options));
    if (options.into == "standard") {
        terminalImportAnswer(ImportAction::standardFolders, "");
    } else if (!options.into.empty()) {
        terminalImportAnswer(ImportAction::oneFolder, options.into);
    }
    std::vector<FileToImport> files;
    for (const std::string &file : options.files) files.push_back({file, importBaseName(file)});
    ImportWays ways{.alwaysLists = options.dryRun};
    if (files.size() > 1) ways.starts = terminalSubject;
    importFiles(files, ways);
}

struct CopyFolder {
    CopyFolder() {
        std::error_code failure;
        path = (std::filesystem::temp_directory_path(failure) / "numalink-XXXXXX").string();
        if (mkdtemp(path.data()) == nullptr) path.clear();
    }
    ~CopyFolder() {
        std::error_code failure;
        if (!path.empty()) std::filesystem::remove_all(path, failure);
    }
    CopyFolder(const CopyFolder &) = delete;
    CopyFolder &operator=(const CopyFolder &) = delete;

    std::string path;
};

// In a copy of the library, which goes again: the list needs what the files hold, and the library stays as it is.
int listOnly(const ImportOptions &options) {
    const CopyFolder copy;
    if (copy.path.empty()) return commandFailed("no folder for a copy of the library can be made");
    std::error_code failure;
    if (std::filesystem::exists(std::filesystem::path(options.library) / "storage.dat", failure)) {
        const LibrarySession session(options.library);
        if (!session.open || !storeCopyTo(copy.path + "/storage.dat")) return exitFailed;
        std::filesystem::copy_file(settingsFolder() + "settings.xml", copy.path + "/settings.xml", failure);
    }
    const LibrarySession session(copy.path, WhenAbsent::make);
    if (!session.open || !session.tokens) return exitFailed;
    terminalOnlyLists();
    readFiles(options);
    return terminalBoxCount() == 0 ? exitDone : exitFailed;
}

int runImport(const ImportOptions &options) {
    if (options.dryRun && !options.files.empty()) return listOnly(options);
    const LibrarySession session(options.library, WhenAbsent::make);
    if (!session.open) return exitFailed;
    if (!session.tokens) return commandFailed("casio.ptt beside the program can't be read, so nothing is imported");
    if (!options.texts.empty()) return importTexts(options.texts);
    if (options.files.empty()) return commandFailed("import takes files, or --text and a folder");
    const ItemId first = storeNextId();
    readFiles(options);
    const bool allMaySkip = choiceOf(options) == ArrivalChoice::skip && terminalBoxCount() == 0;
    return allMaySkip || cameSince(first) ? exitDone : exitFailed;
}

}  // namespace

CommandRun declareImport(CLI::App &command) {
    const auto options = std::make_shared<ImportOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat, made when absent")->required();
    auto *files = command.add_option("FILE", options->files, "The files to read: " + importFormatNames());
    auto *texts = command.add_option(
        "--text", options->texts,
        "Bring the programs of the library in step with this folder of texts, which an export made. Exit "
        "status: 1 where something was told that stays on both sides, 2 where a text can't be taken "
        "in");
    texts->excludes(files);
    command.add_option("--into", options->into,
                       "\"standard\": every item into the folder of its kind; else the name of one folder for all. "
                       "Without it, one folder named as the file for two items or more, else \"standard\"");
    auto *existing = command.add_option("--existing", options->existing,
                                        "Where the folder has an item of the same kind and name: \"keep\" both, the "
                                        "new one under a free name (as without it), \"replace\" the old one, or "
                                        "\"skip\" the new one");
    existing->check(CLI::IsMember(existingOptions));
    auto *replace = command.add_flag("--replace", options->replace, "The same as --existing replace");
    auto *keepBoth = command.add_flag("--keep-both", options->keepBoth, "The same as --existing keep");
    auto *skip = command.add_flag("--skip", options->skip, "The same as --existing skip");
    replace->excludes(existing)->excludes(keepBoth)->excludes(skip);
    keepBoth->excludes(existing)->excludes(skip);
    skip->excludes(existing);
    command
        .add_flag("--dry-run", options->dryRun,
                  "Only list what would come in and what would become of it; the library stays as it is")
        ->excludes(texts);
    command.add_option("--raster", options->raster, "How bitmaps become pictures: \"image\" or \"sharp\"")
        ->check(CLI::IsMember({"image", "sharp"}));
    command.footer("Exit status: 0 done, 1 done with messages, 2 nothing imported.");
    return [options] { return runImport(*options); };
}

}  // namespace numalink
