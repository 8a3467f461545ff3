// What the File menu and its list of recent libraries hold.
#include "shell/commands/rows/rows.h"

#include "exchange/export/share_page.h"
#include "settings/recent_libraries.h"
#include "shell/commands/file_commands.h"
#include "shell/commands/library_commands.h"
#include "shell/dialogs/settings_dialog.h"
#include "shell/run/keys_dialog.h"

namespace numalink {

namespace {

using enum MenuPosition;

bool isProgram(ItemKind itemKind) { return itemKind == kind::program; }

template <int place>
bool isRecent() {
    return isRecentLibrary(place);
}

template <int place>
QString recentWords() {
    return recentLibraryWords(place);
}

template <int place>
void openRecent() {
    static_assert(place < static_cast<int>(recentLibraryLimit));
    openRecentLibrary(place);
}

constexpr Command rows[] = {
    {.id = CommandId::open,
     .menu = file,
     .text = Text::menuOpen,
     .shortcut = "Ctrl+O",
     .tip = Text::tipOpen,
     .run = openFiles},
    {.id = CommandId::save,
     .menu = file,
     .text = Text::menuSave,
     .shortcut = "Ctrl+S",
     .tip = Text::tipSave,
     .storesFirst = true,
     .run = saveItems},
    {.id = CommandId::sharePage,
     .menu = file,
     .text = Text::menuShare,
     .tip = Text::tipShare,
     .storesFirst = true,
     .enabledFor = isProgram,
     .offered = pagePlayerThere,
     .words = sharePageWords,
     .run = shareSelected},
    {.id = CommandId::openLibrary,
     .menu = file,
     .separatorAhead = true,
     .text = Text::menuOpenLibrary,
     .tip = Text::tipOpenLibrary,
     .run = openLibrary},
    {.id = CommandId::newLibrary,
     .menu = file,
     .text = Text::menuNewLibrary,
     .tip = Text::tipNewLibrary,
     .run = newLibrary},
    {.id = CommandId::recentLibrary1,
     .menu = recent,
     .label = "&1",
     .present = isRecent<0>,
     .words = recentWords<0>,
     .run = openRecent<0>},
    {.id = CommandId::recentLibrary2,
     .menu = recent,
     .label = "&2",
     .present = isRecent<1>,
     .words = recentWords<1>,
     .run = openRecent<1>},
    {.id = CommandId::recentLibrary3,
     .menu = recent,
     .label = "&3",
     .present = isRecent<2>,
     .words = recentWords<2>,
     .run = openRecent<2>},
    {.id = CommandId::recentLibrary4,
     .menu = recent,
     .label = "&4",
     .present = isRecent<3>,
     .words = recentWords<3>,
     .run = openRecent<3>},
    {.id = CommandId::recentLibrary5,
     .menu = recent,
     .label = "&5",
     .present = isRecent<4>,
     .words = recentWords<4>,
     .run = openRecent<4>},
    {.id = CommandId::recentLibrary6,
     .menu = recent,
     .label = "&6",
     .present = isRecent<5>,
     .words = recentWords<5>,
     .run = openRecent<5>},
    {.id = CommandId::recentLibrary7,
     .menu = recent,
     .label = "&7",
     .present = isRecent<6>,
     .words = recentWords<6>,
     .run = openRecent<6>},
    {.id = CommandId::recentLibrary8,
     .menu = recent,
     .label = "&8",
     .present = isRecent<7>,
     .words = recentWords<7>,
     .run = openRecent<7>},
    {.id = CommandId::recentLibrary9,
     .menu = recent,
     .label = "&9",
     .present = isRecent<8>,
     .words = recentWords<8>,
     .run = openRecent<8>},
    {.id = CommandId::settings,
     .menu = file,
     .separatorAhead = true,
     .text = Text::menuSettings,
     .tip = Text::tipSettings,
     .run = changeSettings},
    {.id = CommandId::assignKeys,
     .menu = file,
     .text = Text::menuAssignKeys,
     .tip = Text::tipAssignKeys,
     .run = assignKeys},
    {.id = CommandId::exit,
     .menu = file,
     .text = Text::menuExit,
     .shortcut = "Ctrl+Q",
     .tip = Text::tipExit,
     .endsLabelEdit = false,
     .run = exitProgram},
};

}  // namespace

std::span<const Command> fileRows() { return rows; }

}  // namespace numalink
