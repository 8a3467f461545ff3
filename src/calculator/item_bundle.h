// A program with the items of its folder as one stretch of bytes, as a web page carries them: the program first. Any
// thread; no state.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "calculator/item_kinds.h"
#include "platform/bytes.h"

namespace numalink {

struct BundledItem {
    ItemKind kind = kind::unknown;
    std::string name;  // calculator codes, at most 255
    Bytes head;
    Bytes data;  // both at most itemDataLimit
    friend bool operator==(const BundledItem &, const BundledItem &) = default;
};

inline constexpr std::size_t bundleItemLimit = 2000;
inline constexpr std::size_t bundleSizeLimit = std::size_t{4} * 1024 * 1024;  // bytes

// The 32 bits of CRC-32 as zip files have it.
std::uint32_t checksum32(ByteView bytes);

// Empty when a limit is passed.
Bytes encodeBundle(const std::vector<BundledItem> &items);
// Nothing for what isn't whole: another version, a wrong checksum, lengths that don't fit.
std::optional<std::vector<BundledItem>> decodeBundle(ByteView bytes);

}  // namespace numalink
