#include "cli/item_sources.h"

#include <filesystem>

#include "calculator/charset.h"
#include "cli/commands.h"
#include "cli/library_session.h"
#include "cli/terminal_ui.h"
#include "exchange/import/import.h"
#include "exchange/import/import_formats.h"
#include "platform/files.h"
#include "store/item_store.h"
#include "text/view_edit.h"

namespace numalink {

namespace {

namespace fs = std::filesystem;

constexpr Bytes::value_type emptyProgram[] = {':', 0xFF};

bool failed(const std::string &wording) {
    commandFailed(wording);
    return false;
}

bool readFromLibrary(const std::string &folder, const std::string &item, ItemSource &source) {
    const LibrarySession session(folder);
    if (!session.open) return false;
    StoredItem stored;
    const ItemId id = findItem(item);
    if (id == noItem) return failed("no item \"" + item + "\" in " + folder);
    if (!storeReadItem(id, stored)) return false;
    source.items.push_back({stored.kind, stored.name, std::move(stored.head), std::move(stored.data)});
    return true;
}

bool readFromFile(const std::string &path, ItemSource &source) {
    if (path == "/dev/null") return true;
    Bytes bytes;
    if (readWholeFile(path, bytes, importFileLimit) != FileResult::done) return failed(path + " can't be read");
    ByteView rest = bytes;
    const ImportFormat *format = importFormatOf(rest);
    if (format == nullptr || format->read == nullptr) {
        if (!bytes.empty()) source.text.emplace(bytes.begin(), bytes.end());
        return true;
    }
    ImportReport report;
    const ItemSink sink = [&](ImportedItem &item) {
        source.items.push_back({item.itemKind, item.name, std::move(item.head), std::move(item.data)});
        return true;
    };
    format->read(rest, sink, report);
    for (const ImportMessage &message : report.messages) commandFailed(message.body);
    return report.messages.empty();
}

// Where the library's folder ends in "FOLDER:ITEM", or npos for the name of a file.
std::size_t endOfFolder(const std::string &source) {
    std::error_code failure;
    if (fs::exists(source, failure)) return std::string::npos;
    for (std::size_t colon = source.find(':'); colon != std::string::npos; colon = source.find(':', colon + 1))
        if (fs::is_directory(source.substr(0, colon), failure)) return colon;
    return std::string::npos;
}

}  // namespace

std::optional<ItemSource> readItemSource(const std::string &source) {
    ItemSource read{.label = source, .items = {}, .text = {}};
    const std::size_t colon = endOfFolder(source);
    const bool whole = colon == std::string::npos
                           ? readFromFile(source, read)
                           : readFromLibrary(source.substr(0, colon), source.substr(colon + 1), read);
    if (!whole) return std::nullopt;
    return read;
}

bool programOfText(ItemSource &source, const ItemSource &base) {
    if (!source.text) return true;
    const bool hasBase = base.items.size() == 1 && isTextKind(base.items.front().itemKind);
    SourceItem item{.itemKind = kind::program, .name = {}, .head = {}, .data = {}};
    const TextOverProgram over =
        linesOverProgram(hasBase ? ByteView(base.items.front().data) : ByteView(emptyProgram), *source.text);
    const auto faults = imageOfViewLines(over.lines, true, item.data);
    if (!faults.empty()) return failed(source.label + ": " + onOneLine(textOfFaults(faults)));
    if (hasBase) item.itemKind = base.items.front().itemKind;
    source.items.push_back(std::move(item));
    return true;
}

}  // namespace numalink
