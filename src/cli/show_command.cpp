// numalink-cli show: a program's text, or any other item as dots.
#include <cstdio>
#include <memory>

#include "calculator/charset.h"
#include "cli/commands.h"
#include "cli/library_session.h"
#include "drawing/bitmap_file.h"
#include "drawing/dot_fonts.h"
#include "drawing/dot_text.h"
#include "drawing/item_picture.h"
#include "store/care/user_files.h"
#include "store/item_store.h"
#include "text/view_runs.h"

namespace numalink {

namespace {

struct ShowOptions {
    std::string library;
    std::string item;
    std::string bitmap;
    bool replace = false;
};

void showText(ByteView image) {
    for (const ViewLine &line : viewLines(image)) std::printf("%s\n", utf8FromCalculator(line.text).c_str());
}

const char *faultWording(PictureFault fault) {
    switch (fault) {
        case PictureFault::tooLarge:
            return "the head tells a size that can't be; the picture is cut";
        case PictureFault::unknownColor:
            return "a plane has an unknown colour and isn't drawn";
        case PictureFault::endsEarly:
            return "the data ends early; what there is is drawn";
        case PictureFault::none:
            break;
    }
    return nullptr;
}

int showDots(const StoredItem &item, const ShowOptions &options) {
    loadLargeFont();
    loadSmallFont();
    const Surface surface = itemSurface(item.kind, item.head, item.data);
    if (const char *fault = faultWording(pictureFault(item.kind, item.head, item.data)))
        std::fprintf(stderr, "numalink-cli: %s\n", fault);
    if (options.bitmap.empty()) {
        std::printf("%s", dotText(surface).c_str());
        return exitDone;
    }
    return writeUserFile(options.bitmap, bitmapBytes(surface), options.replace) ? exitDone : exitFailed;
}

int runShow(const ShowOptions &options) {
    const LibrarySession session(options.library);
    if (!session.open) return exitFailed;
    const ItemId id = findItem(options.item);
    StoredItem item;
    if (id == noItem)
        return commandFailed("no item \"" + options.item + "\" in this library; \"list\" tells ids and names");
    if (!storeReadItem(id, item)) return exitFailed;
    if (isDrawnKind(item.kind)) return showDots(item, options);
    if (!options.bitmap.empty()) return commandFailed(options.item + " has no picture");
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
    command.add_option("--bitmap", options->bitmap, "Draw into this BMP file instead of the terminal");
    command.add_flag("--replace", options->replace, "Replace a file that exists");
    return [options] { return runShow(*options); };
}

}  // namespace numalink
