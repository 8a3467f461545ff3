#include "store/store_changes.h"

#include <algorithm>
#include <cstring>

namespace numalink {

namespace {

// A part of the file that goes.
struct Gap {
    std::uint32_t offset;
    std::uint32_t size;
};

std::vector<Gap> gapsOf(const std::vector<bool> &leaving) REQUIRES_LOCK(storeLock) {
    std::vector<Gap> gaps;
    for (std::size_t slot = 0; slot < leaving.size(); slot++)
        if (leaving[slot])
            gaps.push_back(
                {storeState.main.offsets[slot], static_cast<std::uint32_t>(recordSize(storeState.slots[slot].head))});
    std::ranges::sort(gaps, {}, &Gap::offset);
    return gaps;
}

std::uint32_t sizeAhead(const std::vector<Gap> &gaps, std::uint32_t offset) {
    std::uint32_t size = 0;
    for (const Gap &gap : gaps) {
        if (gap.offset >= offset) break;
        size += gap.size;
    }
    return size;
}

// What lies from the first gap to the end of the records, without the gaps. False when it can't be read whole.
bool readClosedUp(const std::vector<Gap> &gaps, std::uint32_t end, Bytes &closedUp) REQUIRES_LOCK(storeLock) {
    for (std::size_t i = 0; i < gaps.size(); i++) {
        const std::uint32_t from = gaps[i].offset + gaps[i].size;
        const std::uint32_t to = i + 1 < gaps.size() ? gaps[i + 1].offset : end;
        const std::size_t filled = closedUp.size();
        closedUp.resize(filled + (to - from));
        if (!storeFileRead(from, std::span(closedUp).subspan(filled))) return false;
    }
    return true;
}

Bytes bytesOf(const NewRecord &record) {
    Bytes bytes(sizeof record.head);
    bytes.reserve(sizeof record.head + record.firstPayload.size() + record.secondPayload.size());
    std::memcpy(bytes.data(), &record.head, sizeof record.head);
    bytes.insert(bytes.end(), record.firstPayload.begin(), record.firstPayload.end());
    bytes.insert(bytes.end(), record.secondPayload.begin(), record.secondPayload.end());
    return bytes;
}

// Where the next record goes, -1 when the file doesn't tell. In a damaged file, whose head may lie, behind everything.
std::int64_t placeForRecord() REQUIRES_LOCK(storeLock) {
    return storeState.damaged ? storeFileSize() : std::int64_t{storeState.main.endOffset};
}

// The state without the slots that leave; their records still lie in the file.
StoreState withoutSlots(const std::vector<bool> &leaving) REQUIRES_LOCK(storeLock) {
    StoreState next = storeState;
    if (leaving.empty()) return next;
    std::size_t kept = 0;
    for (std::size_t slot = 0; slot < leaving.size(); slot++) {
        if (leaving[slot]) continue;
        next.main.offsets[kept] = storeState.main.offsets[slot];
        next.slots[kept] = storeState.slots[slot];
        kept++;
    }
    std::fill(next.main.offsets + kept, next.main.offsets + leaving.size(), 0U);
    next.slots.resize(kept);
    next.main.itemCount = static_cast<std::uint32_t>(kept);
    return next;
}

void appendSlot(StoreState &next, const NewRecord &added, std::uint32_t offset) {
    next.main.offsets[next.slots.size()] = offset;
    next.slots.push_back({added.head, true});
    next.main.itemCount = static_cast<std::uint32_t>(next.slots.size());
    next.main.endOffset = offset + static_cast<std::uint32_t>(recordSize(added.head));
}

}  // namespace

Bytes bytesOf(const MainHeader &main) {
    Bytes bytes(sizeof main);
    std::memcpy(bytes.data(), &main, sizeof main);
    return bytes;
}

Fault faultOf(ChangeResult result) {
    switch (result) {
        case ChangeResult::done:
            return Fault::none;
        case ChangeResult::refused:
            return Fault::notWritten;
        case ChangeResult::headRefused:
            return Fault::headNotWritten;
        case ChangeResult::broken:
            return Fault::broken;
    }
    return Fault::broken;
}

Fault prepareChange() {
    if (!storeState.open) return Fault::absent;
    if (storeState.damaged && !storeState.copied) storeState.copied = storeFileKeepCopy();
    return storeState.damaged && !storeState.copied ? Fault::notCopied : Fault::none;
}

// The order on the disk: the new record, the head that knows it and no longer the old ones, then the records moved
// together, then the head with their new places.
Fault changeRecords(const std::vector<bool> &leaving, const NewRecord *added, std::uint32_t nextId) {
    if (const Fault fault = prepareChange(); fault != Fault::none) return fault;
    StoreState next = withoutSlots(leaving);
    next.main.nextId = nextId;
    if (added && next.slots.size() >= storeSlotCount) return Fault::full;
    changeBegin();
    Bytes record;
    if (added) {
        const std::int64_t place = placeForRecord();
        record = bytesOf(*added);
        if (place < 0 || static_cast<std::uint64_t>(place) + record.size() > UINT32_MAX) return Fault::tooLarge;
        appendSlot(next, *added, static_cast<std::uint32_t>(place));
        changeWrite(static_cast<std::uint64_t>(place), record);
        changeBarrier();
    }
    const std::vector<Gap> gaps = gapsOf(leaving);
    if (!gaps.empty() && !storeState.damaged) {
        if (added) {
            changeWrite(0, bytesOf(next.main));
            changeBarrier();
        }
        Bytes closedUp;
        if (!readClosedUp(gaps, storeState.main.endOffset, closedUp)) return Fault::notWritten;
        closedUp.insert(closedUp.end(), record.begin(), record.end());
        if (!closedUp.empty()) changeWrite(gaps.front().offset, std::move(closedUp));
        changeBarrier();
        for (std::size_t slot = 0; slot < next.slots.size(); slot++)
            next.main.offsets[slot] -= sizeAhead(gaps, next.main.offsets[slot]);
        next.main.endOffset -= sizeAhead(gaps, next.main.endOffset);
    }
    changeWrite(0, bytesOf(next.main));
    const Fault fault = faultOf(changeCommit());
    if (fault == Fault::none) storeState = std::move(next);
    return fault;
}

Fault changeInPlace(std::size_t slot, std::size_t offset, ByteView bytes) {
    if (const Fault fault = prepareChange(); fault != Fault::none) return fault;
    changeBegin();
    changeWrite(std::uint64_t{storeState.main.offsets[slot]} + offset, Bytes(bytes.begin(), bytes.end()));
    const Fault fault = faultOf(changeCommit());
    ItemHeader &head = storeState.slots[slot].head;
    if (fault == Fault::none && offset + bytes.size() <= sizeof head)
        std::memcpy(reinterpret_cast<std::uint8_t *>(&head) + offset, bytes.data(), bytes.size());
    return fault;
}

Fault changeHead() {
    if (const Fault fault = prepareChange(); fault != Fault::none) return fault;
    changeBegin();
    changeWrite(0, bytesOf(storeState.main));
    return faultOf(changeCommit());
}

}  // namespace numalink
