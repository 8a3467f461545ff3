// numalink-cli write: a text into a program, as the editor stores it.
#include <memory>

#include "cli/commands.h"
#include "cli/library_session.h"
#include "link/transmit_queue.h"
#include "platform/files.h"
#include "settings/settings_store.h"
#include "store/item_store.h"
#include "telling/tell_user.h"
#include "text/program_images.h"
#include "text/view_edit.h"

namespace numalink {

namespace {

constexpr std::uint64_t textLimit = 16u << 20;  // bytes

struct WriteOptions {
    std::string library;
    std::string item;
    std::string file;
};

int runWrite(const WriteOptions &options) {
    Bytes file;
    if (readWholeFile(options.file, file, textLimit) != FileResult::done)
        return commandFailed(options.file + " can't be read");
    const LibrarySession session(options.library);
    if (!session.open) return exitFailed;
    const ItemId id = findItem(options.item);
    StoredItem item;
    if (id == noItem || !storeReadItem(id, item)) return commandFailed("no item " + options.item);
    if (!isTextKind(item.kind)) return commandFailed(options.item + " holds no program text");
    const std::string_view text(reinterpret_cast<const char *>(file.data()), file.size());
    Bytes image;
    const TextOverProgram written = linesOverProgram(item.data, text);
    const auto faults = imageOfViewLines(written.lines, settingsInt(setting::autoCorrect) > 0, image);
    if (!faults.empty()) {
        tellFaults(faults);
        return exitFailed;
    }
    if (!writeProgramImage(id, std::move(image))) return exitFailed;
    if (written.blanksLeftOut) statusLine(StatusPart::item, Text::blanksLeftOut);
    tellWhenTooLong(id);
    return exitDone;
}

}  // namespace

CommandRun declareWrite(CLI::App &command) {
    const auto options = std::make_shared<WriteOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat")->required();
    command.add_option("ITEM", options->item, "An id, or a path such as /Programs/SNAKE")->required();
    command.add_option("FILE", options->file, "The text as \"show\" prints it, UTF-8")->required();
    return [options] { return runWrite(*options); };
}

}  // namespace numalink
