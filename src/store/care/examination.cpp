#include "store/care/examination.h"

#include <algorithm>
#include <map>
#include <set>

#include "store/file/check.h"

namespace numalink {

namespace {

constexpr std::size_t scanBlock = std::size_t{64} * 1024, unreadableSkip = 512;  // bytes

// Trust goes down step by step: the table of records while it agrees with what lies there, then signatures, then sizes
// that what follows bears out. A payload has nothing by which it could be checked, so a record counts as whole when its
// head is sound and its bytes can be read.

bool readHead(std::uint64_t offset, ItemHeader &head) REQUIRES_LOCK(storeLock) {
    return storeFileRead(offset, {reinterpret_cast<std::uint8_t *>(&head), sizeof head});
}

// Looks for the signatures of records ahead of limit. Called again and again, it goes on in the block that it has.
struct SignatureSearch {
    const std::uint64_t limit;
    std::uint64_t start = 0;  // of block in the file
    Bytes block;

    // Reads on from here; false when that can't be read, and block is then what is to be passed over.
    bool load(std::uint64_t from) REQUIRES_LOCK(storeLock);
    // The next place from this one on where a signature lies, or limit.
    std::uint64_t next(std::uint64_t from) REQUIRES_LOCK(storeLock);
};

bool SignatureSearch::load(std::uint64_t from) {
    start = from;
    block.resize(static_cast<std::size_t>(std::min<std::uint64_t>(scanBlock, limit - from)));
    if (storeFileRead(from, block)) return true;
    if (block.size() > unreadableSkip) block.resize(unreadableSkip);
    return storeFileRead(from, block);
}

std::uint64_t SignatureSearch::next(std::uint64_t from) {
    while (limit - std::min(from, limit) >= sizeof itemSignature) {
        const bool atHand = from >= start && from + sizeof itemSignature <= start + block.size();
        if (!atHand && !load(from)) {
            from += block.size();
            block.clear();
            continue;
        }
        const auto first = block.begin() + static_cast<std::ptrdiff_t>(from - start);
        const auto hit = std::search(first, block.end(), std::begin(itemSignature), std::end(itemSignature));
        if (hit != block.end()) return start + static_cast<std::uint64_t>(hit - block.begin());
        // The end of one block and the beginning of the next may hold a signature together.
        from = start + block.size() - (sizeof itemSignature - 1);
    }
    return limit;
}

// Whether the signature of a record lies here.
bool signatureAt(std::uint64_t offset) REQUIRES_LOCK(storeLock) {
    char there[sizeof itemSignature] = {};
    return storeFileRead(offset, {reinterpret_cast<std::uint8_t *>(there), sizeof there}) &&
           std::memcmp(there, itemSignature, sizeof there) == 0;
}

// Whether a record's size can be believed: behind it lies another record or the end, or within it none.
bool sizeIsCredible(const ItemHeader &head, std::uint64_t offset, std::uint64_t limit) REQUIRES_LOCK(storeLock) {
    const std::uint64_t end = offset + recordSize(head);
    if (end == limit || (limit - end >= sizeof itemSignature && signatureAt(end))) return true;
    const std::uint64_t last = std::min(limit, end + sizeof itemSignature - 1);
    SignatureSearch search{.limit = last, .block = {}};
    for (std::uint64_t at = search.next(offset + sizeof itemSignature); at < last; at = search.next(at + 1)) {
        ItemHeader inner{};
        if (readHead(at, inner) && recordIsSound(inner, at, limit)) return false;
    }
    return true;
}

bool payloadsReadable(const ItemHeader &head, std::uint64_t offset) REQUIRES_LOCK(storeLock) {
    const std::uint64_t end = offset + recordSize(head);
    Bytes block;
    for (std::uint64_t at = offset; at < end; at += block.size()) {
        block.resize(static_cast<std::size_t>(std::min<std::uint64_t>(scanBlock, end - at)));
        if (!storeFileRead(at, block)) return false;
    }
    return true;
}

// Whether a record of this size lies at either place, the same to the byte.
bool isSameRecord(std::uint64_t one, std::uint64_t other, std::uint64_t size) REQUIRES_LOCK(storeLock) {
    Bytes there, elsewhere;
    for (std::uint64_t at = 0; at < size; at += there.size()) {
        there.resize(static_cast<std::size_t>(std::min<std::uint64_t>(scanBlock, size - at)));
        elsewhere.resize(there.size());
        if (!storeFileRead(one + at, there) || !storeFileRead(other + at, elsewhere) || there != elsewhere)
            return false;
    }
    return true;
}

// Takes a record for what lies ahead of another that was found within it.
void shorten(Examined &examined, std::size_t slot, std::uint64_t size) {
    ItemHeader &head = examined.slots[slot].head;
    examined.shortened.push_back(slot);
    head.dataSize = static_cast<std::uint32_t>(size - std::min<std::uint64_t>(size, sizeof head + head.headSize));
    head.headSize = static_cast<std::uint32_t>(size - sizeof head - head.dataSize);
}

// Which records that the search comes upon are taken. Behind the end of the records lies what was deleted, unless the
// head can't be believed: there, only one whose size the table has for one that is lost, as bytes that came into the
// file push it on.
struct Searched {
    std::map<ItemId, std::uint64_t> ids;  // where the record of each id lies
    std::uint64_t end = 0;                // of the records
    std::set<std::uint64_t> lostSizes;    // by the table
};

bool isTaken(const Searched &searched, const ItemHeader &head, std::uint64_t at, std::uint64_t limit)
    REQUIRES_LOCK(storeLock) {
    return recordIsSound(head, at, limit) &&
           (at + recordSize(head) <= searched.end || searched.lostSizes.contains(recordSize(head))) &&
           sizeIsCredible(head, at, limit) && payloadsReadable(head, at);
}

// Looks through one stretch, and gives where the last record that it has found ends. One that has the id of another,
// and isn't a copy of it, is kept beside it under an id of its own.
std::uint64_t searchStretch(Examined &examined, Searched &searched, std::uint64_t from, std::uint64_t limit)
    REQUIRES_LOCK(storeLock) {
    std::uint64_t end = from;
    SignatureSearch search{.limit = limit, .block = {}};
    for (std::uint64_t at = search.next(from); at < limit; at = search.next(at)) {
        ItemHeader head{};
        if (!readHead(at, head) || !isTaken(searched, head, at, limit)) {
            at++;
            continue;
        }
        // A copy to the byte is what a moved record left behind; another record with this id is an item of its own.
        const auto [same, ownId] = searched.ids.emplace(head.id, at);
        if (ownId || !isSameRecord(same->second, at, recordSize(head))) {
            examined.offsets.push_back(at);
            examined.found.push_back(head);
            if (!ownId) examined.found.back().id = noItem;  // gets one of its own
        }
        at = end = at + recordSize(head);
    }
    return end;
}

// Whether a record begins within these bytes.
bool holdsRecord(const Searched &searched, std::uint64_t from, std::uint64_t to, std::uint64_t limit)
    REQUIRES_LOCK(storeLock) {
    SignatureSearch search{.limit = std::min(limit, to + sizeof itemSignature - 1), .block = {}};
    for (std::uint64_t at = search.next(from + 1); at < search.limit; at = search.next(at + 1)) {
        ItemHeader head{};
        if (readHead(at, head) && isTaken(searched, head, at, limit)) return true;
    }
    return false;
}

// Whether what lies behind a record shows that its size is right: the end or another record, with none but deleted ones
// ahead of it.
bool isFollowed(const Examined &examined, std::uint64_t end) REQUIRES_LOCK(storeLock) {
    ItemHeader next{};
    while (readHead(end, next) && isDeleted(next) && recordSize(next) <= examined.fileSize - end)
        end += recordSize(next);
    return end == examined.main.endOffset || signatureAt(end);
}

// What the table makes of the sizes of those that are lost, by slot: from each to the next, or to the end of the
// records.
std::map<std::size_t, std::uint64_t> lostSizes(const Examined &examined) {
    std::map<std::size_t, std::uint64_t> sizes;
    std::set<std::uint64_t> places{examined.main.endOffset};
    const std::span<const std::uint32_t> offsets(examined.main.offsets, examined.slots.size());
    places.insert(offsets.begin(), offsets.end());
    for (std::size_t slot = 0; slot < offsets.size(); slot++) {
        if (examined.slots[slot].sound) continue;
        const auto next = places.upper_bound(offsets[slot]);
        sizes[slot] = next == places.end() ? 0 : *next - offsets[slot];
    }
    return sizes;
}

// All that no record of the table covers; and within one that isn't followed as it should be, since bytes that are
// missing from it have drawn the next ones into it. Then it is what lies ahead of them.
void searchFile(Examined &examined, bool headLies) REQUIRES_LOCK(storeLock) {
    Searched searched;
    std::vector<std::size_t> order;
    for (std::size_t slot = 0; slot < examined.slots.size(); slot++) {
        if (!examined.slots[slot].sound) continue;
        searched.ids.emplace(examined.slots[slot].head.id, examined.main.offsets[slot]);
        order.push_back(slot);
    }
    std::ranges::sort(order, {}, [&](std::size_t slot) { return examined.main.offsets[slot]; });
    searched.end = headLies ? examined.fileSize : std::min<std::uint64_t>(examined.fileSize, examined.main.endOffset);
    if (!headLies)
        for (const auto &[slot, size] : lostSizes(examined)) searched.lostSizes.insert(size);
    std::uint64_t from = std::min<std::uint64_t>(sizeof(MainHeader), examined.fileSize);
    for (std::size_t i = 0; i <= order.size(); i++) {
        const bool last = i == order.size();
        const std::uint64_t limit = last ? examined.fileSize : examined.main.offsets[order[i]];
        searchStretch(examined, searched, std::min(from, limit), limit);
        if (last) break;
        ItemHeader &head = examined.slots[order[i]].head;
        from = limit + recordSize(head);
        if (isFollowed(examined, from)) continue;
        const std::uint64_t next = i + 1 < order.size() ? examined.main.offsets[order[i + 1]] : examined.fileSize;
        const std::size_t known = examined.found.size();
        const bool headIsCut = holdsRecord(searched, limit, limit + sizeof head, next);
        if (headIsCut) {
            examined.slots[order[i]].sound = false;
            searched.ids.erase(head.id);
        }
        from = std::max(from, searchStretch(examined, searched, limit + (headIsCut ? 1 : sizeof head), next));
        if (headIsCut) continue;
        const auto inner = std::span(examined.offsets).subspan(known);
        if (!inner.empty() && inner.front() < limit + recordSize(head))
            shorten(examined, order[i], inner.front() - limit);
    }
}

CheckedRecord recordOf(const ItemHeader &head, std::uint64_t offset, RecordFate fate) {
    return {head.id, head.kind, std::string(nameOf(head).substr(0, storeNameLimit)), offset, fate};
}

// Records whose bytes the disk doesn't give are lost, whatever their heads say.
std::uint32_t dropUnreadable(Examined &examined) REQUIRES_LOCK(storeLock) {
    std::uint32_t count = 0;
    for (std::size_t slot = 0; slot < examined.slots.size(); slot++) {
        Slot &record = examined.slots[slot];
        if (!record.sound || payloadsReadable(record.head, examined.main.offsets[slot])) continue;
        record.sound = false;
        count++;
    }
    return count;
}

// The slots whose records are lost indeed. Bytes that came into the file or went push all behind them to other places,
// where they were found: by their number, or by the size that the table has for them.
std::set<std::size_t> slotsLost(const Examined &examined) {
    std::map<std::size_t, std::uint64_t> sizes = lostSizes(examined);
    for (const ItemHeader &head : examined.found) {
        const auto isThis = [&](const auto &lost) {
            return (head.id != noItem && examined.slots[lost.first].head.id == head.id) ||
                   lost.second == recordSize(head);
        };
        const auto slot = std::ranges::find_if(sizes, isThis);
        if (slot != sizes.end()) sizes.erase(slot);
    }
    std::set<std::size_t> lost;
    for (const auto &[slot, size] : sizes) lost.insert(slot);
    return lost;
}

void listRecords(const Examined &examined, LibraryCheck &check) {
    std::size_t room = storeSlotCount;
    const std::set<std::size_t> lost = slotsLost(examined);
    for (std::size_t slot = 0; slot < examined.slots.size(); slot++) {
        const bool sound = examined.slots[slot].sound;
        const bool shorter = std::ranges::find(examined.shortened, slot) != examined.shortened.end();
        if (sound) room--;
        if (!sound && !lost.contains(slot)) continue;
        check.records.push_back(recordOf(examined.slots[slot].head, examined.main.offsets[slot],
                                         shorter ? RecordFate::shortened
                                         : sound ? RecordFate::sound
                                                 : RecordFate::lost));
    }
    for (std::size_t i = 0; i < examined.found.size(); i++)
        check.records.push_back(
            recordOf(examined.found[i], examined.offsets[i], i < room ? RecordFate::found : RecordFate::lost));
    for (const Stretch &stray : examined.strays) {
        const bool explained = std::ranges::any_of(
            examined.offsets, [&](std::uint64_t offset) { return offset >= stray.from && offset < stray.to; });
        if (!explained) check.records.push_back({noItem, kind::unknown, stray.before, stray.from, RecordFate::rest});
    }
}

}  // namespace

void examine(Examined &examined, LibraryCheck &check) REQUIRES_LOCK(storeLock) {
    // More faults than lost records and circles explain are taken for the head's: then its end counts for nothing, and
    // all of the file is searched.
    bool headLies = !check.headUsable;
    std::uint32_t unreadable = 0;
    if (check.headUsable) {
        readSlots(examined.main, examined.slots);
        check.damage = checkStore(examined.main, examined.fileSize, examined.slots);
        const auto lost = std::ranges::count(examined.slots, false, &Slot::sound);
        check.circles = static_cast<std::uint32_t>(foldersInCircle(examined.slots).size());
        headLies = check.damage > static_cast<std::uint32_t>(lost) + check.circles;
        if (check.damage == 0) examined.strays = strayStretches(examined.main, examined.slots);
        unreadable = dropUnreadable(examined);
    }
    searchFile(examined, headLies);
    check.damage +=
        static_cast<std::uint32_t>(examined.strays.empty() ? examined.found.size() : examined.strays.size());
    check.damage += unreadable + (check.headUsable ? 0 : 1);
    listRecords(examined, check);
}

}  // namespace numalink
