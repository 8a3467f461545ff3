// Opening with all its checks, and closing.
#include <algorithm>
#include <cstring>
#include <filesystem>

#include "platform/program_folder.h"
#include "store/file/changes.h"
#include "store/file/check.h"
#include "store/file/copy.h"
#include "store/file/copy_names.h"
#include "store/undo/keep_for_undo.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

Text createStore() REQUIRES_LOCK(storeLock) {
    storeState.main = emptyMain();
    changeBegin();
    changeWrite(0, bytesOf(storeState.main));
    return changeCommit() == ChangeResult::done ? Text::none : Text::libraryNotOpened;
}

std::string storePath() { return libraryFolder() + "storage.dat"; }

// What came of opening, for telling once the lock is free.
struct Opening {
    OpenResult file = OpenResult::failed;
    Recovery recovery = Recovery::nothing;
    std::string journal;       // its path; where it was set aside
    bool absent = false;       // missing or empty, and not to be begun
    bool emptied = false;      // the same, with copies beside
    bool isNew = false;        // an empty file, which gets its head
    bool noRoom = false;       // for that head
    bool isNewer = false;      // a newer version wrote it, by all one can tell
    std::uint32_t damage = 0;  // places
    std::ptrdiff_t lost = 0;   // records among them
    Fault resetFault = Fault::none;
};

// Takes an interrupted change back. False when the file can't be used.
bool recoverFile(Opening &opening) REQUIRES_LOCK(storeLock) {
    const bool apply = !storeFileIsReadOnly();
    opening.recovery = storeFileRecover(apply);
    opening.journal = storeJournalPath();
    // What would have to be brought back, were it possible to write; another file's journal is left alone.
    if (!apply && opening.recovery == Recovery::broughtBack) opening.recovery = Recovery::failed;
    if (!apply && opening.recovery == Recovery::foreign) opening.recovery = Recovery::nothing;
    if (opening.recovery != Recovery::foreign)
        return opening.recovery == Recovery::nothing || opening.recovery == Recovery::broughtBack;
    const std::string kept = storeJournalSetAside();
    opening.recovery = kept.empty() ? Recovery::failed : Recovery::foreign;
    if (!kept.empty()) opening.journal = kept;
    return !kept.empty();
}

// The text that tells what keeps the file from being used, or none.
Text openFile(Opening &opening, WhenEmptied whenEmptied) REQUIRES_LOCK(storeLock) {
    const bool hasCopies = !dailyCopyNames().empty();
    const bool mayBegin = whenEmptied == WhenEmptied::begin || (whenEmptied == WhenEmptied::refuse && !hasCopies);
    opening.file = storeFileOpen(storePath(), mayBegin);
    opening.absent = opening.file == OpenResult::absent;
    opening.emptied = opening.absent && hasCopies;
    if (opening.file != OpenResult::opened || !recoverFile(opening)) return Text::libraryNotOpened;
    const std::int64_t size = storeFileSize();
    if (size < 0) return Text::libraryTooShort;
    opening.isNew = size == 0;
    opening.absent = opening.isNew && (!mayBegin || storeFileIsReadOnly());
    opening.emptied = opening.absent && hasCopies;
    if (opening.absent) return Text::libraryNotOpened;
    const Text trouble = opening.isNew ? createStore() : readMain(storeState.main);
    opening.isNewer = mayBeNewer(trouble, storeState.main);
    opening.noRoom = opening.isNew && trouble != Text::none && lastRefusal().cause == RefusalCause::full;
    if (trouble != Text::none) return trouble;
    readSlots(storeState.main, storeState.slots);
    opening.damage =
        opening.isNew ? 0 : checkStore(storeState.main, static_cast<std::uint64_t>(size), storeState.slots);
    if (opening.damage == 0)
        opening.damage = static_cast<std::uint32_t>(strayStretches(storeState.main, storeState.slots).size());
    opening.lost = std::ranges::count(storeState.slots, false, &Slot::sound);
    storeState.main.itemCount = static_cast<std::uint32_t>(storeState.slots.size());
    storeState.main.nextId = safeNextId(storeState.main, storeState.slots);
    storeState.damaged = opening.damage > 0;
    storeState.open = true;
    // A start alone changes nothing, so that the daily copies are of days with changes.
    const bool mayReset = !opening.isNew && opening.damage == 0 && !storeFileIsReadOnly();
    if (mayReset && !tempIsFresh()) opening.resetFault = resetTemp();
    return Text::none;
}

void letGo() {
    const HoldLock hold(storeLock);
    storeFileClose();
    storeState = {};
    forgetUndoSteps();
}

bool tellNotOpened(Text text, const Opening &opening) {
    const bool held = opening.file == OpenResult::heldByAnother;
    if (opening.recovery == Recovery::linked)
        tellMore(text, Text::storeJournalLinked, {});
    else if (opening.recovery == Recovery::unread)
        tellMore(text, Text::storeJournalUnread, {opening.journal});
    else if (opening.recovery == Recovery::failed)
        tellMore(text, Text::storeNotBroughtBack, {opening.journal});
    else if (opening.emptied)
        tellUser(Text::storeEmptied, {storePath(), dailyCopyFolder(), libraryFolder()});
    else if (opening.absent)
        tellUser(Text::storeAbsent, {libraryFolder()});
    else if (opening.noRoom)
        tellStoreFault(Fault::notWritten);
    else if (text == Text::libraryNotOpened)
        tellMore(text, held ? Text::storeHeld : Text::storeNotOpened, {storePath()});
    else if (opening.isNewer)
        tellUser(text);
    else if (dailyCopyNames().empty())
        tellMore(text, Text::storeMayBeSaved, {libraryFolder()});
    else
        tellMore(text, Text::storeMayBeRestored, {libraryFolder(), libraryFolder()});
    return false;
}

}  // namespace

bool storeIsEmptied() {
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(storePath(), failure);
    const bool absent = failure == std::errc::no_such_file_or_directory;
    return (absent || (!failure && size == 0)) && !dailyCopyNames().empty();
}

bool storeOpen(WhenEmptied whenEmptied) {
    Text trouble = Text::none;
    Opening opening;
    const Fault fault = withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        if (storeState.open) return Fault::none;
        trouble = Text::libraryNotOpened;  // unless it comes to an end
        trouble = openFile(opening, whenEmptied);
        return Fault::none;
    });
    if (trouble != Text::none) letGo();
    if (fault != Fault::none) return tellStoreFault(fault);
    if (opening.recovery == Recovery::foreign) tellUser(Text::storeJournalSetAside, {opening.journal});
    if (trouble != Text::none) return tellNotOpened(trouble, opening);
    if (opening.damage > 0)
        tellMore(Text::libraryRecordDamaged, Text::storeDamageCount,
                 {std::to_string(opening.damage), std::to_string(opening.lost)});
    tellStoreFault(opening.resetFault);  // the library is usable all the same
    return true;
}

void storeClose() {
    withStoreLocked([]() REQUIRES_LOCK(storeLock) {
        if (!storeState.open || storeState.damaged || storeFileIsReadOnly()) return Fault::none;
        closeGaps();  // should it fail, the next end of a run does it
        storeFileCut(storeState.main.endOffset);
        return Fault::none;
    });
    letGo();
}

bool storeIsOpen() {
    const HoldLock hold(storeLock);
    return storeState.open;
}

bool storeIsReadOnly() {
    const HoldLock hold(storeLock);
    return storeState.open && storeFileIsReadOnly();
}

bool storeWriteHead() {
    return tellStoreFault(withStoreLocked([]() REQUIRES_LOCK(storeLock) { return changeHead(); }));
}

bool storeCopyTo(const std::string &path) {
    return withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
               if (!storeState.open) return Fault::absent;
               return storeFileCopyTo(path) ? Fault::none : Fault::notCopied;
           }) == Fault::none;
}

bool storeIsDamaged() {
    const HoldLock hold(storeLock);
    return storeState.damaged;
}

}  // namespace numalink
