#include "store/store_journal.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace numalink {

namespace {

constexpr char journalSignature[16] = "STORAGEJOURNAL ";
constexpr std::uint32_t journalVersion = 1;

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

// The head record as the change leaves it.
Bytes newMainOf(const std::vector<Region> &regions, ByteView oldMain) {
    Bytes main(sizeof(MainHeader));
    std::size_t size = 0;
    putAt(main, size, oldMain);
    for (const Region &region : regions) {
        if (region.offset >= main.size()) continue;
        auto place = static_cast<std::size_t>(region.offset);
        putAt(main, place, ByteView(region.now).first(std::min(region.now.size(), main.size() - place)));
        size = std::max(size, place);
    }
    main.resize(size);
    return main;
}

std::uint64_t headSumOf(const JournalHead &head) { return sumOf(bytesOfRecord(head, offsetof(JournalHead, headSum))); }

// The next entry with its bytes; false when the rest can't be one.
bool takeRegion(ByteView &rest, std::uint64_t fileSize, JournalRegion &region) {
    JournalEntry entry{};
    if (rest.size() < sizeof entry) return false;
    std::memcpy(&entry, rest.data(), sizeof entry);
    rest = rest.subspan(sizeof entry);
    if (entry.oldSize > rest.size() || entry.oldSize > entry.newSize) return false;
    if (entry.newSize > UINT64_MAX - entry.offset) return false;
    if (entry.oldSize > 0 && (entry.offset > fileSize || entry.oldSize > fileSize - entry.offset)) return false;
    region = {entry.offset, entry.newSize, rest.first(static_cast<std::size_t>(entry.oldSize))};
    rest = rest.subspan(static_cast<std::size_t>(entry.oldSize));
    return true;
}

}  // namespace

// Each step is one to one in its word, so that a single changed word can't go unseen.
std::uint64_t sumOf(ByteView bytes, std::uint64_t seed) {
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15;
    std::uint64_t sum = seed ^ (bytes.size() * factor);
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

SectorSums sectorSumsOf(ByteView mainHead) {
    SectorSums sums{};
    for (std::size_t sector = 0; sector < headSectors; sector++) sums[sector] = sumOf(sectorOf(mainHead, sector));
    return sums;
}

Bytes encodeJournal(const std::vector<Region> &regions, std::uint64_t fileSize, ByteView oldMain) {
    JournalHead head{};
    std::memcpy(head.signature, journalSignature, sizeof journalSignature);
    head.version = journalVersion;
    head.regionCount = static_cast<std::uint32_t>(regions.size());
    head.fileSize = fileSize;
    for (const Region &region : regions) {
        head.bodySize += sizeof(JournalEntry) + region.old.size();
        head.newSum = sumOf(region.now, head.newSum);
    }
    head.oldHead = sectorSumsOf(oldMain);
    head.newHead = sectorSumsOf(newMainOf(regions, oldMain));
    std::size_t place = sizeof head;
    Bytes bytes(place + static_cast<std::size_t>(head.bodySize));
    for (const Region &region : regions) {
        putAt(bytes, place, bytesOfRecord(JournalEntry{region.offset, region.now.size(), region.old.size()}));
        putAt(bytes, place, region.old);
    }
    head.bodySum = sumOf(ByteView(bytes).subspan(sizeof head));
    head.headSum = headSumOf(head);
    std::memcpy(bytes.data(), &head, sizeof head);
    return bytes;
}

std::optional<JournalHead> decodeJournalHead(ByteView bytes) {
    JournalHead head{};
    if (bytes.size() < sizeof head) return std::nullopt;
    std::memcpy(&head, bytes.data(), sizeof head);
    if (std::memcmp(head.signature, journalSignature, sizeof journalSignature) != 0) return std::nullopt;
    if (head.version != journalVersion || head.headSum != headSumOf(head)) return std::nullopt;
    return head;
}

std::optional<Journal> decodeJournal(ByteView bytes) {
    const auto head = decodeJournalHead(bytes);
    if (!head || head->bodySize > bytes.size() - sizeof *head) return std::nullopt;
    ByteView rest = bytes.subspan(sizeof *head, static_cast<std::size_t>(head->bodySize));
    if (sumOf(rest) != head->bodySum) return std::nullopt;
    Journal journal{*head, {}};
    for (std::uint32_t number = 0; number < head->regionCount; number++) {
        JournalRegion region;
        if (!takeRegion(rest, head->fileSize, region)) return std::nullopt;
        journal.regions.push_back(region);
    }
    return rest.empty() ? std::optional(std::move(journal)) : std::nullopt;
}

bool journalFits(const JournalHead &head, ByteView mainHead) {
    const auto oldSize = static_cast<std::size_t>(std::min<std::uint64_t>(head.fileSize, sizeof(MainHeader)));
    for (std::size_t sector = 0; sector < headSectors; sector++) {
        const ByteView there = sectorOf(mainHead, sector);
        if (sumOf(there) == head.newHead[sector]) continue;
        // A sector that the file didn't have, or not whole, may have come to be without its bytes.
        const std::size_t from = sector * sectorSize;
        const std::size_t oldCount = std::min(sectorSize, oldSize - std::min(from, oldSize));
        if (there.size() < oldCount || sumOf(there.first(oldCount)) != head.oldHead[sector]) return false;
        if (!std::ranges::all_of(there.subspan(oldCount), [](std::uint8_t byte) { return byte == 0; })) return false;
    }
    return true;
}

}  // namespace numalink
