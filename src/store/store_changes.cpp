#include "store/store_changes.h"

#include <algorithm>
#include <cstring>

#include "store/store_copy.h"

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

// Puts the added records behind the last, and their bytes behind those given, which begin at place. In a damaged file,
// whose head may lie, the place is the end of the file.
Fault appendRecords(StoreState &next, std::span<const NewRecord> added, std::uint64_t place, Bytes &bytes) {
    if (next.slots.size() + added.size() > storeSlotCount) return Fault::full;
    std::uint64_t size = bytes.size();
    for (const NewRecord &record : added) size += recordSize(record.head);
    if (place + size > UINT32_MAX) return Fault::tooLarge;
    bytes.reserve(static_cast<std::size_t>(size));
    for (const NewRecord &record : added) {
        next.main.offsets[next.slots.size()] = static_cast<std::uint32_t>(place + bytes.size());
        next.slots.push_back({record.head, true});
        appendRecord(bytes, record);
        next.main.endOffset = static_cast<std::uint32_t>(place + bytes.size());
    }
    next.main.itemCount = static_cast<std::uint32_t>(next.slots.size());
    return Fault::none;
}

void closeGaps(MainHeader &main, std::size_t slots, const std::vector<Gap> &gaps) {
    for (std::size_t slot = 0; slot < slots; slot++) main.offsets[slot] -= sizeAhead(gaps, main.offsets[slot]);
    main.endOffset -= sizeAhead(gaps, main.endOffset);
}

// Where records aren't moved, those that go lose their signature, or they would count as lost ones for ever.
void unmarkRecords(const std::vector<bool> &leaving) REQUIRES_LOCK(storeLock) {
    for (std::size_t slot = 0; slot < leaving.size(); slot++)
        if (leaving[slot]) changeWrite(storeState.main.offsets[slot], Bytes(sizeof itemSignature));
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

Fault changeRecords(const std::vector<bool> &leaving, std::span<const NewRecord> added, std::uint32_t nextId) {
    if (const Fault fault = prepareChange(); fault != Fault::none) return fault;
    StoreState next = withoutSlots(leaving);
    next.main.nextId = nextId;
    const std::int64_t fileSize = storeFileSize();
    if (fileSize < 0) return Fault::notWritten;
    auto place = storeState.damaged ? static_cast<std::uint64_t>(fileSize) : storeState.main.endOffset;
    Bytes bytes;
    const std::vector<Gap> gaps = storeState.damaged ? std::vector<Gap>{} : gapsOf(leaving);
    if (!gaps.empty()) {
        place = gaps.front().offset;
        if (!readClosedUp(gaps, storeState.main.endOffset, bytes)) return Fault::notWritten;
        closeGaps(next.main, next.slots.size(), gaps);
    }
    if (const Fault fault = appendRecords(next, added, place, bytes); fault != Fault::none) return fault;
    changeBegin();
    if (storeState.damaged) unmarkRecords(leaving);
    changeWrite(place, std::move(bytes));
    changeWrite(0, bytesOf(next.main));
    const Fault fault = faultOf(changeCommit());
    next.arrivals++;
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
        if (patch.bytes.empty()) continue;
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
