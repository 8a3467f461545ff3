// The kinds of items, and the facts that hang on a kind, in one table.
#pragma once

#include <cstdint>
#include <string_view>

#include "telling/texts.h"

namespace numalink {

using ItemId = std::uint32_t;
inline constexpr ItemId rootId = 1;
inline constexpr ItemId noItem = 0xFFFFFFFF;

using ItemKind = std::uint32_t;
namespace kind {
inline constexpr ItemKind unknown = 0;
inline constexpr ItemKind matrix = 2;
inline constexpr ItemKind backup = 3;
inline constexpr ItemKind list = 4;
inline constexpr ItemKind graphFunction = 5;
inline constexpr ItemKind endOfTransmission = 6;
inline constexpr ItemKind colourScreen = 7;
inline constexpr ItemKind monochromeScreen = 8;
inline constexpr ItemKind picture = 11;
inline constexpr ItemKind graphMemory = 14;
inline constexpr ItemKind program = 15;
inline constexpr ItemKind modelFrame = 16;
inline constexpr ItemKind algebraBlock = 17;
inline constexpr ItemKind functionMemory = 18;
inline constexpr ItemKind folder = 1000;
inline constexpr ItemKind temporaryFolder = 1002;
inline constexpr ItemKind none = 0xFFFFFFFF;
}  // namespace kind

inline bool isFolderKind(ItemKind itemKind) { return itemKind >= kind::folder; }
inline bool isTextKind(ItemKind itemKind) { return itemKind == kind::program || itemKind == kind::functionMemory; }

// The standard folder that an item of this kind is filed in (graph functions with the unknown data, ALGEBRA blocks
// in 1011), or kind::none.
ItemKind standardFolderOfKind(ItemKind itemKind);

// A standard folder's name, or none when the kind is no standard folder.
Text standardFolderName(ItemKind folderKind);

// Place in the strip of tree images, 0 to 9; 8 for a kind that isn't known.
int treeImageOfKind(ItemKind itemKind);

}  // namespace numalink
