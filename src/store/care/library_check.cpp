#include "store/care/library_check.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "platform/program_folder.h"
#include "store/care/examination.h"
#include "store/file/copy.h"
#include "store/file/copy_names.h"

namespace numalink {

namespace {

// The head of a kept record in a table without circles.
ItemHeader keptHead(const Slot &slot, const std::vector<ItemId> &circle) {
    ItemHeader head = slot.head;
    if (isFolderKind(head.kind) && std::ranges::count(circle, head.id) > 0) head.parent = rootId;
    return head;
}

// Gives a record another id; what a folder holds follows it.
void renumber(std::vector<Slot> &kept, ItemHeader &head, ItemId id) {
    for (Slot &slot : kept)
        if (head.id != noItem && slot.head.parent == head.id) slot.head.parent = id;
    head.id = id;
}

// Nothing stays in a folder that the file doesn't hold any more.
void leaveLostFolders(std::vector<Slot> &kept) {
    std::set<ItemId> folders{rootId};
    for (const Slot &slot : kept)
        if (isFolderKind(slot.head.kind)) folders.insert(slot.head.id);
    for (Slot &slot : kept)
        if (!folders.contains(slot.head.parent)) slot.head.parent = rootId;
}

// The file anew: all that can be kept, side by side.
bool composeFile(const Examined &examined, Bytes &file) REQUIRES_LOCK(storeLock) {
    std::vector<Slot> kept;
    std::vector<std::uint64_t> offsets;
    for (std::size_t slot = 0; slot < examined.slots.size(); slot++) {
        if (!examined.slots[slot].sound) continue;
        kept.push_back(examined.slots[slot]);
        offsets.push_back(examined.main.offsets[slot]);
    }
    const auto temporary =
        std::ranges::find(kept, kind::temporaryFolder, [](const Slot &slot) { return slot.head.kind; });
    const ItemId emptied = temporary == kept.end() ? noItem : temporary->head.id;
    for (std::size_t i = 0; i < examined.found.size() && kept.size() < storeSlotCount; i++) {
        kept.push_back({examined.found[i], true});
        offsets.push_back(examined.offsets[i]);
        // What was saved isn't to go with the temporary folder's contents at the next start.
        ItemHeader &head = kept.back().head;
        if (head.kind == kind::temporaryFolder) head.kind = kind::folder;
        if (head.parent == emptied) head.parent = rootId;
    }
    MainHeader main = emptyMain();
    main.formatNumber = std::min(examined.main.formatNumber, storeNewestFormat);
    if (examined.main.formatNumber == 0) main.formatNumber = storeNewestFormat;
    constexpr ItemId keptLimit = idLimit - storeSlotCount - 1;  // room for all to get others
    main.nextId = examined.main.nextId < keptLimit ? examined.main.nextId : 0;
    // A flipped bit may have made an id so high that none is left behind it: such records get the next free ones, which
    // must not depend on them.
    std::vector<Slot> known = kept;
    std::erase_if(known, [](const Slot &slot) { return slot.head.id >= keptLimit; });
    main.nextId = safeNextId(main, known);
    for (Slot &slot : kept)
        if (slot.head.id >= keptLimit) renumber(kept, slot.head, main.nextId++);
    leaveLostFolders(kept);
    const std::vector<ItemId> circle = foldersInCircle(kept);
    file.resize(sizeof main);
    for (std::size_t i = 0; i < kept.size(); i++) {
        const ItemHeader head = keptHead(kept[i], circle);
        const std::size_t place = file.size();
        if (place + recordSize(head) > UINT32_MAX) return false;
        file.resize(place + static_cast<std::size_t>(recordSize(head)));
        if (!storeFileRead(offsets[i], std::span(file).subspan(place))) return false;
        std::memcpy(file.data() + place, &head, sizeof head);
        main.offsets[i] = static_cast<std::uint32_t>(place);
    }
    main.itemCount = static_cast<std::uint32_t>(kept.size());
    main.endOffset = static_cast<std::uint32_t>(file.size());
    std::memcpy(file.data(), &main, sizeof main);
    return true;
}

// By a new file rather than by a change, which would have to read first what it writes over.
bool rewrite(const Examined &examined) REQUIRES_LOCK(storeLock) {
    Bytes file;
    return composeFile(examined, file) && storeFileKeepCopy() && storeJournalKeepTorn() && storeFileReplace(file);
}

// What is to be done with a library that isn't in order: nothing, or one of these.
struct Care {
    bool repair = false;
    std::string copy = {};  // to put in its place
};

bool putInOrder(const Examined &examined, const Care &care) REQUIRES_LOCK(storeLock) {
    if (care.copy.empty()) return rewrite(examined);
    return (examined.fileSize == 0 || storeFileKeepCopy()) && storeJournalKeepTorn() && storeFileReplaceBy(care.copy);
}

void checkOpened(LibraryCheck &check, const Care &care) REQUIRES_LOCK(storeLock) {
    const bool repair = care.repair || !care.copy.empty();
    // First: an interrupted change reads like damage, and its journal knows better than any search.
    Recovery recovery = storeFileRecover(repair);
    check.interrupted = recovery == Recovery::broughtBack;
    if (recovery == Recovery::foreign) check.otherJournal = repair ? storeJournalSetAside() : storeJournalPath();
    if (recovery == Recovery::foreign && check.otherJournal.empty()) recovery = Recovery::failed;
    const bool unusable = recovery == Recovery::linked || recovery == Recovery::unread || recovery == Recovery::failed;
    if (unusable) check.outcome = CheckOutcome::journalUnusable;
    const std::int64_t size = storeFileSize();
    if (unusable || size < 0) return;
    Examined examined;
    examined.fileSize = static_cast<std::uint64_t>(size);
    const Text trouble = readMain(examined.main);
    check.headUsable = trouble == Text::none || trouble == Text::libraryTooNew;
    if (!check.headUsable) examined.main = {};
    check.outcome = CheckOutcome::checked;
    if (size == 0 && care.copy.empty()) return;  // a new library, that the next start gives its head
    if (size > 0) examine(examined, check);
    check.perhapsNewer = mayBeNewer(trouble, examined.main);
    // Unless nothing but that number is out of order.
    const bool newer = check.perhapsNewer && (check.damage > 1 || !care.copy.empty());
    if (newer) check.outcome = CheckOutcome::newer;
    if (newer || !repair || (check.damage == 0 && size > 0)) return;
    check.repaired = putInOrder(examined, care);
    if (!check.repaired) check.outcome = CheckOutcome::notWritten;
}

LibraryCheck lookAt(const std::string &path, const Care &care) {
    LibraryCheck check;
    const Fault fault = withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        if (storeState.open) return Fault::absent;
        const OpenResult opened = storeFileOpen(path, !care.copy.empty());
        const bool mayDo = !storeFileIsReadOnly() || (!care.repair && care.copy.empty());
        if (opened == OpenResult::opened && mayDo) checkOpened(check, care);
        if (opened == OpenResult::absent) check.outcome = CheckOutcome::absent;
        if (opened == OpenResult::heldByAnother) check.outcome = CheckOutcome::held;
        return Fault::none;
    });
    const HoldLock hold(storeLock);
    if (storeState.open) check.outcome = CheckOutcome::held;
    if (!storeState.open) storeFileClose();
    if (fault == Fault::noMemory) check.outcome = CheckOutcome::unreadable;
    return check;
}

std::string libraryPath() { return libraryFolder() + "storage.dat"; }

}  // namespace

LibraryCheck checkLibrary(bool repair) { return lookAt(libraryPath(), {.repair = repair}); }

std::string newestSoundCopy() {
    std::vector<std::string> names = dailyCopyNames();
    for (auto name = names.rbegin(); name != names.rend(); name++) {
        const LibraryCheck check = lookAt(dailyCopyFolder() + *name, {});
        if (check.outcome == CheckOutcome::checked && check.headUsable && check.damage == 0)
            return dailyCopyFolder() + *name;
    }
    return {};
}

std::string dateOfCopy(const std::string &path) {
    constexpr std::size_t dateSize = 10, endingSize = 4;  // YYYY-MM-DD, .dat
    return path.size() < dateSize + endingSize ? "" : path.substr(path.size() - dateSize - endingSize, dateSize);
}

LibraryCheck restoreLibrary() {
    const std::string copy = newestSoundCopy();
    if (!copy.empty()) return lookAt(libraryPath(), {.copy = copy});
    LibraryCheck none;
    none.outcome = CheckOutcome::noCopy;
    return none;
}

bool libraryNeedsCopy() {
    if (storeIsEmptied()) return true;
    const LibraryCheck check = checkLibrary(false);
    return check.outcome == CheckOutcome::checked && check.damage > 0 && !check.perhapsNewer;
}

}  // namespace numalink
