// One table for all commands, however long: its order is that of the menus, and a command is looked for in one place.
#include "shell/commands/command_table.h"

#include <algorithm>

#include "debugger/breakpoints.h"
#include "emulator/machine/pace.h"
#include "exchange/export/share_page.h"
#include "link/transmit_queue.h"
#include "settings/recent_libraries.h"
#include "settings/settings_store.h"
#include "shell/commands/file_commands.h"
#include "shell/commands/library_commands.h"
#include "shell/commands/link_commands.h"
#include "shell/commands/undo_commands.h"
#include "shell/dialogs/about_box.h"
#include "shell/dialogs/export_dialog.h"
#include "shell/dialogs/settings_dialog.h"
#include "shell/editor/edit_menu.h"
#include "shell/editor/find_dialog.h"
#include "shell/editor/password_dialog.h"
#include "shell/editor/program_view.h"
#include "shell/editor/symbols_window.h"
#include "shell/help/manual_window.h"
#include "shell/help/reference_window.h"
#include "shell/parts/client_layout.h"
#include "shell/parts/on_view.h"
#include "shell/run/emulator_place.h"
#include "shell/run/emulator_window.h"
#include "shell/run/recording.h"
#include "shell/tree/item_commands.h"
#include "shell/views/bitmap_export.h"
#include "shell/views/item_views.h"
#include "shell/views/surface_view.h"
#include "shell/workbench/debugging.h"
#include "shell/workbench/panes.h"
#include "shell/workbench/variables_pane.h"

namespace numalink {

namespace {

using enum MenuPosition;

bool anyItem(ItemKind itemKind) { return itemKind != kind::none; }
bool transmittable(ItemKind itemKind) { return anyItem(itemKind) && !isScreenKind(itemKind); }
bool drawnAsBitmap(ItemKind itemKind) { return isScreenKind(itemKind) || itemKind == kind::picture; }
bool isProgram(ItemKind itemKind) { return itemKind == kind::program; }

bool programOnView() { return isTextKind(viewKind); }
bool treeHidden() { return !treeVisible; }

template <int zoom>
bool zoomIs() {
    return surfaceZoom() == zoom;
}

template <int zoom>
void zoomTo() {
    static_assert(zoom <= zoomLimit);
    setSurfaceZoom(zoom);
    zoomEmulatorWindow();
}

// How many times as fast as the calculator; 0: as fast as can be.
template <int factor>
bool speedIs() {
    const bool isFull = settingsInt(setting::fullSpeed) == 1;
    return factor == 0 ? isFull : !isFull && paceFactor == factor;
}

template <int factor>
void speedTo() {
    chooseSpeed(factor);
}

bool runIsStopped() { return shownStop() != nullptr; }

template <DebugStep step>
void stepBy() {
    debugStepBy(step);
}

template <Pane pane>
constexpr Command paneRow(CommandId id, Text title) {
    return {.id = id,
            .menu = panes,
            .text = title,
            .checked = [] { return paneShown(pane); },
            .run = [] { togglePane(pane); }};
}

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

constexpr MenuRow menuRows[] = {
    {.menu = file, .text = Text::menuFile},
    {.menu = item, .text = Text::menuItem},
    {.menu = edit, .text = Text::menuEdit},
    {.menu = emulator, .text = Text::menuEmulator, .enabled = emulatorShown},
    {.menu = debug, .text = Text::menuDebug},
    {.menu = communication, .text = Text::menuCommunication},
    {.menu = view, .text = Text::menuView},
    {.menu = help, .text = Text::menuHelp},
    {.menu = recent, .text = Text::menuRecentLibraries, .within = file, .enabled = anyRecentLibrary},
    {.menu = zoom, .text = Text::menuZoom, .within = view, .oneChecked = true},
    {.menu = panes, .text = Text::menuPanes, .within = view},
    {.menu = speed, .text = Text::menuSpeed, .within = emulator, .oneChecked = true},
    {.menu = program, .enabled = programOnView},
    {.menu = tray, .ofNoWindow = true},
};

constexpr Command commands[] = {
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
    {.id = CommandId::exit,
     .menu = file,
     .text = Text::menuExit,
     .shortcut = "Ctrl+Q",
     .tip = Text::tipExit,
     .endsLabelEdit = false,
     .run = exitProgram},

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
    {.id = CommandId::rename,
     .menu = item,
     .text = Text::menuRename,
     .shortcut = "F2",
     .tip = Text::tipRename,
     .storesFirst = true,
     .enabledFor = anyItem,
     .run = renameSelectedItem},
    {.id = CommandId::remove,
     .menu = item,
     .text = Text::menuDelete,
     .tip = Text::tipDelete,
     .enabledFor = anyItem,
     .run = deleteWithQuestion},
    {.id = CommandId::transmit,
     .menu = item,
     .separatorAhead = true,
     .text = Text::menuTransmit,
     .shortcut = "F6",
     .tip = Text::tipTransmit,
     .storesFirst = true,
     .enabledFor = transmittable,
     .run = transmitSelected},
    {.id = CommandId::queue,
     .menu = item,
     .text = Text::menuQueue,
     .shortcut = "F8",
     .tip = Text::tipQueue,
     .storesFirst = true,
     .enabledFor = transmittable,
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

    {.id = CommandId::undo,
     .menu = edit,
     .text = Text::undo,
     .standardKey = QKeySequence::Undo,
     .repeats = true,
     .offered = undoOffered,
     .words = undoWords,
     .run = undoLast},
    {.id = CommandId::redo,
     .menu = edit,
     .text = Text::redo,
     .standardKey = QKeySequence::Redo,
     .repeats = true,
     .offered = redoOffered,
     .run = redoLast},
    {.id = CommandId::find,
     .menu = edit,
     .separatorAhead = true,
     .text = Text::menuFind,
     .shortcut = "Ctrl+F",
     .tip = Text::tipFind,
     .enabled = programOnView,
     .run = findInProgram},
    {.id = CommandId::findAgain,
     .menu = edit,
     .text = Text::menuFindAgain,
     .shortcut = "F3",
     .tip = Text::tipFindAgain,
     .enabled = programOnView,
     .run = findAgain},
    {.id = CommandId::refresh,
     .menu = edit,
     .text = Text::menuRefresh,
     .shortcut = "F5",
     .tip = Text::tipRefresh,
     .enabled = programOnView,
     .run = [] { reopenView(); }},

    {.id = CommandId::screenshot,
     .menu = emulator,
     .text = Text::menuSaveScreenshot,
     .tip = Text::tipScreenshot,
     .run = saveScreenshot},
    {.id = CommandId::record,
     .menu = emulator,
     .text = Text::menuRecord,
     .tip = Text::tipRecord,
     .checked = isRecording,
     .run = toggleRecording},
    {.id = CommandId::copyDisplay,
     .menu = emulator,
     .text = Text::menuCopyDisplay,
     .tip = Text::tipCopyDisplay,
     .run = copyDisplayText},
    {.id = CommandId::speedCalculator,
     .menu = speed,
     .text = Text::speedCalculator,
     .shortcut = "Ctrl+F1",
     .keyWhileRunning = true,
     .checked = speedIs<1>,
     .run = speedTo<1>},
    {.id = CommandId::speed2,
     .menu = speed,
     .label = "&2 \xD7",
     .shortcut = "Ctrl+F2",
     .keyWhileRunning = true,
     .checked = speedIs<2>,
     .run = speedTo<2>},
    {.id = CommandId::speed5,
     .menu = speed,
     .label = "&5 \xD7",
     .shortcut = "Ctrl+F3",
     .keyWhileRunning = true,
     .checked = speedIs<5>,
     .run = speedTo<5>},
    {.id = CommandId::speed10,
     .menu = speed,
     .label = "&10 \xD7",
     .shortcut = "Ctrl+F4",
     .keyWhileRunning = true,
     .checked = speedIs<10>,
     .run = speedTo<10>},
    {.id = CommandId::speedFull,
     .menu = speed,
     .text = Text::speedFull,
     .shortcut = "Ctrl+F8",
     .keyWhileRunning = true,
     .checked = speedIs<0>,
     .run = speedTo<0>},

    {.id = CommandId::debugGoOn,
     .menu = debug,
     .text = Text::menuGoOn,
     .shortcut = "Ctrl+F5",
     .tip = Text::tipGoOn,
     .keyWhileRunning = true,
     .storesFirst = true,
     .enabled = canGoOn,
     .run = debugGoOn},
    {.id = CommandId::debugPause,
     .menu = debug,
     .text = Text::menuPause,
     .shortcut = "Ctrl+F6",
     .tip = Text::tipPause,
     .keyWhileRunning = true,
     .enabled = canPause,
     .run = debugPauseRun},
    {.id = CommandId::debugStep,
     .menu = debug,
     .separatorAhead = true,
     .text = Text::menuStep,
     .shortcut = "F12",
     .tip = Text::tipStep,
     .keyWhileRunning = true,
     .repeats = true,
     .enabled = canGoOn,
     .run = stepBy<DebugStep::statement>},
    {.id = CommandId::debugStepOver,
     .menu = debug,
     .text = Text::menuStepOver,
     .shortcut = "Ctrl+F12",
     .tip = Text::tipStepOver,
     .keyWhileRunning = true,
     .repeats = true,
     .enabled = canGoOn,
     .run = stepBy<DebugStep::over>},
    {.id = CommandId::debugStepOut,
     .menu = debug,
     .text = Text::menuStepOut,
     .shortcut = "Ctrl+Shift+F12",
     .tip = Text::tipStepOut,
     .keyWhileRunning = true,
     .enabled = runIsStopped,
     .run = stepBy<DebugStep::out>},
    {.id = CommandId::debugNextLine,
     .menu = debug,
     .text = Text::menuNextLine,
     .shortcut = "Ctrl+F11",
     .tip = Text::tipNextLine,
     .keyWhileRunning = true,
     .repeats = true,
     .enabled = canGoOn,
     .run = stepBy<DebugStep::line>},
    {.id = CommandId::debugToCaret,
     .menu = debug,
     .text = Text::menuToCaret,
     .shortcut = "Ctrl+F10",
     .tip = Text::tipToCaret,
     .keyWhileRunning = true,
     .storesFirst = true,
     .enabled = [] { return viewKind == kind::program && canGoOn(); },
     .run = debugToCaret},
    {.id = CommandId::debugBackStep,
     .menu = debug,
     .separatorAhead = true,
     .text = Text::menuBackStep,
     .shortcut = "Shift+F12",
     .tip = Text::tipBackStep,
     .keyWhileRunning = true,
     .repeats = true,
     .enabled = canGoBack,
     .run = [] { debugBackBy(DebugBack::statement); }},
    {.id = CommandId::debugBackBreakpoint,
     .menu = debug,
     .text = Text::menuBackBreakpoint,
     .shortcut = "Ctrl+Shift+F5",
     .tip = Text::tipBackBreakpoint,
     .keyWhileRunning = true,
     .enabled = canGoBack,
     .run = [] { debugBackBy(DebugBack::breakpoint); }},
    {.id = CommandId::debugBackChange,
     .menu = debug,
     .text = Text::menuBackChange,
     .tip = Text::tipBackChange,
     .enabled = canGoBack,
     .offered = [] { return !pickedValue().empty(); },
     .run = [] { debugBackBy(DebugBack::change, pickedValue()); }},
    {.id = CommandId::debugNewRoad,
     .menu = debug,
     .text = Text::menuNewRoad,
     .tip = Text::tipNewRoad,
     .enabled = canTakeNewRoad,
     .run = debugTakeNewRoad},
    {.id = CommandId::breakpoint,
     .menu = debug,
     .separatorAhead = true,
     .text = Text::menuBreakpoint,
     .shortcut = "Ctrl+F9",
     .tip = Text::tipBreakpoint,
     .keyWhileRunning = true,
     .enabled = [] { return viewKind == kind::program; },
     .run = toggleBreakpoint},
    {.id = CommandId::breakpointsClear,
     .menu = debug,
     .text = Text::menuBreakpointsClear,
     .tip = Text::tipBreakpointsClear,
     .enabled = anyBreakpoints,
     .run = breakpointsClear},

    {.id = CommandId::transmitQueue,
     .menu = communication,
     .text = Text::menuTransmitQueue,
     .shortcut = "F9",
     .tip = Text::tipTransmitQueue,
     .storesFirst = true,
     .enabled = transmitCanBegin,
     .run = [] { beginTransmit(); }},
    {.id = CommandId::showQueue, .menu = communication, .text = Text::menuShowQueue, .run = openQueueWindow},

    {.id = CommandId::hideTree,
     .menu = view,
     .text = Text::menuHideFiles,
     .shortcut = "F11",
     .tip = Text::tipHideFiles,
     .checked = treeHidden,
     .run = toggleTree},
    {.id = CommandId::symbols,
     .menu = view,
     .text = Text::menuSymbols,
     .shortcut = "F4",
     .keyWhileRunning = true,
     .checked = symbolsWanted,
     .run = [] { setSymbolsWanted(!symbolsWanted()); }},
    {.id = CommandId::besideProgram,
     .menu = view,
     .text = Text::menuBeside,
     .tip = Text::tipBeside,
     .checked = besideProgram,
     .run = toggleBeside},
    paneRow<Pane::variables>(CommandId::paneVariables, Text::paneVariables),
    paneRow<Pane::watches>(CommandId::paneWatches, Text::paneWatches),
    paneRow<Pane::calls>(CommandId::paneCalls, Text::paneCalls),
    paneRow<Pane::breakpoints>(CommandId::paneBreakpoints, Text::paneBreakpoints),
    paneRow<Pane::profile>(CommandId::paneProfile, Text::paneProfile),
    {.id = CommandId::zoom1, .menu = zoom, .label = "&1", .checked = zoomIs<1>, .run = zoomTo<1>},
    {.id = CommandId::zoom2, .menu = zoom, .label = "&2", .checked = zoomIs<2>, .run = zoomTo<2>},
    {.id = CommandId::zoom3, .menu = zoom, .label = "&3", .checked = zoomIs<3>, .run = zoomTo<3>},
    {.id = CommandId::zoom4, .menu = zoom, .label = "&4", .checked = zoomIs<4>, .run = zoomTo<4>},
    {.id = CommandId::zoom5, .menu = zoom, .label = "&5", .checked = zoomIs<5>, .run = zoomTo<5>},
    {.id = CommandId::zoom6, .menu = zoom, .label = "&6", .checked = zoomIs<6>, .run = zoomTo<6>},
    {.id = CommandId::zoomFit,
     .menu = zoom,
     .text = Text::zoomFit,
     .checked = zoomIs<zoomToFit>,
     .run = zoomTo<zoomToFit>},

    {.id = CommandId::manual,
     .menu = help,
     .text = Text::menuManual,
     .shortcut = "F1",
     .tip = Text::tipManual,
     .endsLabelEdit = false,
     .run = showManualAtFirstPage},
    {.id = CommandId::languageReference,
     .menu = help,
     .text = Text::menuReference,
     .shortcut = "Shift+F1",
     .tip = Text::tipReference,
     .run = showReference},
    {.id = CommandId::keys, .menu = help, .text = Text::menuKeys, .tip = Text::tipKeys, .run = showKeysPage},
    {.id = CommandId::tour, .menu = help, .text = Text::menuTour, .tip = Text::tipTour, .run = [] { beginTour(); }},
    {.id = CommandId::whatIsNew, .menu = help, .text = Text::menuNews, .tip = Text::tipNews, .run = showWhatIsNew},
    {.id = CommandId::about,
     .menu = help,
     .separatorAhead = true,
     .text = Text::menuAbout,
     .tip = Text::tipAbout,
     .run = showAboutBox},

    {.id = CommandId::undoTyping,
     .menu = program,
     .text = Text::undo,
     .standardKey = QKeySequence::Undo,
     .keyOfText = true,
     .offered = canUndoTyping,
     .run = undoInProgram},
    {.id = CommandId::redoTyping,
     .menu = program,
     .text = Text::redo,
     .standardKey = QKeySequence::Redo,
     .keyOfText = true,
     .offered = canRedoTyping,
     .run = redoInProgram},
    {.id = CommandId::copyText,
     .menu = program,
     .separatorAhead = true,
     .text = Text::editCopy,
     .standardKey = QKeySequence::Copy,
     .keyOfText = true,
     .offered = textIsSelected,
     .run = copyText},
    {.id = CommandId::cutText,
     .menu = program,
     .text = Text::editCut,
     .standardKey = QKeySequence::Cut,
     .keyOfText = true,
     .offered = canCutText,
     .run = cutText},
    {.id = CommandId::pasteText,
     .menu = program,
     .text = Text::editPaste,
     .standardKey = QKeySequence::Paste,
     .keyOfText = true,
     .offered = canPasteText,
     .run = pasteText},
    {.id = CommandId::deleteText,
     .menu = program,
     .text = Text::editDelete,
     .standardKey = QKeySequence::Delete,
     .keyOfText = true,
     .offered = canCutText,
     .run = deleteText},
    {.id = CommandId::selectText,
     .menu = program,
     .separatorAhead = true,
     .text = Text::editSelectAll,
     .standardKey = QKeySequence::SelectAll,
     .keyOfText = true,
     .run = selectWholeText},

    {.id = CommandId::exitFromTray, .menu = tray, .text = Text::trayExit, .endsLabelEdit = false, .run = exitProgram},
};

constexpr ToolbarButton debugButtons[] = {
    {.id = CommandId::debugGoOn, .image = "debug-go"},     {.id = CommandId::debugPause, .image = "debug-pause"},
    {.id = CommandId::debugStep, .image = "debug-step"},   {.id = CommandId::debugStepOver, .image = "debug-over"},
    {.id = CommandId::debugStepOut, .image = "debug-out"}, {.id = CommandId::debugBackStep, .image = "debug-back"},
    {.id = CommandId::breakpoint, .image = "debug-point"},
};

constexpr ToolbarButton buttons[] = {
    {.id = CommandId::newProgram, .image = "toolbar-new", .text = Text::toolNewProgram},
    {.id = CommandId::transmit, .image = "toolbar-transmit", .text = Text::toolTransmit},
    {.id = CommandId::open, .image = "toolbar-open", .text = Text::toolOpen},
    {.id = CommandId::save, .image = "toolbar-save", .text = Text::toolSave},
    {.id = CommandId::remove, .image = "toolbar-delete", .text = Text::editDelete},
    {.id = CommandId::emulate,
     .image = "toolbar-emulate",
     .text = Text::toolEmulate,
     .otherText = Text::editorButton,
     .isOther = emulatorShown},
    {.id = CommandId::password, .image = "toolbar-password", .text = Text::toolPassword},
    {.id = CommandId::find, .image = "toolbar-find", .text = Text::toolFind},
    {.id = CommandId::settings, .image = "toolbar-settings", .text = Text::toolSettings},
};

}  // namespace

std::span<const MenuRow> menuTable() { return menuRows; }
std::span<const Command> commandTable() { return commands; }
std::span<const ToolbarButton> toolbarTable() { return buttons; }
std::span<const ToolbarButton> debugBarTable() { return debugButtons; }

const Command *findCommand(CommandId id) {
    const auto found = std::ranges::find(commands, id, &Command::id);
    return found == std::end(commands) ? nullptr : found;
}

}  // namespace numalink
