#include "store/file/state.h"

#include <algorithm>
#include <cstring>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "platform/letter_case.h"
#include "store/file/check.h"
#include "telling/tell_user.h"

namespace numalink {

StoreState storeState;

namespace {

struct FaultText {
    Fault fault;
    Text text;
};
constexpr FaultText faultTexts[] = {
    {Fault::full, Text::storeFull},
    {Fault::noFolder, Text::storeNoFolder},
    {Fault::intoItself, Text::storeIntoItself},
    {Fault::tooLarge, Text::storeTooLarge},
    {Fault::broken, Text::storeBroken},
    {Fault::replaced, Text::storeReplaced},
    {Fault::itemUnread, Text::storeItemUnread},
    {Fault::notCopied, Text::storeNotCopied},
    {Fault::noMemory, Text::storeNoMemory},
};

struct RefusalText {
    RefusalCause cause;
    Text text;
};
constexpr RefusalText refusalTexts[] = {
    {RefusalCause::denied, Text::storeDenied},
    {RefusalCause::disk, Text::storeDiskFailed},
    {RefusalCause::linked, Text::storeJournalLinked},
    {RefusalCause::unknown, Text::storeNotWritten},
};

// Why this thread's last change was refused, and what comes next.
bool tellRefusal() {
    constexpr std::uint64_t kilobyte = 1024, spare = 8 * kilobyte;  // as disks give room in blocks
    const std::uint64_t room = (lastRefusal().room + spare) / kilobyte;
    if (lastRefusal().cause == RefusalCause::full) return failWith(Text::storeDiskFull, {std::to_string(room)});
    for (const RefusalText &row : refusalTexts)
        if (row.cause == lastRefusal().cause) return failWith(row.text);
    return false;
}

// How many codes a name of this kind may have.
std::size_t nameLimitOf(ItemKind itemKind) { return isTextKind(itemKind) ? programNameLimit : storeNameLimit; }

// Whether deleted records, and nothing else, fill the stretch.
bool isGap(const Stretch &stretch) REQUIRES_LOCK(storeLock) {
    std::uint64_t at = stretch.from;
    while (at < stretch.to) {
        ItemHeader head{};
        if (stretch.to - at < sizeof head || !storeFileRead(at, {reinterpret_cast<std::uint8_t *>(&head), sizeof head}))
            return false;
        if (!isDeleted(head)) return false;
        at += recordSize(head);
    }
    return at == stretch.to;
}

}  // namespace

bool tellStoreFault(Fault fault) {
    if (fault == Fault::none) return true;
    try {
        if (fault == Fault::headNotWritten) return failWith(Text::libraryHeadNotWritten);
        if (fault == Fault::notWritten) return tellRefusal();
        for (const FaultText &row : faultTexts)
            if (row.fault == fault) return failWith(row.text);
    } catch (const std::bad_alloc &) {
        // Without memory for a box the caller's false is all that tells.
    }
    return false;
}

std::size_t slotOfId(ItemId id) {
    for (std::size_t slot = 0; slot < storeState.slots.size(); slot++)
        if (storeState.slots[slot].sound && storeState.slots[slot].head.id == id) return slot;
    return noSlot;
}

bool isFolderId(ItemId id) {
    if (id == rootId) return true;
    const std::size_t slot = slotOfId(id);
    return slot != noSlot && isFolderKind(storeState.slots[slot].head.kind);
}

bool isDeleted(const ItemHeader &head) {
    return std::ranges::all_of(head.signature, [](char code) { return code == 0; }) && head.id > rootId;
}

MainHeader emptyMain() {
    MainHeader main{};
    std::memcpy(main.signature, mainSignature, sizeof mainSignature);
    main.formatNumber = storeNewestFormat;
    main.endOffset = sizeof main;
    main.nextId = rootId + 1;
    return main;
}

Text readMain(MainHeader &main) {
    if (!storeFileRead(0, {reinterpret_cast<std::uint8_t *>(&main), sizeof main})) return Text::libraryTooShort;
    if (std::memcmp(main.signature, mainSignature, sizeof itemSignature) != 0) return Text::libraryWrongHead;
    return main.formatNumber > storeNewestFormat ? Text::libraryTooNew : Text::none;
}

bool mayBeNewer(Text trouble, const MainHeader &main) {
    constexpr std::uint32_t limit = 2 * storeNewestFormat;
    return trouble == Text::libraryTooNew && main.formatNumber < limit;
}

void readSlots(const MainHeader &main, std::vector<Slot> &slots) {
    slots.assign(std::min(main.itemCount, storeSlotCount), Slot{});
    for (std::size_t i = 0; i < slots.size(); i++) {
        const std::span<std::uint8_t> head(reinterpret_cast<std::uint8_t *>(&slots[i].head), sizeof(ItemHeader));
        slots[i].sound = storeFileRead(main.offsets[i], head);
    }
}

std::vector<Stretch> strayStretches(const MainHeader &main, const std::vector<Slot> &slots) {
    std::vector<Stretch> strays = uncoveredStretches(main, slots);
    std::erase_if(strays, [](const Stretch &stretch) REQUIRES_LOCK(storeLock) { return isGap(stretch); });
    return strays;
}

ItemEntry entryOf(const ItemHeader &head) {
    return {.id = head.id,
            .parent = head.parent,
            .kind = head.kind,
            .flags = head.flags,
            .name = std::string(nameOf(head)),
            .headSize = head.headSize,
            .dataSize = head.dataSize};
}

std::string_view storedName(std::string_view name) { return name.substr(0, name.find('\0')).substr(0, storeNameLimit); }

bool isNamed(const ItemHeader &head, std::string_view name, ItemId parent) {
    return head.parent == parent && head.kind != kind::temporaryFolder && equalWithoutCase(nameOf(head), name);
}

std::string freeName(std::string_view name, ItemId parent, ItemKind itemKind,
                     const std::function<bool(std::string_view)> &alsoTaken) {
    name = storedName(name);
    std::string candidate(name);
    for (std::uint32_t number = 2;; number++) {
        const auto taken = [&](const ItemHeader &head) { return isNamed(head, candidate, parent); };
        if (lowestSlot(taken) == noSlot && !(alsoTaken && alsoTaken(candidate))) return candidate;
        const std::string digits = std::to_string(number);
        candidate = name.substr(0, nameLimitOf(itemKind) - digits.size() - 1);
        candidate.append(" ").append(digits);
    }
}

}  // namespace numalink
