#include "store/file/changes.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <utility>

#include "store/file/copy.h"

namespace numalink {

namespace {

constexpr std::uint64_t wasteLimit = std::uint64_t{16} * 1024;  // bytes that no record covers

void appendRecord(Bytes &bytes, const NewRecord &record) {
    const auto *head = reinterpret_cast<const std::uint8_t *>(&record.head);
    bytes.insert(bytes.end(), head, head + sizeof record.head);
    bytes.insert(bytes.end(), record.firstPayload.begin(), record.firstPayload.end());
    bytes.insert(bytes.end(), record.secondPayload.begin(), record.secondPayload.end());
}

// Each change works on a copy of the state, which takes its place once the disk has all of it: what is refused leaves
// memory and file in step.

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

// Puts the added records one behind the other from place on.
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

std::uint64_t endOfRecords(const StoreState &state) {
    std::uint64_t end = sizeof state.main;
    for (std::size_t slot = 0; slot < state.slots.size(); slot++)
        end = std::max(end, state.main.offsets[slot] + recordSize(state.slots[slot].head));
    return end;
}

// Ends a change with its head; next is the state from then on.
Fault commitState(StoreState next) REQUIRES_LOCK(storeLock) {
    changeWrite(0, bytesOf(next.main));
    const Fault fault = faultOf(changeCommit());
    if (fault == Fault::none) storeState = std::move(next);
    return fault;
}

// Once the gaps are larger than the records, they are closed without waiting for the end of the run. Should that fail,
// nothing is lost but the room, so it says nothing: the change ahead of it is done.
void closeLargeGaps() REQUIRES_LOCK(storeLock) {
    std::uint64_t used = sizeof storeState.main;
    for (const Slot &slot : storeState.slots) used += recordSize(slot.head);
    const std::uint64_t waste = storeState.main.endOffset - std::min<std::uint64_t>(used, storeState.main.endOffset);
    if (storeState.damaged || waste <= std::max(wasteLimit, used)) return;
    try {
        closeGaps();
    } catch (const std::bad_alloc &) {
        changeBegin();  // what was gathered for it is dropped
    }
}

// Those that go lose their signature: what lies in a gap is no record. Never behind the new end, where the end of the
// run cuts: a change counts as done only while all that it wrote is there.
void unmarkRecords(const std::vector<bool> &leaving, std::uint64_t end) REQUIRES_LOCK(storeLock) {
    for (std::size_t slot = 0; slot < leaving.size(); slot++)
        if (leaving[slot] && storeState.main.offsets[slot] + sizeof itemSignature <= end)
            changeWrite(storeState.main.offsets[slot], Bytes(sizeof itemSignature));
}

void writePatches(std::span<const Patch> patches) REQUIRES_LOCK(storeLock) {
    for (const Patch &patch : patches)
        changeWrite(std::uint64_t{storeState.main.offsets[patch.slot]} + patch.offset, patch.bytes);
}

// In memory, what of the patch lies in the record's head.
void patchHead(ItemHeader &head, const Patch &patch) {
    if (!patch.bytes.empty() && patch.offset + patch.bytes.size() <= sizeof head)
        std::memcpy(reinterpret_cast<std::uint8_t *>(&head) + patch.offset, patch.bytes.data(), patch.bytes.size());
}

// The records by rising offset, and what the next change moves of them: count records from the first on, of size bytes
// together, to place.
struct GapMove {
    const std::vector<std::size_t> &order;
    std::size_t first = 0, count = 0;
    std::uint64_t place = sizeof(MainHeader), size = 0;
};

// The next records behind a gap, as many as one change may move; none when there are no more.
void nextBehindGap(GapMove &move) REQUIRES_LOCK(storeLock) {
    move.first += std::exchange(move.count, 0);
    move.place += std::exchange(move.size, 0);
    while (move.first + move.count < move.order.size()) {
        const std::size_t slot = move.order[move.first + move.count];
        const std::uint64_t offset = storeState.main.offsets[slot], size = recordSize(storeState.slots[slot].head);
        if (move.count > 0 && move.size + size > gapLimits.step) return;
        // In its place already, or too large for one change: the gap ahead of that one stays.
        if (move.count == 0 && (offset == move.place || size > gapLimits.step)) {
            move.place = offset + size;
            move.first++;
        } else {
            move.count++;
            move.size += size;
        }
    }
}

// A deleted record of this size, as gaps are made of them.
ItemHeader gapHead(std::uint64_t size) {
    ItemHeader head{};
    head.dataSize = static_cast<std::uint32_t>(size - sizeof head);
    head.id = rootId + 1;
    return head;
}

Fault endAt(std::uint64_t place) REQUIRES_LOCK(storeLock) {
    if (place == storeState.main.endOffset) return Fault::none;
    MainHeader main = storeState.main;
    main.endOffset = static_cast<std::uint32_t>(place);
    changeBegin();
    changeWrite(0, bytesOf(main));
    const Fault fault = faultOf(changeCommit());
    if (fault == Fault::none) storeState.main = main;
    return fault;
}

// One change, behind which the gap lies ahead of the records that come next; behind the last ones is the end.
Fault moveOne(GapMove &move) REQUIRES_LOCK(storeLock) {
    nextBehindGap(move);
    if (move.count == 0) return endAt(move.place);
    StoreState next = storeState;
    Bytes bytes(static_cast<std::size_t>(move.size));
    std::size_t filled = 0;
    for (const std::size_t slot : std::span(move.order).subspan(move.first, move.count)) {
        const auto record =
            std::span(bytes).subspan(filled, static_cast<std::size_t>(recordSize(next.slots[slot].head)));
        if (!storeFileRead(next.main.offsets[slot], record)) return Fault::notWritten;
        next.main.offsets[slot] = static_cast<std::uint32_t>(move.place + filled);
        filled += record.size();
    }
    changeBegin();
    const std::uint64_t end = move.place + move.size;
    const bool last = move.first + move.count == move.order.size();
    if (last) next.main.endOffset = static_cast<std::uint32_t>(end);
    changeWrite(move.place, std::move(bytes));
    // The gap gets the head of a deleted record, so that a library at rest between two moves is in order.
    if (!last) {
        const std::uint64_t following = storeState.main.offsets[move.order[move.first + move.count]];
        const ItemHeader gap = gapHead(following - end);
        const auto *head = reinterpret_cast<const std::uint8_t *>(&gap);
        changeWrite(end, Bytes(head, head + sizeof gap));
    }
    return commitState(std::move(next));
}

}  // namespace

GapLimits gapLimits;

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
        case ChangeResult::replaced:
            return Fault::replaced;
    }
    return Fault::broken;
}

Fault prepareChange() {
    forgetRefusal();
    if (!storeState.open) return Fault::absent;
    const bool mustCopy = storeState.damaged && !storeState.copied && !storeFileIsReadOnly();
    if (mustCopy) storeState.copied = storeFileKeepCopy() && storeJournalKeepTorn();
    return mustCopy && !storeState.copied ? Fault::notCopied : Fault::none;
}

Fault changeRecords(const std::vector<bool> &leaving, std::span<const NewRecord> added, std::uint32_t nextId) {
    if (const Fault fault = prepareChange(); fault != Fault::none) return fault;
    StoreState next = withoutSlots(leaving);
    next.main.nextId = nextId;
    const std::int64_t fileSize = storeFileSize();
    if (fileSize < 0) return Fault::notWritten;
    // What leaves at the end gives its room to what comes; the journal keeps the old bytes until the change is done.
    if (!storeState.damaged) next.main.endOffset = static_cast<std::uint32_t>(endOfRecords(next));
    // In a damaged file, whose head may lie, behind everything.
    const auto place = storeState.damaged ? static_cast<std::uint64_t>(fileSize) : next.main.endOffset;
    Bytes bytes;
    if (const Fault fault = appendRecords(next, added, place, bytes); fault != Fault::none) return fault;
    changeBegin();
    unmarkRecords(leaving, storeState.damaged ? UINT64_MAX : next.main.endOffset);
    changeWrite(place, std::move(bytes));
    next.arrivals++;
    const Fault fault = commitState(std::move(next));
    if (fault == Fault::none) closeLargeGaps();
    return fault;
}

Fault closeGaps() {
    if (!storeState.open || storeState.damaged) return Fault::absent;
    forgetRefusal();
    std::vector<std::size_t> order(storeState.slots.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, {},
                      [](std::size_t slot) REQUIRES_LOCK(storeLock) { return storeState.main.offsets[slot]; });
    std::uint64_t moved = 0;
    for (GapMove move{order}; moved < gapLimits.all;) {
        if (const Fault fault = moveOne(move); fault != Fault::none || move.count == 0) return fault;
        moved += move.size;
    }
    return Fault::none;
}

Fault changeInPlace(std::span<const Patch> patches) {
    if (const Fault fault = prepareChange(); fault != Fault::none) return fault;
    changeBegin();
    writePatches(patches);
    const Fault fault = faultOf(changeCommit());
    if (fault != Fault::none) return fault;
    for (const Patch &patch : patches) patchHead(storeState.slots[patch.slot].head, patch);
    return Fault::none;
}

Fault changeAndRemove(const std::vector<bool> &leaving, std::span<const Patch> patches) {
    if (const Fault fault = prepareChange(); fault != Fault::none) return fault;
    StoreState next = withoutSlots(leaving);
    if (!storeState.damaged) next.main.endOffset = static_cast<std::uint32_t>(endOfRecords(next));
    for (const Patch &patch : patches) {
        const auto moved = std::count(leaving.begin(), leaving.begin() + static_cast<std::ptrdiff_t>(patch.slot), true);
        patchHead(next.slots[patch.slot - static_cast<std::size_t>(moved)].head, patch);
    }
    changeBegin();
    unmarkRecords(leaving, storeState.damaged ? UINT64_MAX : next.main.endOffset);
    writePatches(patches);
    next.arrivals++;
    const Fault fault = commitState(std::move(next));
    if (fault == Fault::none) closeLargeGaps();
    return fault;
}

Fault changeHead() {
    if (const Fault fault = prepareChange(); fault != Fault::none) return fault;
    changeBegin();
    changeWrite(0, bytesOf(storeState.main));
    return faultOf(changeCommit());
}

}  // namespace numalink
