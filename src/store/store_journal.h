// The rollback journal of storage.dat, byte for byte: what a change is going to write over, and the marks by which the
// file tells how far the change came. Pure: reading and writing the two files is store_file's.
//
// A journal is one head and one entry for each part of the file that the change writes. Nothing but a journal that is
// whole counts: a torn one never was on the disk before the file was touched.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "platform/bytes.h"
#include "store/store_records.h"

namespace numalink {

inline constexpr std::size_t sectorSize = 512;  // bytes that a disk writes whole or not at all
inline constexpr std::size_t headSectors = (sizeof(MainHeader) + sectorSize - 1) / sectorSize;
using SectorSums = std::array<std::uint64_t, headSectors>;

// A part of the file that a change writes. old is shorter than now where the change makes the file longer.
struct Region {
    std::uint64_t offset = 0;
    Bytes old;
    Bytes now;
};

struct JournalHead {
    char signature[16];
    std::uint32_t version;
    std::uint32_t regionCount;
    std::uint64_t fileSize;  // of storage.dat ahead of the change
    std::uint64_t bodySize;  // bytes of the entries
    std::uint64_t bodySum;
    std::uint64_t newSum;   // of all that the change writes, in the order of the entries
    SectorSums oldHead;     // of the head record's sectors ahead of the change: they tell whose journal this is
    SectorSums newHead;     // and after it
    std::uint64_t headSum;  // of all above
};
static_assert(sizeof(JournalHead) == 320);

// Followed by oldSize bytes.
struct JournalEntry {
    std::uint64_t offset;
    std::uint64_t newSize;
    std::uint64_t oldSize;
};
static_assert(sizeof(JournalEntry) == 24);

struct JournalRegion {
    std::uint64_t offset = 0;
    std::uint64_t newSize = 0;
    ByteView old;
};

struct Journal {
    JournalHead head{};
    std::vector<JournalRegion> regions;  // views of the bytes decoded
};

// Any change in the bytes changes the sum. Sums of pieces are chained by the seed.
std::uint64_t sumOf(ByteView bytes, std::uint64_t seed = 0);

// The sums of a head record's sectors, of which a short file has fewer bytes, or none.
SectorSums sectorSumsOf(ByteView mainHead);

// oldMain holds what the file has of its head record.
Bytes encodeJournal(const std::vector<Region> &regions, std::uint64_t fileSize, ByteView oldMain);

// The head alone, when it is one: then it tells how many bytes follow.
std::optional<JournalHead> decodeJournalHead(ByteView bytes);
// All of it, or nothing when it isn't whole.
std::optional<Journal> decodeJournal(ByteView bytes);

// Whether a file with these first bytes (8032, or all that it has) can be what an interrupted change of this journal
// has left: each sector of its head is old or new.
bool journalFits(const JournalHead &head, ByteView mainHead);

}  // namespace numalink
