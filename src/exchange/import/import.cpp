// From a file on disk to items in their folder: reading, telling, asking, moving.
#include "exchange/import/import.h"

#include <algorithm>
#include <map>

#include "calculator/charset.h"
#include "exchange/import/bitmap_import.h"
#include "exchange/import/import_formats.h"
#include "exchange/shown_progress.h"
#include "link/transmit_queue.h"
#include "platform/files.h"
#include "platform/thread_role.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

std::string importFolderName;

namespace {

constexpr std::size_t messagesShown = 8;  // of one file; a spoilt file may give thousands
constexpr std::size_t unnamedLimit = 8;

void showBox(Text text, const std::string &below) { tellComposed(text, wording(text) + "\n" + below); }

void showReport(const ImportReport &report) {
    const std::size_t shown = std::min(report.messages.size(), messagesShown);
    for (std::size_t i = 0; i < shown; i++) tellComposed(report.messages[i].bodyText, report.messages[i].body);
    if (report.messages.size() > shown)
        tellUser(Text::importMoreMessages, {std::to_string(report.messages.size() - shown)});
    if (report.unknownRecords > 0)
        statusLine(StatusPart::item, Text::importRecordsSkipped, {std::to_string(report.unknownRecords)});
}

// The name ends where the filling of a frame's field would begin. A copy of a screen has no name of its own, and a name
// of nothing couldn't be clicked on.
std::string storedName(const std::string &name, const std::string &baseName) {
    const std::size_t end = std::min(name.find('\xFF'), name.size());
    if (end > 0) return name.substr(0, end);
    const std::string other = calculatorName(baseName).substr(0, unnamedLimit);
    return other.empty() ? "?" : other;
}

// Parks what the file holds in the temporary folder: all of it in one change of the library, or nothing.
ImportReport readItems(ByteView file, ItemReader reader, const std::string &baseName) {
    const ItemId folder = storeTempFolder();
    ImportReport report;
    if (folder == noItem) return report;
    std::vector<NewItem> items;
    ShownProgress progress(file.size());
    const ItemSink sink = [&](ImportedItem &item) {
        progress.step(report.place);
        items.push_back({.name = storedName(item.name, baseName),
                         .parent = folder,
                         .kind = item.itemKind,
                         .head = std::move(item.head),
                         .data = std::move(item.data),
                         .whenTaken = NameTaken::keepBoth});
        return items.size() <= storeSlotCount;  // one too many is refused, and told, by the library
    };
    reader(file, sink, report);
    if (items.empty() && report.messages.empty()) addMessage(report, Text::importNothing, {baseName});
    if (!items.empty() && storeAddItems(items).empty()) report.items = 0;
    return report;
}

void askWhereTo() {
    const ItemId folder = storeTempFolder();
    ImportQuestion question{.itemNames = {}, .folderName = importFolderName};
    for (const ItemEntry &entry : storeListChildren(folder))
        question.itemNames.push_back(utf8FromCalculator(entry.name));
    const bool several = question.itemNames.size() >= 2;
    question.action = several ? ImportAction::oneFolder : ImportAction::standardFolders;
    userInterface.askImport(question);
    if (question.action == ImportAction::none) return;
    if (question.action == ImportAction::oneFolder) importFolderName = question.folderName;
    finishImport(question.folderName, question.action);
}

// "/NAME/" in calculator codes; a name of nothing is the top level. Names cut at the limit.
std::string folderPath(const std::string &folderName) {
    const std::string name = calculatorFromUtf8(folderName).substr(0, importFolderNameLimit);
    return name.find_first_not_of(' ') == std::string::npos ? "/" : "/" + name + "/";
}

// Every item finds a place: what has no folder of its own goes to the top level.
ItemId standardTarget(ItemKind itemKind) {
    const ItemId folder = storeStandardFolder(standardFolderOfKind(itemKind));
    return folder == noItem ? rootId : folder;
}

// Where each item goes; empty when a folder can't be made. Kinds share folders, so each kind is looked up once.
std::vector<ItemMove> movesTo(const std::string &folderName, ImportAction action) {
    std::vector<ItemMove> moves;
    const bool oneFolder = action == ImportAction::oneFolder;
    const ItemId folder = oneFolder ? storeResolvePath(folderPath(folderName), true) : noItem;
    if (oneFolder && folder == noItem) return moves;
    std::map<ItemKind, ItemId> targets;
    for (const ItemEntry &entry : storeListChildren(storeTempFolder())) {
        ItemId target = folder;
        if (!oneFolder) {
            const auto known = targets.find(entry.kind);
            target = known != targets.end() ? known->second : standardTarget(entry.kind);
            targets[entry.kind] = target;
        }
        moves.push_back({entry.id, target});
    }
    return moves;
}

void placeItems(const std::string &folderName, ImportAction action) {
    const std::vector<ItemMove> moves = movesTo(folderName, action);
    // What could not be moved stays where the next attempt finds it.
    if (!moves.empty() && storeMoveItems(moves)) storeTidyTemp();
    userInterface.refreshTree();
}

void transmitItems() {
    if (!transmitAvailable()) {
        tellUser(Text::importNoTransmission);
        return;
    }
    queueItem(storeTempFolder());
    beginTransmit();
}

// A refused or unreadable picture ends the import.
void importPicture(ByteView file, const std::string &path, const std::string &baseName) {
    if (importBitmap(file, path, baseName)) askWhereTo();
}

}  // namespace

void importFile(const std::string &path, const std::string &baseName) {
    assertRole(ThreadRole::graphical);
    if (!userInterface.leaveCurrentView() || !storeResetTemp()) return;
    Bytes file;
    const FileResult result = readWholeFile(path, file, importFileLimit);
    if (result != FileResult::done)
        return showBox(Text::importNotOpened,
                       wording(fileTrouble(result), {path, std::to_string(importFileLimit >> 20)}));
    importFolderName = baseName;
    ByteView rest = file;
    const ImportFormat *format = importFormatOf(rest);
    if (format == nullptr)
        return showBox(Text::importTypeUnknown, file.empty() ? wording(Text::fileEmpty, {path}) : path);
    if (format->read == nullptr) return importPicture(file, path, baseName);
    const ImportReport report = readItems(rest, format->read, baseName);
    showReport(report);
    if (report.items > 0) askWhereTo();
}

void finishImport(const std::string &folderName, ImportAction action) {
    assertRole(ThreadRole::graphical);
    if (action == ImportAction::oneFolder || action == ImportAction::standardFolders) placeItems(folderName, action);
    if (action == ImportAction::transmit) transmitItems();
}

std::string importBaseName(const std::string &path) {
    const std::string name = path.substr(path.find_last_of('/') + 1);
    const std::size_t dot = name.find_last_of('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

}  // namespace numalink
