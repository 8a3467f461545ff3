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

void appendRecord(Bytes &bytes, const NewRecord &record) {
    const auto *head = reinterpret_cast<const std::uint8_t *>(&record.head);
    bytes.insert(bytes.end(), head, head + sizeof record.head);
    bytes.insert(bytes.end(), record.firstPayload.begin(), record.firstPayload.end());
    bytes.insert(bytes.end(), record.secondPayload.begin(), record.secondPayload.end());
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

// Hands over the new records, which go side by side to one place, and gives their bytes.
Fault appendRecords(StoreState &next, std::span<const NewRecord> added, Bytes &records) REQUIRES_LOCK(storeLock) {
    if (added.empty()) return Fault::none;
    if (next.slots.size() + added.size() > storeSlotCount) return Fault::full;
    const std::int64_t place = placeForRecord();
    std::uint64_t size = 0;
    for (const NewRecord &record : added) size += recordSize(record.head);
    if (place < 0 || static_cast<std::uint64_t>(place) + size > UINT32_MAX) return Fault::tooLarge;
    records.reserve(static_cast<std::size_t>(size));
    for (const NewRecord &record : added) {
        appendSlot(next, record, static_cast<std::uint32_t>(static_cast<std::uint64_t>(place) + records.size()));
        appendRecord(records, record);
    }
    changeWrite(static_cast<std::uint64_t>(place), records);
    changeBarrier();
    return Fault::none;
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

// The order on the disk: the new records, the head that knows them and no longer the old ones, then the records moved
// together, then the head with their new places.
Fault changeRecords(const std::vector<bool> &leaving, std::span<const NewRecord> added, std::uint32_t nextId) {
    if (const Fault fault = prepareChange(); fault != Fault::none) return fault;
    StoreState next = withoutSlots(leaving);
    next.main.nextId = nextId;
    changeBegin();
    Bytes records;
    if (const Fault fault = appendRecords(next, added, records); fault != Fault::none) return fault;
    const std::vector<Gap> gaps = gapsOf(leaving);
    if (!gaps.empty() && !storeState.damaged) {
        if (!added.empty()) {
            changeWrite(0, bytesOf(next.main));
            changeBarrier();
        }
        Bytes closedUp;
        if (!readClosedUp(gaps, storeState.main.endOffset, closedUp)) return Fault::notWritten;
        closedUp.insert(closedUp.end(), records.begin(), records.end());
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

Fault changeInPlace(std::span<const Patch> patches) {
    if (const Fault fault = prepareChange(); fault != Fault::none) return fault;
    changeBegin();
    for (const Patch &patch : patches)
        changeWrite(std::uint64_t{storeState.main.offsets[patch.slot]} + patch.offset, patch.bytes);
    const Fault fault = faultOf(changeCommit());
    if (fault != Fault::none) return fault;
    for (const Patch &patch : patches) {
        ItemHeader &head = storeState.slots[patch.slot].head;
        if (patch.offset + patch.bytes.size() <= sizeof head)
            std::memcpy(reinterpret_cast<std::uint8_t *>(&head) + patch.offset, patch.bytes.data(), patch.bytes.size());
    }
    return Fault::none;
}

Fault changeHead() {
    if (const Fault fault = prepareChange(); fault != Fault::none) return fault;
    changeBegin();
    changeWrite(0, bytesOf(storeState.main));
    return faultOf(changeCommit());
}

}  // namespace numalink
