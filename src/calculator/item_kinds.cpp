// The one table of item kinds and the one of standard folders.
#include "calculator/item_kinds.h"

#include <algorithm>

namespace numalink {

namespace {

enum class View { text, values, screen, drawing, none };

struct KindRow {
    ItemKind itemKind;
    ItemKind standardFolder;
    int treeImage;
    View view;
};

constexpr int unknownImage = 8;
constexpr int folderImage = 1;

constexpr KindRow kindRows[] = {
    {kind::unknown, kind::otherItemsFolder, unknownImage, View::none},
    {kind::matrix, kind::matricesFolder, 2, View::values},
    {kind::backup, kind::backupsFolder, 3, View::drawing},
    {kind::list, kind::listsFolder, 6, View::values},
    {kind::graphFunction, kind::otherItemsFolder, unknownImage, View::none},
    {kind::colorScreen, kind::screenCopiesFolder, 4, View::screen},
    {kind::monochromeScreen, kind::screenCopiesFolder, 5, View::screen},
    {kind::picture, kind::picturesFolder, 4, View::drawing},
    {kind::graphMemory, kind::graphMemoriesFolder, unknownImage, View::none},
    {kind::program, kind::programsFolder, 0, View::text},
    {kind::algebraBlock, kind::algebraFolder, 7, View::none},
    {kind::functionMemory, kind::functionMemoriesFolder, 9, View::text},
};
static_assert(std::ranges::is_sorted(kindRows, {}, &KindRow::itemKind));

struct FolderRow {
    ItemKind folderKind;
    Text name;
};

constexpr FolderRow folderRows[] = {
    {kind::programsFolder, Text::programsFolder},
    {kind::backupsFolder, Text::backupsFolder},
    {kind::otherItemsFolder, Text::otherItemsFolder},
    {kind::matricesFolder, Text::matricesFolder},
    {kind::listsFolder, Text::listsFolder},
    {kind::picturesFolder, Text::picturesFolder},
    {kind::graphMemoriesFolder, Text::graphMemoriesFolder},
    {kind::functionMemoriesFolder, Text::functionMemoriesFolder},
    {kind::screenCopiesFolder, Text::screenCopiesFolder},
    {kind::algebraFolder, Text::algebraFolder},
};
static_assert(std::ranges::is_sorted(folderRows, {}, &FolderRow::folderKind));

const KindRow *rowOfKind(ItemKind itemKind) {
    const KindRow *row = std::ranges::find(kindRows, itemKind, &KindRow::itemKind);
    return row == std::end(kindRows) ? nullptr : row;
}

View viewOf(ItemKind itemKind) {
    const KindRow *row = rowOfKind(itemKind);
    return row ? row->view : View::none;
}

}  // namespace

bool isTextKind(ItemKind itemKind) { return viewOf(itemKind) == View::text; }
bool isValuesKind(ItemKind itemKind) { return viewOf(itemKind) == View::values; }
bool isScreenKind(ItemKind itemKind) { return viewOf(itemKind) == View::screen; }
bool isDrawnKind(ItemKind itemKind) { return viewOf(itemKind) != View::text && viewOf(itemKind) != View::none; }

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
