// The kinds of items, and the facts that hang on a kind, in one table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "telling/texts.h"

namespace numalink {

using ItemId = std::uint32_t;
inline constexpr ItemId rootId = 1;
inline constexpr ItemId noItem = 0xFFFFFFFF;

// Bytes of an item's data that are taken, from a file as from the wire.
inline constexpr std::size_t itemDataLimit = 70000;

using ItemKind = std::uint32_t;
namespace kind {
inline constexpr ItemKind unknown = 0;
inline constexpr ItemKind matrix = 2;
inline constexpr ItemKind backup = 3;
inline constexpr ItemKind list = 4;
inline constexpr ItemKind graphFunction = 5;
inline constexpr ItemKind endOfTransmission = 6;
inline constexpr ItemKind colorScreen = 7;
inline constexpr ItemKind monochromeScreen = 8;
inline constexpr ItemKind picture = 11;
inline constexpr ItemKind graphMemory = 14;
inline constexpr ItemKind program = 15;
inline constexpr ItemKind modelFrame = 16;
inline constexpr ItemKind algebraBlock = 17;
inline constexpr ItemKind functionMemory = 18;
inline constexpr ItemKind folder = 1000;
inline constexpr ItemKind programsFolder = 1001;
inline constexpr ItemKind temporaryFolder = 1002;
inline constexpr ItemKind backupsFolder = 1003;
inline constexpr ItemKind otherItemsFolder = 1004;
inline constexpr ItemKind matricesFolder = 1005;
inline constexpr ItemKind listsFolder = 1006;
inline constexpr ItemKind picturesFolder = 1007;
inline constexpr ItemKind graphMemoriesFolder = 1008;
inline constexpr ItemKind functionMemoriesFolder = 1009;
inline constexpr ItemKind screenCopiesFolder = 1010;
inline constexpr ItemKind algebraFolder = 1011;
inline constexpr ItemKind none = 0xFFFFFFFF;
}  // namespace kind

inline bool isFolderKind(ItemKind itemKind) { return itemKind >= kind::folder; }
bool isTextKind(ItemKind itemKind);    // tokens, with a ProgramInfo ahead of them in the library
bool isValuesKind(ItemKind itemKind);  // matrices and lists: value frames
bool isScreenKind(ItemKind itemKind);  // copies of a calculator's screen
bool isDrawnKind(ItemKind itemKind);   // whether its view is a drawing

// The standard folder that an item of this kind is filed in, and the only one that it may be moved to (graph functions
// with the unknown data); kind::none for a kind that isn't kept.
ItemKind standardFolderOfKind(ItemKind itemKind);

// A standard folder's name, or none when the kind is no standard folder.
Text standardFolderName(ItemKind folderKind);

// Place in the strip of tree images, 0 to 9; 8 for a kind that isn't known.
int treeImageOfKind(ItemKind itemKind);

}  // namespace numalink
