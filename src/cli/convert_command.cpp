// numalink-cli convert
#include <algorithm>
#include <memory>

#include "calculator/charset.h"
#include "cli/commands.h"
#include "cli/export_target.h"
#include "cli/library_session.h"
#include "exchange/export/export.h"
#include "exchange/import/bitmap_import.h"
#include "exchange/import/import.h"
#include "exchange/import/import_formats.h"
#include "platform/files.h"
#include "platform/letter_case.h"
#include "platform/picture_file.h"

namespace numalink {

namespace {

struct ConvertOptions {
    std::string in;
    std::string out;
    std::string target;
    std::string raster = "image";
    bool replace = false;
};

ExportTarget targetOf(const ConvertOptions &options) {
    if (!options.target.empty()) return targetOfOption(options.target);
    const std::size_t dot = options.out.size() - std::min<std::size_t>(options.out.size(), 4);
    for (const ExportFormat &format : exportFormats()) {
        if (equalWithoutCase(options.out.substr(dot), format.ending)) return format.target;
    }
    return ExportTarget::none;
}

void addItem(std::vector<OutgoingItem> &items, ImportedItem &item) {
    items.push_back({item.itemKind, item.name, std::move(item.head), std::move(item.data)});
}

// exitDone, exitShown after messages about single records, or exitFailed.
int readFile(ByteView file, const ConvertOptions &options, std::vector<OutgoingItem> &items) {
    const ImportFormat *format = importFormatOf(file);
    if (format != nullptr && format->read != nullptr) {
        ImportReport report;
        const ItemSink sink = [&](ImportedItem &item) {
            addItem(items, item);
            return true;
        };
        format->read(file, sink, report);
        for (const ImportMessage &message : report.messages) commandFailed(message.body);
        return report.messages.empty() ? exitDone : exitShown;
    }
    Surface scaled(calculatorPictureWidth, calculatorPictureHeight);
    const PictureResult result = format != nullptr ? readScaledPicture(file, scaled) : PictureResult::unreadable;
    if (result == PictureResult::tooLarge) return commandFailed(options.in + " has too many pixels");
    if (result != PictureResult::done)
        return commandFailed(options.in + " is no item file and no picture that can be read");
    const RasterType type = options.raster == "sharp" ? RasterType::sharp : RasterType::image;
    ImportedItem item = pictureItem(rasterPicture(scaled, type), calculatorName(importBaseName(options.in)));
    addItem(items, item);
    return exitDone;
}

int runConvert(const ConvertOptions &options) {
    loadTables();
    const ExportTarget target = targetOf(options);
    if (target == ExportTarget::none) return commandFailed("name OUT *.cas or *.cat, or say --to");
    Bytes file;
    if (readWholeFile(options.in, file, importFileLimit) != FileResult::done)
        return commandFailed("can't read " + options.in);
    std::vector<OutgoingItem> items;
    const int status = readFile(file, options, items);
    if (status == exitFailed) return status;
    if (items.empty()) return commandFailed(options.in + " holds no items");
    const ExportJob job{.path = options.out, .ids = {}, .target = target, .mayReplace = options.replace};
    return exportToFile(items, job) ? status : exitFailed;
}

}  // namespace

CommandRun declareConvert(CLI::App &command) {
    const auto options = std::make_shared<ConvertOptions>();
    command.add_option("IN", options->in, "The file to read: " + importFormatNames())->required();
    command.add_option("OUT", options->out, "The file to write; its ending tells its sort")->required();
    command.add_option("--to", options->target, targetOptionHelp)->check(CLI::IsMember(targetOptions()));
    command.add_option("--raster", options->raster, "How a bitmap becomes a picture: \"image\" or \"sharp\"")
        ->check(CLI::IsMember({"image", "sharp"}));
    command.add_flag("--replace", options->replace, "Replace a file that exists");
    return [options] { return runConvert(*options); };
}

}  // namespace numalink
