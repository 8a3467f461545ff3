// What the Item menu holds, which opens on an item of the tree as well.
#include "shell/commands/rows/rows.h"

#include <algorithm>

#include "shell/commands/link_commands.h"
#include "shell/editor/password_dialog.h"
#include "shell/library/compare_window.h"
#include "shell/library/duplicates_dialog.h"
#include "shell/library/versions_dialog.h"
#include "shell/run/emulator_window.h"
#include "shell/run/moments.h"
#include "shell/run/moments_dialog.h"
#include "shell/run/run_keys.h"
#include "shell/tree/item_commands.h"
#include "shell/tree/move_dialog.h"
#include "shell/tree/several.h"
#include "shell/views/bitmap_export.h"

namespace numalink {

namespace {

using enum MenuPosition;

bool anyItem(ItemKind itemKind) { return itemKind != kind::none; }

bool transmittable(ItemKind itemKind) { return anyItem(itemKind) && !isScreenKind(itemKind); }

bool drawnAsBitmap(ItemKind itemKind) { return isScreenKind(itemKind) || itemKind == kind::picture; }

bool movable(ItemKind itemKind) { return anyItem(itemKind) && !isFolderKind(itemKind); }

bool isProgram(ItemKind itemKind) { return itemKind == kind::program; }

template <bool (*fits)(ItemKind)>
bool all(const std::vector<ItemKind> &kinds) {
    return std::ranges::all_of(kinds, fits);
}

bool twoPrograms(const std::vector<ItemKind> &kinds) { return kinds.size() == 2 && all<mayCompare>(kinds); }

constexpr Command rows[] = {
    {.id = CommandId::newFolder,
     .menu = item,
     .text = Text::menuNewFolder,
     .shortcut = "Ctrl+Shift+N",
     .tip = Text::tipNewFolder,
     .onTreeGround = true,
     .run = newFolder},
    {.id = CommandId::newProgram,
     .menu = item,
     .text = Text::menuNewProgram,
     .shortcut = "Ctrl+N",
     .tip = Text::tipNewProgram,
     .onTreeGround = true,
     .run = newProgram},
    {.id = CommandId::selectAll,
     .menu = item,
     .text = Text::menuSelectAll,
     .standardKey = QKeySequence::SelectAll,
     .tip = Text::tipSelectAll,
     .keyOfText = true,
     .onTreeGround = true,
     .run = selectAllShown},
    {.id = CommandId::rename,
     .menu = item,
     .text = Text::menuRename,
     .shortcut = "F2",
     .tip = Text::tipRename,
     .storesFirst = true,
     .enabledFor = anyItem,
     .run = renameSelectedItem},
    {.id = CommandId::move,
     .menu = item,
     .text = Text::menuMove,
     .shortcut = "Ctrl+M",
     .tip = Text::tipMove,
     .storesFirst = true,
     .enabledFor = movable,
     .enabledForSeveral = all<movable>,
     .run = moveSelectedItem},
    {.id = CommandId::remove,
     .menu = item,
     .text = Text::menuDelete,
     .tip = Text::tipDelete,
     .enabledFor = anyItem,
     .enabledForSeveral = all<anyItem>,
     .run = deleteWithQuestion},
    {.id = CommandId::transmit,
     .menu = item,
     .separatorAhead = true,
     .text = Text::menuTransmit,
     .shortcut = "F6",
     .tip = Text::tipTransmit,
     .storesFirst = true,
     .enabledFor = transmittable,
     .enabledForSeveral = all<transmittable>,
     .run = transmitSelected},
    {.id = CommandId::queue,
     .menu = item,
     .text = Text::menuQueue,
     .shortcut = "F8",
     .tip = Text::tipQueue,
     .storesFirst = true,
     .enabledFor = transmittable,
     .enabledForSeveral = all<transmittable>,
     .run = queueSelected},
    {.id = CommandId::emulate,
     .menu = item,
     .separatorAhead = true,
     .text = Text::menuEmulate,
     .shortcut = "F7",
     .tip = Text::tipEmulate,
     .keyWhileRunning = true,
     .storesFirst = true,
     .enabledFor = isProgram,
     .run = emulatorToggle},
    {.id = CommandId::playKeys,
     .menu = item,
     .text = Text::menuPlayKeys,
     .tip = Text::tipPlayKeys,
     .storesFirst = true,
     .enabledFor = isProgram,
     .run = playKeys},
    {.id = CommandId::moments,
     .menu = item,
     .text = Text::menuMoments,
     .tip = Text::tipMoments,
     .enabled = hasProgramOfMoments,
     .run = showMoments},
    {.id = CommandId::newestMoment,
     .menu = item,
     .text = Text::menuNewestMoment,
     .shortcut = "Ctrl+Shift+F8",
     .tip = Text::tipNewestMoment,
     .keyWhileRunning = true,
     .storesFirst = true,
     .enabled = hasProgramOfMoments,
     .run = goOnFromNewest},
    {.id = CommandId::password,
     .menu = item,
     .text = Text::menuPassword,
     .tip = Text::tipPassword,
     .enabledFor = isProgram,
     .run = changePassword},
    {.id = CommandId::saveBitmap,
     .menu = item,
     .separatorAhead = true,
     .text = Text::menuSaveBitmap,
     .tip = Text::tipSaveBitmap,
     .enabledFor = drawnAsBitmap,
     .run = saveItemAsBitmap},
    {.id = CommandId::compareItems,
     .menu = item,
     .separatorAhead = true,
     .text = Text::menuCompare,
     .storesFirst = true,
     .enabledFor = mayCompare,
     .enabledForSeveral = twoPrograms,
     .run = compareSelected},
    {.id = CommandId::versions,
     .menu = item,
     .text = Text::menuVersions,
     .storesFirst = true,
     .enabledFor = mayHaveVersions,
     .run = showVersions},
    {.id = CommandId::duplicates,
     .menu = item,
     .text = Text::menuDuplicates,
     .storesFirst = true,
     .run = showDuplicates},
};

}  // namespace

std::span<const Command> itemRows() { return rows; }

}  // namespace numalink
