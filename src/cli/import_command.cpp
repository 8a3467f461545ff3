// numalink-cli import
#include <memory>

#include "cli/commands.h"
#include "cli/library_session.h"
#include "cli/terminal_ui.h"
#include "exchange/import/import.h"
#include "exchange/import/import_formats.h"

namespace numalink {

namespace {

struct ImportOptions {
    std::string library;
    std::vector<std::string> files;
    std::string into;
    std::string raster = "image";
};

int runImport(const ImportOptions &options) {
    const LibrarySession session(options.library);
    if (!session.open) return exitFailed;
    if (!session.tokens) return commandFailed("casio.ptt beside the program can't be read, so nothing is imported");
    terminalRasterAnswer(options.raster);
    if (options.into == "standard") {
        terminalImportAnswer(ImportAction::standardFolders, "");
    } else if (!options.into.empty()) {
        terminalImportAnswer(ImportAction::oneFolder, options.into);
    }
    for (const std::string &file : options.files) {
        if (options.files.size() > 1) terminalSubject(file);
        importFile(file, importBaseName(file));
    }
    return exitDone;
}

}  // namespace

CommandRun declareImport(CLI::App &command) {
    const auto options = std::make_shared<ImportOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat, made when absent")->required();
    command.add_option("FILE", options->files, "The files to read: " + importFormatNames())->required();
    command.add_option("--into", options->into,
                       "\"standard\": every item into the folder of its kind; else the name of one folder for all. "
                       "Without it, one folder named as the file for two items or more, else \"standard\"");
    command.add_option("--raster", options->raster, "How bitmaps become pictures: \"image\" or \"sharp\"")
        ->check(CLI::IsMember({"image", "sharp"}));
    return [options] { return runImport(*options); };
}

}  // namespace numalink
