#include "store/file/journal.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace numalink {

namespace {

constexpr char journalSignature[16] = "STORAGEJOURNAL ";
constexpr std::uint32_t journalVersion = 2;

ByteView sectorOf(ByteView mainHead, std::size_t sector) {
    const std::size_t from = std::min(sector * sectorSize, mainHead.size());
    return mainHead.subspan(from, std::min(sectorSize, mainHead.size() - from));
}

template <typename Record>
ByteView bytesOfRecord(const Record &record, std::size_t size = sizeof(Record)) {
    return {reinterpret_cast<const std::uint8_t *>(&record), size};
}

void putAt(Bytes &bytes, std::size_t &place, ByteView part) {
    if (!part.empty()) std::memcpy(bytes.data() + place, part.data(), part.size());
    place += part.size();
}

// Calls visit(from, to) for each piece of a region, in bytes from its beginning; see JournalEntry.
template <typename Visit>
void eachPiece(std::uint64_t offset, std::uint64_t newSize, std::uint64_t oldSize, Visit visit) {
    for (std::uint64_t from = 0, to = 0; from < newSize; from = to) {
        to = std::min(newSize, from + sectorSize - (offset + from) % sectorSize);
        if (from < oldSize) to = std::min(to, oldSize);
        visit(static_cast<std::size_t>(from), static_cast<std::size_t>(to));
    }
}

std::uint64_t pieceCount(std::uint64_t offset, std::uint64_t newSize, std::uint64_t oldSize) {
    if (newSize == 0) return 0;
    const std::uint64_t sectors = (offset + newSize - 1) / sectorSize - offset / sectorSize + 1;
    const bool endsWithin = oldSize > 0 && oldSize < newSize && (offset + oldSize) % sectorSize != 0;
    return sectors + (endsWithin ? 1 : 0);
}

std::uint64_t headSumOf(const JournalHead &head) { return sumOf(bytesOfRecord(head, offsetof(JournalHead, headSum))); }

// The next entry with its bytes; false when the rest can't be one.
bool takeRegion(ByteView &rest, std::uint64_t fileSize, JournalRegion &region) {
    JournalEntry entry{};
    if (rest.size() < sizeof entry) return false;
    std::memcpy(&entry, rest.data(), sizeof entry);
    rest = rest.subspan(sizeof entry);
    if (entry.oldSize > rest.size() || entry.oldSize > entry.newSize) return false;
    if (entry.offset > INT64_MAX || entry.newSize > INT64_MAX) return false;
    if (entry.oldSize > 0 && (entry.offset > fileSize || entry.oldSize > fileSize - entry.offset)) return false;
    region.offset = entry.offset;
    region.newSize = entry.newSize;
    region.old = rest.first(static_cast<std::size_t>(entry.oldSize));
    rest = rest.subspan(region.old.size());
    const std::uint64_t pieces = pieceCount(entry.offset, entry.newSize, entry.oldSize);
    if (pieces > rest.size() / sizeof(std::uint64_t)) return false;
    region.newSums = rest.first(static_cast<std::size_t>(pieces) * sizeof(std::uint64_t));
    rest = rest.subspan(region.newSums.size());
    return true;
}

bool allZero(ByteView bytes) {
    return std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte == 0; });
}

}  // namespace

// Each step is one to one in its word, so that a single changed word can't go unseen.
std::uint64_t sumOf(ByteView bytes) {
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15;
    std::uint64_t sum = bytes.size() * factor;
    const auto take = [&](std::uint64_t word) { sum = std::rotl((sum ^ word) * factor, 29); };
    while (bytes.size() >= sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data(), sizeof word);
        take(word);
        bytes = bytes.subspan(sizeof word);
    }
    std::uint64_t last = 0;
    if (!bytes.empty()) std::memcpy(&last, bytes.data(), bytes.size());
    take(last);
    return sum ^ (sum >> 31);
}

Bytes encodeJournal(const std::vector<Region> &regions, std::uint64_t fileSize, ByteView oldMain) {
    JournalHead head{};
    std::memcpy(head.signature, journalSignature, sizeof journalSignature);
    head.version = journalVersion;
    head.regionCount = static_cast<std::uint32_t>(regions.size());
    head.fileSize = fileSize;
    for (const Region &region : regions) {
        const std::uint64_t pieces = pieceCount(region.offset, region.now.size(), region.old.size());
        head.bodySize += sizeof(JournalEntry) + region.old.size() + pieces * sizeof(std::uint64_t);
    }
    for (std::size_t sector = 0; sector < headSectors; sector++)
        head.oldHead[sector] = sumOf(sectorOf(oldMain, sector));
    std::size_t place = sizeof head;
    Bytes bytes(place + static_cast<std::size_t>(head.bodySize));
    for (const Region &region : regions) {
        putAt(bytes, place, bytesOfRecord(JournalEntry{region.offset, region.now.size(), region.old.size()}));
        putAt(bytes, place, region.old);
        eachPiece(region.offset, region.now.size(), region.old.size(), [&](std::size_t from, std::size_t to) {
            putAt(bytes, place, bytesOfRecord(sumOf(ByteView(region.now).subspan(from, to - from))));
        });
    }
    head.bodySum = sumOf(ByteView(bytes).subspan(sizeof head));
    head.headSum = headSumOf(head);
    std::memcpy(bytes.data(), &head, sizeof head);
    return bytes;
}

JournalState decodeJournalHead(ByteView bytes, JournalHead &head) {
    if (allZero(bytes.first(std::min(bytes.size(), sizeof head.signature)))) return JournalState::wiped;
    if (bytes.size() < sizeof head) return JournalState::torn;
    std::memcpy(&head, bytes.data(), sizeof head);
    if (std::memcmp(head.signature, journalSignature, sizeof journalSignature) != 0) return JournalState::torn;
    if (head.version != journalVersion) return JournalState::other;
    return head.headSum == headSumOf(head) ? JournalState::whole : JournalState::torn;
}

std::optional<Journal> decodeJournal(ByteView bytes) {
    Journal journal;
    const JournalHead &head = journal.head;
    if (decodeJournalHead(bytes, journal.head) != JournalState::whole) return std::nullopt;
    if (head.bodySize > bytes.size() - sizeof head) return std::nullopt;
    ByteView rest = bytes.subspan(sizeof head, static_cast<std::size_t>(head.bodySize));
    if (sumOf(rest) != head.bodySum) return std::nullopt;
    for (std::uint32_t number = 0; number < head.regionCount; number++) {
        JournalRegion region;
        if (!takeRegion(rest, head.fileSize, region)) return std::nullopt;
        journal.regions.push_back(region);
    }
    return rest.empty() ? std::optional(std::move(journal)) : std::nullopt;
}

Progress progressOf(const JournalRegion &region, ByteView there) {
    bool complete = true, foreign = there.size() < region.old.size();
    ByteView sums = region.newSums;
    eachPiece(region.offset, region.newSize, region.old.size(), [&](std::size_t from, std::size_t to) {
        const ByteView piece =
            there.subspan(std::min(from, there.size()), std::min(to, there.size()) - std::min(from, there.size()));
        std::uint64_t newSum = 0;
        std::memcpy(&newSum, sums.data(), sizeof newSum);
        sums = sums.subspan(sizeof newSum);
        if (piece.size() == to - from && sumOf(piece) == newSum) return;
        complete = false;
        // Behind the file's old end a write that failed may have stopped anywhere.
        const bool mayBeOld = from < region.old.size() ? std::ranges::equal(piece, region.old.subspan(from, to - from))
                                                       : piece.size() < to - from || allZero(piece);
        foreign = foreign || !mayBeOld;
    });
    if (foreign) return Progress::foreign;
    return complete ? Progress::complete : Progress::mixed;
}

// Sectors that the change writes may be old or new by now; each of the others must be what it was.
bool journalFits(const Journal &journal, ByteView mainHead) {
    for (std::size_t sector = 0; sector < headSectors; sector++) {
        const std::uint64_t from = sector * sectorSize, to = std::min(from + sectorSize, sizeof(MainHeader));
        const bool written = std::ranges::any_of(journal.regions, [&](const JournalRegion &region) {
            return region.offset < to && from < region.offset + region.newSize;
        });
        if (!written && sumOf(sectorOf(mainHead, sector)) != journal.head.oldHead[sector]) return false;
    }
    return true;
}

}  // namespace numalink
