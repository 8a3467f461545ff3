// Opening with all its checks, and closing.
#include <algorithm>
#include <cstring>

#include "platform/program_folder.h"
#include "settings/tell_user.h"
#include "store/store_changes.h"
#include "store/store_check.h"

namespace numalink {

namespace {

constexpr int textCannotOpen = 33, textHeadTooShort = 34, textWrongHead = 35, textDamaged = 36, textTooNew = 119;

MainHeader emptyMain() {
    MainHeader main{};
    std::memcpy(main.signature, mainSignature, sizeof mainSignature);
    main.formatNumber = storeNewestFormat;
    main.endOffset = sizeof main;
    main.nextId = rootId + 1;
    return main;
}

int createStore() REQUIRES_LOCK(storeLock) {
    storeState.main = emptyMain();
    changeBegin();
    changeWrite(0, bytesOf(storeState.main));
    return changeCommit() == ChangeResult::done ? 0 : textHeadTooShort;
}

int readMain() REQUIRES_LOCK(storeLock) {
    MainHeader &main = storeState.main;
    if (!storeFileRead(0, {reinterpret_cast<std::uint8_t *>(&main), sizeof main})) return textHeadTooShort;
    if (std::memcmp(main.signature, mainSignature, sizeof itemSignature) != 0) return textWrongHead;
    return main.formatNumber > storeNewestFormat ? textTooNew : 0;
}

void readSlots() REQUIRES_LOCK(storeLock) {
    storeState.slots.assign(std::min(storeState.main.itemCount, storeSlotCount), Slot{});
    for (std::size_t i = 0; i < storeState.slots.size(); i++) {
        Slot &slot = storeState.slots[i];
        slot.sound =
            storeFileRead(storeState.main.offsets[i], {reinterpret_cast<std::uint8_t *>(&slot.head), sizeof slot.head});
    }
}

// The text number of what keeps the file from being used, or 0; with damage, how many places have it.
int openFile(std::uint32_t &damage, Fault &resetFault) REQUIRES_LOCK(storeLock) {
    if (storeFileOpen(libraryFolder() + "storage.dat") != OpenResult::opened) return textCannotOpen;
    const std::int64_t size = storeFileSize();
    if (size < 0) return textHeadTooShort;
    if (const int fault = size == 0 ? createStore() : readMain(); fault != 0) return fault;
    readSlots();
    damage = size == 0 ? 0 : checkStore(storeState.main, static_cast<std::uint64_t>(size), storeState.slots);
    storeState.main.itemCount = static_cast<std::uint32_t>(storeState.slots.size());
    storeState.main.nextId = safeNextId(storeState.main, storeState.slots);
    storeState.damaged = damage > 0;
    storeState.open = true;
    if (size > 0 && damage == 0) resetFault = resetTemp();
    return 0;
}

}  // namespace

bool storeOpen() {
    int textNumber = 0;
    std::uint32_t damage = 0;
    Fault resetFault = Fault::none;
    {
        const HoldLock hold(storeLock);
        if (storeState.open) return true;
        textNumber = openFile(damage, resetFault);
        if (textNumber != 0) {
            storeFileClose();
            storeState = {};
        }
    }
    if (textNumber != 0) return failWith(textNumber);
    if (damage > 0) tellMore(textDamaged, OwnText::storeDamageCount, {std::to_string(damage)});
    storeTold(resetFault);  // the library is usable all the same
    return true;
}

void storeClose() {
    Fault fault = Fault::none;
    {
        const HoldLock hold(storeLock);
        if (!storeState.open) return;
        if (!storeState.damaged) {
            changeBegin();
            changeWrite(0, bytesOf(storeState.main));
            changeCut(storeState.main.endOffset);
            fault = faultOf(changeCommit());
        }
        storeFileClose();
        storeState = {};
    }
    storeTold(fault);
}

bool storeIsOpen() {
    const HoldLock hold(storeLock);
    return storeState.open;
}

bool storeWriteHead() {
    Fault fault = Fault::none;
    {
        const HoldLock hold(storeLock);
        fault = changeHead();
    }
    return storeTold(fault);
}

bool storeIsDamaged() {
    const HoldLock hold(storeLock);
    return storeState.damaged;
}

}  // namespace numalink
