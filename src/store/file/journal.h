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
#include "store/file/records.h"

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
    SectorSums oldHead;     // of the head record's sectors ahead of the change: they tell whose journal this is
    std::uint64_t headSum;  // of all above
};
static_assert(sizeof(JournalHead) == 184);
static_assert(sizeof(JournalHead) <= sectorSize, "so that a head is never torn");

// Followed by oldSize bytes, and by one sum for each piece of what the change writes there. Pieces end with a sector of
// the file, and where the file ended ahead of the change: each of them is on the disk whole or not at all.
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
    ByteView newSums;  // 8 bytes each
};

struct Journal {
    JournalHead head{};
    std::vector<JournalRegion> regions;  // views of the bytes decoded
};

// Any change in the bytes changes the sum.
std::uint64_t sumOf(ByteView bytes);

// oldMain holds what the file has of its head record.
Bytes encodeJournal(const std::vector<Region> &regions, std::uint64_t fileSize, ByteView oldMain);

enum class JournalState {
    wiped,  // none, or one that has done its work
    torn,   // not whole: it never was on the disk before the file was touched, unless it has rotted since
    other,  // of another version of the program
    whole
};
// By the first bytes alone. Of a whole head head is filled in: then it tells how many bytes follow.
JournalState decodeJournalHead(ByteView bytes, JournalHead &head);
// All of it, or nothing when it isn't whole.
std::optional<Journal> decodeJournal(ByteView bytes);

// How far a change has come, by what the file holds where it writes.
enum class Progress {
    complete,
    mixed,   // each piece is old or new; one behind the file's old end, zero bytes or cut short as well
    foreign  // what is there comes from elsewhere
};
// there: the file's bytes at the region's place, as many of newSize as there are.
Progress progressOf(const JournalRegion &region, ByteView there);
// Whether the head's sectors that the change doesn't write are as they were. mainHead: 8032 bytes, or all that there
// is.
bool journalFits(const Journal &journal, ByteView mainHead);

}  // namespace numalink
