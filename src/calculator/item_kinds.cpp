// The one table of item kinds and the one of standard folders.
#include "calculator/item_kinds.h"

#include <algorithm>

namespace numalink {

namespace {

struct KindRow {
    ItemKind itemKind;
    ItemKind standardFolder;
    int treeImage;
};

constexpr int unknownImage = 8;
constexpr int folderImage = 1;

constexpr KindRow kindRows[] = {
    {kind::unknown, 1004, unknownImage},
    {kind::matrix, 1005, 2},
    {kind::backup, 1003, 3},
    {kind::list, 1006, 6},
    {kind::graphFunction, 1004, unknownImage},
    {kind::colourScreen, 1010, 4},
    {kind::monochromeScreen, 1010, 5},
    {kind::picture, 1007, 4},
    {kind::graphMemory, 1008, unknownImage},
    {kind::program, 1001, 0},
    {kind::algebraBlock, 1011, 7},
    {kind::functionMemory, 1009, 9},
};
static_assert(std::ranges::is_sorted(kindRows, {}, &KindRow::itemKind));

struct FolderRow {
    ItemKind folderKind;
    Text name;
};

constexpr FolderRow folderRows[] = {
    {1001, Text::programsFolder},      {1003, Text::backupsFolder},
    {1004, Text::otherItemsFolder},    {1005, Text::matricesFolder},
    {1006, Text::listsFolder},         {1007, Text::picturesFolder},
    {1008, Text::graphMemoriesFolder}, {1009, Text::functionMemoriesFolder},
    {1010, Text::screenCopiesFolder},  {1011, Text::algebraFolder},
};
static_assert(std::ranges::is_sorted(folderRows, {}, &FolderRow::folderKind));

const KindRow *rowOfKind(ItemKind itemKind) {
    const KindRow *row = std::ranges::find(kindRows, itemKind, &KindRow::itemKind);
    return row == std::end(kindRows) ? nullptr : row;
}

}  // namespace

ItemKind standardFolderOfKind(ItemKind itemKind) {
    const KindRow *row = rowOfKind(itemKind);
    return row ? row->standardFolder : kind::none;
}

Text standardFolderName(ItemKind folderKind) {
    const FolderRow *row = std::ranges::find(folderRows, folderKind, &FolderRow::folderKind);
    return row == std::end(folderRows) ? Text::none : row->name;
}

int treeImageOfKind(ItemKind itemKind) {
    if (isFolderKind(itemKind)) return folderImage;
    const KindRow *row = rowOfKind(itemKind);
    return row ? row->treeImage : unknownImage;
}

}  // namespace numalink
