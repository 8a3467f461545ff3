// numalink-cli import
#include <algorithm>
#include <map>
#include <memory>

#include "cli/commands.h"
#include "cli/library_session.h"
#include "cli/terminal_ui.h"
#include "cli/text_folder.h"
#include "exchange/import/import.h"
#include "exchange/import/import_formats.h"
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
};

// Whether there is an item with an id from this one on that isn't still waiting in the temporary folder.
bool cameSince(ItemId first) {
    const ItemId waiting = storeTempFolder();
    return std::ranges::any_of(storeListItems(), [&](const ItemEntry &entry) {
        return entry.id >= first && !isFolderKind(entry.kind) && entry.parent != waiting;
    });
}
const std::map<std::string, ImportTaken> existingOptions = {
    {"keep", ImportTaken::keepBoth}, {"replace", ImportTaken::replace}, {"skip", ImportTaken::skip}};

int runImport(const ImportOptions &options) {
    const LibrarySession session(options.library, WhenAbsent::make);
    if (!session.open) return exitFailed;
    if (!session.tokens) return commandFailed("casio.ptt beside the program can't be read, so nothing is imported");
    if (!options.texts.empty()) return importTexts(options.texts);
    if (options.files.empty()) return commandFailed("import takes files, or --text and a folder");
    terminalRasterAnswer(options.raster);
    terminalImportTaken(existingOptions.at(options.existing));
    if (options.into == "standard") {
        terminalImportAnswer(ImportAction::standardFolders, "");
    } else if (!options.into.empty()) {
        terminalImportAnswer(ImportAction::oneFolder, options.into);
    }
    const ItemId first = storeNextId();
    for (const std::string &file : options.files) {
        if (options.files.size() > 1) terminalSubject(file);
        importFile(file, importBaseName(file));
    }
    const bool allMaySkip = existingOptions.at(options.existing) == ImportTaken::skip && terminalBoxCount() == 0;
    return allMaySkip || cameSince(first) ? exitDone : exitFailed;
}

}  // namespace

CommandRun declareImport(CLI::App &command) {
    const auto options = std::make_shared<ImportOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat, made when absent")->required();
    command.add_option("FILE", options->files, "The files to read: " + importFormatNames());
    command.add_option("--text", options->texts,
                       "Bring the programs of the library in step with this folder of texts, which an export made");
    command.add_option("--into", options->into,
                       "\"standard\": every item into the folder of its kind; else the name of one folder for all. "
                       "Without it, one folder named as the file for two items or more, else \"standard\"");
    command
        .add_option("--existing", options->existing,
                    "Where the folder has an item of the same kind and name: \"keep\" both (as without it), "
                    "\"replace\" the old one, or \"skip\" the new one")
        ->check(CLI::IsMember(existingOptions));
    command.add_option("--raster", options->raster, "How bitmaps become pictures: \"image\" or \"sharp\"")
        ->check(CLI::IsMember({"image", "sharp"}));
    command.footer("Exit status: 0 done, 1 done with messages, 2 nothing imported.");
    return [options] { return runImport(*options); };
}

}  // namespace numalink
