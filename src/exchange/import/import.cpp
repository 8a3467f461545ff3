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
#include "store/items/arrivals.h"
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
    ImportQuestion answer;
};

// Files that are imported together.
struct Import {
    std::vector<Parked> parked;           // that are to come into the library
    std::vector<ItemId> toTransmit;       // that are to be sent
    std::optional<ImportQuestion> given;  // the answer for all files to come
    std::vector<std::string> notes;       // what was to be told since then
    const ImportWays &ways;
    std::size_t steps = 0;  // of undo, for what came in already
    bool cancelled = false;
};

void pause(const Import &import) {
    if (import.ways.pauses) import.ways.pauses();
}

// What the file holds.
std::vector<NewItem> itemsOf(ByteView file, ItemReader reader, const std::string &baseName, ImportReport &report) {
    std::vector<NewItem> items;
    ShownProgress progress(file.size());
    const ItemSink sink = [&](ImportedItem &item) {
        progress.step(report.place);
        items.push_back({.name = storedName(item.name, baseName),
                         .kind = item.itemKind,
                         .head = std::move(item.head),
                         .data = std::move(item.data),
                         .whenTaken = NameTaken::keepBoth});
        return items.size() <= storeSlotCount;  // one too many is refused, and told, by the library
    };
    reader(file, sink, report);
    if (items.empty() && report.messages.empty()) addMessage(report, Text::importNothing, {baseName});
    return items;
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

// How the list calls that folder.
std::string whereOf(ItemKind itemKind, ItemId folder, const ImportQuestion &answer) {
    if (folder == rootId) return wording(Text::libraryTree);
    if (answer.action == ImportAction::oneFolder) return answer.folderName;
    if (const auto entry = storeReadEntry(folder)) return utf8FromCalculator(entry->name);
    return wording(standardFolderName(standardFolderOfKind(itemKind)));
}

// All that is to come into the library, each with its folder; nothing where one can't be made.
std::vector<Arriving> arrivingOf(const Import &import, bool create) {
    std::vector<Arriving> arriving;
    for (std::size_t batch = 0; batch < import.parked.size(); batch++) {
        const Parked &parked = import.parked[batch];
        std::map<ItemKind, ItemId> folders;  // kinds share them, so each is looked up once
        for (const ItemId id : parked.ids) {
            const auto entry = storeReadEntry(id);
            if (!entry) continue;
            const auto [place, isNew] = folders.try_emplace(entry->kind, noItem);
            if (isNew) place->second = targetOf(entry->kind, parked.answer, create);
            if (create && place->second == noItem) return {};
            arriving.push_back({id, place->second, whereOf(entry->kind, place->second, parked.answer), batch, {}});
        }
    }
    return arriving;
}

void tellCounts(const ArrivalCounts &counts) {
    const std::pair<Text, std::size_t> parts[] = {{Text::importReplaced, counts.replaced},
                                                  {Text::importKeptBeside, counts.renamed},
                                                  {Text::importSkipped, counts.skipped}};
    std::string line;
    for (const auto &[text, count] : parts)
        if (count > 0) line += (line.empty() ? "" : "; ") + wording(text, {std::to_string(count)});
    if (!line.empty()) userInterface.statusText(StatusPart::item, Text::none, line);
}

// Shows what comes in where there is something to choose or to tell. False when it was cancelled.
bool askArrivals(std::vector<Arrival> &arrivals, const Import &import) {
    if (!import.ways.alwaysLists && import.notes.empty() && !anyTaken(arrivals)) return true;
    ArrivalsQuestion question{.rows = {arrivals.begin(), arrivals.end()}, .notes = import.notes};
    pause(import);
    userInterface.askArrivals(question);
    for (std::size_t i = 0; i < arrivals.size(); i++) arrivals[i].choice = question.rows[i].choice;
    return question.accepted;
}

// With the folders that they go to: one of them may have been made, or gone, while the list was open.
bool placeChosen(const std::vector<Arrival> &arrivals, Import &import) {
    std::map<ItemId, ArrivalChoice> chosen;
    for (const Arrival &arrival : arrivals)
        if (arrival.choice != ArrivalChoice::skip) chosen[arrival.id] = arrival.choice;
    for (Parked &parked : import.parked) std::erase_if(parked.ids, [&](ItemId id) { return !chosen.contains(id); });
    std::vector<Arriving> arriving = arrivingOf(import, true);
    for (Arriving &item : arriving)
        item.wanted = std::ranges::find(arrivals, item.id, [](const Arrival &shown) { return shown.id; })->freeCodes;
    const bool anyThere =
        std::ranges::any_of(chosen, [](const auto &item) { return storeReadEntry(item.first).has_value(); });
    if (arriving.empty() && anyThere) return false;  // a folder can't be made
    std::vector<Arrival> placed = planArrivals(arriving);
    for (Arrival &arrival : placed) arrival.choice = chosen[arrival.id];
    ArrivalCounts counts;
    if (!placeArrivals(placed, counts)) return false;
    if (counts.placed > 0) import.steps++;
    counts.skipped = arrivals.size() - chosen.size();
    tellCounts(counts);
    if (placed.size() < chosen.size()) tellUser(Text::importGone, {std::to_string(chosen.size() - placed.size())});
    return true;
}

// False when the user has cancelled it.
bool placeItems(Import &import) {
    std::vector<Arrival> arrivals = planArrivals(arrivingOf(import, false));
    if (arrivals.empty() && import.notes.empty()) return true;
    if (!askArrivals(arrivals, import)) return false;
    if (arrivals.empty()) return true;
    {
        const std::string &first = import.parked.front().fileName;
        const UndoGroup group(UndoAct::import, calculatorName(import.parked.size() > 1 ? first + " ..." : first));
        if (placeChosen(arrivals, import)) {
            std::vector<ItemId> kept = transmitQueueHeld();
            kept.insert(kept.end(), import.toTransmit.begin(), import.toTransmit.end());
            storeTidyTemp(kept);
        }
    }
    userInterface.refreshTree();
    return true;
}

// What came in ahead of the rest, for want of room for all at once. False when something else was done since.
bool takeBackSteps(const Import &import) {
    for (std::size_t step = 0; step < import.steps; step++) {
        const auto offer = storeUndoOffer();
        TakenBack done;
        if (!offer || offer->act != UndoAct::import || !storeUndo(done) || done.changedSince) return false;
    }
    return true;
}

void cancelImport(const Import &import) {
    const bool nothingStays = takeBackSteps(import);
    std::vector<ItemId> kept = transmitQueueHeld();
    kept.insert(kept.end(), import.toTransmit.begin(), import.toTransmit.end());
    storeTidyTemp(kept);
    userInterface.refreshTree();
    const bool onlyListed = import.ways.alwaysLists;  // it was never meant to come in
    if (nothingStays && !onlyListed) statusLine(StatusPart::item, Text::importCancelled);
}

// What takes the place of others needs room beside them only as long as it waits: so much as fits comes in at a time.
bool makeRoom(Import &import, std::size_t count) {
    if (import.parked.empty() || storeListItems().size() + count <= storeSlotCount) return true;
    import.cancelled = !placeItems(import);
    import.parked.clear();
    import.notes.clear();
    return !import.cancelled;
}

void transmitItems(const std::vector<ItemId> &ids) {
    if (ids.empty()) return;
    if (!transmitAvailable()) {
        tellUser(Text::importNoTransmission);
        return;
    }
    queueItems(ids);
    beginTransmit();
}

// False when nothing more is to be asked or read.
bool askWhereTo(Parked parked, std::size_t filesLeft, Import &import) {
    ImportQuestion question{.itemNames = {}, .folderName = importFolderName, .filesLeft = filesLeft};
    if (import.given) {
        question = *import.given;
    } else {
        for (const ItemId id : parked.ids)
            if (const auto entry = storeReadEntry(id)) question.itemNames.push_back(utf8FromCalculator(entry->name));
        const bool several = question.itemNames.size() >= 2;
        question.action = several ? ImportAction::oneFolder : ImportAction::standardFolders;
        userInterface.askImport(question);
        if (question.forAll) import.given = question;
        if (question.action == ImportAction::oneFolder) importFolderName = question.folderName;
    }
    parked.answer = question;
    if (question.action == ImportAction::none) return !question.forAll;
    if (question.action == ImportAction::transmit)
        import.toTransmit.insert(import.toTransmit.end(), parked.ids.begin(), parked.ids.end());
    else
        import.parked.push_back(std::move(parked));
    return true;
}

// Parks what the file holds. False when the library took none of it.
bool readFile(const FileToImport &source, Parked &parked, Import &import) {
    Bytes file;
    const FileResult result = readWholeFile(source.path, file, importFileLimit);
    if (result != FileResult::done) {
        showBox(Text::importNotOpened,
                wording(fileTrouble(result), {source.path, std::to_string(importFileLimit >> 20)}));
        return true;
    }
    importFolderName = source.baseName;
    ByteView rest = file;
    const ImportFormat *format = importFormatOf(rest);
    if (format == nullptr) {
        showBox(Text::importTypeUnknown, file.empty() ? wording(Text::fileEmpty, {source.path}) : source.path);
        return true;
    }
    if (format->read == nullptr) {
        // A refused or unreadable picture ends the import.
        pause(import);
        const ItemId picture = importBitmap(file, source.path, source.baseName);
        if (picture != noItem) parked.ids = {picture};
        return true;
    }
    ImportReport report;
    std::vector<NewItem> items = itemsOf(rest, format->read, source.baseName, report);
    if (!items.empty() && makeRoom(import, items.size())) {
        const ItemId folder = storeTempFolder();  // made anew whenever it was emptied
        for (NewItem &item : items) item.parent = folder;
        if (folder != noItem) parked.ids = storeAddItems(items);
    }
    showReport(report);
    return items.empty() || !parked.ids.empty();
}

// Once an answer holds for all, boxes would come by the hundred: they become notes of the list.
bool readForAll(const FileToImport &source, Parked &parked, Import &import) {
    HoldBoxes hold;
    const bool isTaken = readFile(source, parked, import);
    for (const Box &box : hold.boxes) import.notes.push_back(source.baseName + ": " + box.body);
    hold.boxes.clear();
    return isTaken;
}

void readAll(const std::vector<FileToImport> &files, Import &import) {
    const ImportWays &ways = import.ways;
    for (std::size_t i = 0; i < files.size(); i++) {
        if (ways.starts != nullptr) ways.starts(files[i].path);
        if (import.given && ways.goesOn && !ways.goesOn(i, files.size())) {
            import.toTransmit.clear();
            import.cancelled = true;
            return;
        }
        const std::size_t left = files.size() - i - 1;
        Parked parked{.fileName = files[i].baseName, .ids = {}, .answer = {}};
        const bool isTaken = import.given ? readForAll(files[i], parked, import) : readFile(files[i], parked, import);
        if (import.cancelled) return;
        if (!isTaken && import.given) {  // a library that is full takes none of the others either
            if (left > 0) import.notes.push_back(wording(Text::importFilesLeft, {std::to_string(left)}));
            return;
        }
        if (!parked.ids.empty() && !askWhereTo(std::move(parked), left, import)) return;
    }
}

}  // namespace

void importFiles(const std::vector<FileToImport> &files, const ImportWays &ways) {
    assertRole(ThreadRole::graphical);
    if (!userInterface.leaveCurrentView() || !storeResetTemp(transmitQueueHeld())) return;
    Import import{.parked = {}, .toTransmit = {}, .given = {}, .notes = {}, .ways = ways};
    readAll(files, import);
    pause(import);
    if (!import.cancelled) import.cancelled = !placeItems(import);
    if (import.cancelled) cancelImport(import);
    transmitItems(import.toTransmit);
}

void importFile(const std::string &path, const std::string &baseName) { importFiles({{path, baseName}}); }

std::string importBaseName(const std::string &path) {
    const std::string name = path.substr(path.find_last_of('/') + 1);
    const std::size_t dot = name.find_last_of('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

}  // namespace numalink
