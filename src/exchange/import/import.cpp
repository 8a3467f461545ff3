// From a file on disk to items in their folder: reading, telling, asking, moving.
#include "exchange/import/import.h"

#include <algorithm>
#include <map>

#include "calculator/charset.h"
#include "exchange/import/bitmap_import.h"
#include "exchange/import/import_formats.h"
#include "exchange/listed_names.h"
#include "exchange/shown_progress.h"
#include "link/transmit_queue.h"
#include "platform/files.h"
#include "platform/letter_case.h"
#include "platform/thread_role.h"
#include "store/item_store.h"
#include "store/undo/undo.h"
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

// What one file brought into the temporary folder, where items of others may wait for their transmission.
struct Parked {
    std::string fileName;  // UTF-8, without its ending
    std::vector<ItemId> ids;
};

// Parks what the file holds: all of it in one change of the library, or nothing.
ImportReport readItems(ByteView file, ItemReader reader, Parked &parked) {
    const std::string &baseName = parked.fileName;
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
    if (!items.empty()) parked.ids = storeAddItems(items);
    return report;
}

// "/NAME/" in calculator codes; a name of nothing is the top level. Names cut at the limit.
std::string folderPath(const std::string &folderName) {
    const std::string name = calculatorFromUtf8(folderName).substr(0, importFolderNameLimit);
    return name.find_first_not_of(' ') == std::string::npos ? "/" : "/" + name + "/";
}

// The folder that an item of this kind goes to, noItem when it isn't there or can't be made. What has no folder of its
// own goes to the top level.
ItemId targetOf(ItemKind itemKind, const ImportQuestion &answer, bool create) {
    if (answer.action == ImportAction::oneFolder) return storeResolvePath(folderPath(answer.folderName), create);
    const ItemKind folderKind = standardFolderOfKind(itemKind);
    if (!isFolderKind(folderKind)) return rootId;
    if (create) return storeStandardFolder(folderKind);
    const std::vector<ItemEntry> items = storeListItems();
    const auto found = std::ranges::find(items, folderKind, &ItemEntry::kind);
    return found == items.end() ? noItem : found->id;
}

// One of those to be placed, with what bears its name where it goes.
struct Arrival {
    ItemEntry entry;
    ItemId target = noItem;
    std::vector<ItemId> taken = {};
};

// Kinds share folders, so each kind is looked up once.
std::vector<Arrival> arrivalsOf(const Parked &parked, const ImportQuestion &answer) {
    struct Target {
        ItemId folder = noItem;
        std::vector<ItemEntry> items;
    };
    std::map<ItemKind, Target> targets;
    std::vector<Arrival> arrivals;
    for (const ItemId id : parked.ids) {
        const auto entry = storeReadEntry(id);
        if (!entry) continue;
        const auto [target, isNew] = targets.try_emplace(entry->kind);
        if (isNew) target->second.folder = targetOf(entry->kind, answer, false);
        if (isNew && target->second.folder != noItem) target->second.items = storeListChildren(target->second.folder);
        Arrival &arrival = arrivals.emplace_back(Arrival{*entry});
        for (const ItemEntry &other : target->second.items)
            if (other.kind == entry->kind && equalWithoutCase(other.name, entry->name))
                arrival.taken.push_back(other.id);
    }
    return arrivals;
}

// Moves them, in one change; the replaced ones go once that is done. False when they stay where the next attempt finds
// them.
bool place(const std::vector<Arrival> &arrivals, const ImportQuestion &answer, bool replace) {
    std::map<ItemKind, ItemId> targets;
    std::vector<ItemMove> moves;
    std::vector<ItemId> replaced;
    for (const Arrival &arrival : arrivals) {
        const auto [target, isNew] = targets.try_emplace(arrival.entry.kind, noItem);
        if (isNew) target->second = targetOf(arrival.entry.kind, answer, true);
        if (target->second == noItem) return false;
        moves.push_back({arrival.entry.id, target->second});
        for (const ItemId id : arrival.taken)
            if (replace && std::ranges::find(replaced, id) == replaced.end()) replaced.push_back(id);
    }
    if (!moves.empty() && !storeMoveItems(moves)) return false;
    return replaced.empty() || storeDeleteItems(replaced);
}

// Asks once for all whose names are taken.
ImportTaken askTaken(const std::vector<Arrival> &arrivals) {
    std::vector<std::string> names;
    for (const Arrival &arrival : arrivals)
        if (!arrival.taken.empty()) names.push_back(utf8FromCalculator(arrival.entry.name));
    if (names.empty()) return ImportTaken::keepBoth;
    const ImportTaken taken = userInterface.askImportTaken({names.size(), listOfNames(names)});
    const std::string count = std::to_string(names.size());
    if (taken == ImportTaken::replace) statusLine(StatusPart::item, Text::importReplaced, {count});
    if (taken == ImportTaken::keepBoth) statusLine(StatusPart::item, Text::importKeptBoth, {count});
    if (taken == ImportTaken::skip) statusLine(StatusPart::item, Text::importSkipped, {count});
    return taken;
}

void placeItems(const Parked &parked, const ImportQuestion &answer) {
    std::vector<Arrival> arrivals = arrivalsOf(parked, answer);
    const ImportTaken taken = askTaken(arrivals);
    if (taken == ImportTaken::cancel) return;
    if (taken == ImportTaken::skip) std::erase_if(arrivals, [](const Arrival &item) { return !item.taken.empty(); });
    {
        const UndoGroup group(UndoAct::import, calculatorName(parked.fileName));
        if (place(arrivals, answer, taken == ImportTaken::replace)) storeTidyTemp(transmitQueueHeld());
    }
    userInterface.refreshTree();
}

void transmitItems(const Parked &parked) {
    if (!transmitAvailable()) {
        tellUser(Text::importNoTransmission);
        return;
    }
    queueItems(parked.ids);
    beginTransmit();
}

void askWhereTo(const Parked &parked) {
    ImportQuestion question{.itemNames = {}, .folderName = importFolderName};
    for (const ItemId id : parked.ids)
        if (const auto entry = storeReadEntry(id)) question.itemNames.push_back(utf8FromCalculator(entry->name));
    const bool several = question.itemNames.size() >= 2;
    question.action = several ? ImportAction::oneFolder : ImportAction::standardFolders;
    userInterface.askImport(question);
    if (question.action == ImportAction::none) return;
    if (question.action == ImportAction::transmit) return transmitItems(parked);
    if (question.action == ImportAction::oneFolder) importFolderName = question.folderName;
    placeItems(parked, question);
}

}  // namespace

void importFile(const std::string &path, const std::string &baseName) {
    assertRole(ThreadRole::graphical);
    if (!userInterface.leaveCurrentView() || !storeResetTemp(transmitQueueHeld())) return;
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
    Parked parked{.fileName = baseName, .ids = {}};
    if (format->read == nullptr) {
        // A refused or unreadable picture ends the import.
        const ItemId picture = importBitmap(file, path, baseName);
        if (picture == noItem) return;
        parked.ids = {picture};
        return askWhereTo(parked);
    }
    showReport(readItems(rest, format->read, parked));
    if (!parked.ids.empty()) askWhereTo(parked);
}

std::string importBaseName(const std::string &path) {
    const std::string name = path.substr(path.find_last_of('/') + 1);
    const std::size_t dot = name.find_last_of('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

}  // namespace numalink
