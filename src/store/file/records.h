// The records of storage.dat, byte for byte as they lie in the file. Only store/ and its tests include this.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "store/item_store.h"

namespace numalink {

static_assert(std::endian::native == std::endian::little, "the records are little-endian, and are read as they lie");

inline constexpr char mainSignature[16] = "MAINHEADER    ";
inline constexpr char itemSignature[15] = "ITEMHEADER    ";
inline constexpr char temporaryFolderName[] = "temp";

// No library lives to see it: a next id, or an id, from here on is damage.
inline constexpr ItemId idLimit = noItem / 2;

struct MainHeader {
    char signature[16];
    std::uint32_t formatNumber;
    std::uint32_t itemCount;
    std::uint32_t endOffset;                // one past the last record
    std::uint32_t offsets[storeSlotCount];  // slots from itemCount on have no meaning
    std::uint32_t nextId;
};
static_assert(sizeof(MainHeader) == 8032);
static_assert(offsetof(MainHeader, endOffset) == 24);
static_assert(offsetof(MainHeader, offsets) == 28);
static_assert(offsetof(MainHeader, nextId) == 8028);

// The head of a record; the first payload follows, then the second.
struct ItemHeader {
    char signature[15];
    char name[storeNameLimit + 1];  // zero-terminated
    std::uint32_t headSize;         // bytes of the first payload
    std::uint32_t dataSize;         // bytes of the second payload
    std::uint32_t kind;
    std::uint32_t flags;
    std::uint32_t id;
    std::uint32_t parent;
};
static_assert(sizeof(ItemHeader) == 92);
static_assert(offsetof(ItemHeader, name) == 15);
static_assert(offsetof(ItemHeader, headSize) == 68);
static_assert(offsetof(ItemHeader, kind) == 76);
static_assert(offsetof(ItemHeader, parent) == 88);

// The name up to its terminator, or all 53 bytes when it has none.
inline std::string_view nameOf(const ItemHeader &head) { return {head.name, strnlen(head.name, sizeof head.name)}; }

inline std::uint64_t recordSize(const ItemHeader &head) {
    return sizeof head + std::uint64_t{head.headSize} + head.dataSize;
}

}  // namespace numalink
