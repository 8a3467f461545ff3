// Every command once: its number, place in the menus, key, toolbar button, wording, states and handler.
#pragma once

#include <QKeySequence>
#include <QString>
#include <optional>
#include <span>
#include <vector>

#include "calculator/item_kinds.h"
#include "telling/texts.h"

namespace numalink {

enum class CommandId {
    open = 40004,
    transmitQueue = 40006,
    rename = 40008,
    remove = 40010,
    transmit = 40011,
    queue = 40012,
    about = 40014,
    emulate = 40016,
    save = 40037,
    saveBitmap = 40038,
    password = 40042,
    settings = 40043,
    exit = 40044,
    findAgain = 40047,
    find = 40049,
    refresh = 40051,
    newProgram = 40052,
    newFolder = 40054,
    hideTree = 40055,
    screenshot = 40058,

    showQueue = 50000,
    undo,
    redo,
    symbols,
    zoom1,
    zoom2,
    zoom3,
    zoom4,
    zoom5,
    zoom6,
    zoomFit,
    undoTyping,
    redoTyping,
    copyText,
    cutText,
    pasteText,
    deleteText,
    selectText,
    exitFromTray,
    besideProgram,
    paneVariables,
    paneWatches,
    paneCalls,
    paneBreakpoints,
    paneProfile,
    debugGoOn,
    debugPause,
    debugEnd,
    debugStep,
    debugStepOver,
    debugStepOut,
    debugNextLine,
    debugToCaret,
    debugBackStep,
    debugBackBreakpoint,
    debugBackChange,
    debugNewRoad,
    breakpoint,
    breakpointsClear,
    openLibrary,
    newLibrary,
    keypad,
    move,
    report,
    recentLibrary1,
    recentLibrary2,
    recentLibrary3,
    recentLibrary4,
    recentLibrary5,
    recentLibrary6,
    recentLibrary7,
    recentLibrary8,
    recentLibrary9,
    manual,
    languageReference,
    keys,
    whatIsNew,
    tour,
    sharePage,
    record,
    copyDisplay,
    moments,
    saveMoment,
    newestMoment,
    speedCalculator,
    speed2,
    speed5,
    speed10,
    speedFull,
    codeComplete,
    codeExplain,
    codeMend,
    codeNextProblem,
    codeDefinition,
    codeBack,
    codeForward,
    codeUses,
    codeRename,
    codeIndent,
    codeFold,
    codeUnfold,
    codeFoldAll,
    codeUnfoldAll,
    codeCompleteTyping,
    codeProblems,
    codeOutline,
    compareItems,
    versions,
    duplicates,
    searchLibrary,
    filterTree,
    sortByName,
    sortByKind,
    sortBySize,
    sortByTime,
    selectAll,
    recordKeypad,
    saveKeys,
    playKeys,
    copyPicture,
    assignKeys,

    openView = 4654,  // opens the selected item's view; in no menu
    deleteKey = 46,   // Delete in the tree; in no menu
};

// The menus of the bar, from left to right, and after them those that open elsewhere.
enum class MenuPosition {
    file,
    item,
    edit,
    emulator,
    debug,
    communication,
    view,
    help,
    recent,
    zoom,
    panes,
    speed,
    code,
    sort,
    program,
    tray
};

struct MenuRow {
    MenuPosition menu = MenuPosition::file;
    Text text = Text::none;                   // none: no menu of the bar, it opens where a button is pressed
    std::optional<MenuPosition> within = {};  // the menu that it is an entry of
    bool oneChecked = false;                  // of its entries always one has the check mark
    bool ofNoWindow = false;                  // opens while the main window is hidden
    bool (*enabled)() = nullptr;              // null: always; holds for its entries too
};

// Whatever isn't named has its default: no key, no check mark, enabled always.
struct Command {
    CommandId id = CommandId::open;
    MenuPosition menu = MenuPosition::file;
    bool separatorAhead = false;
    Text text = Text::none;
    const char *label = "";     // in place of text, for what is the same in all languages
    const char *shortcut = "";  // the first of several is shown: "Ctrl+A; F4"
    QKeySequence::StandardKey standardKey = QKeySequence::UnknownKey;  // in place of shortcut: as the desktop has it
    Text tip = Text::none;                                             // tool tip and status text
    bool keyWhileRunning = false;  // its key is a command, too, while an emulated program has the keyboard
    bool keyOfText = false;        // its key is the text's own and is only shown here
    bool repeats = false;          // as long as its key is held
    bool onTreeGround = false;     // stands in the menu of the tree's empty ground as well
    bool storesFirst = false;      // an edited program on view is stored ahead of it
    bool endsLabelEdit = true;     // false: the handler does, after what it asks first

    // By the kind of the selected item, kind::none without one. Such a command does nothing where no item is selected.
    bool (*enabledFor)(ItemKind) = nullptr;
    // By the kinds of all that are selected, where these are several; null: it is for one item alone.
    bool (*enabledForSeveral)(const std::vector<ItemKind> &) = nullptr;
    bool (*enabled)() = nullptr;
    bool (*offered)() = nullptr;   // false greys it only in its open menu: the key works, and tells why it can't
    bool (*present)() = nullptr;   // false leaves it out of its menu
    bool (*checked)() = nullptr;   // null: no check mark
    QString (*words)() = nullptr;  // in place of the text, each time its menu opens
    void (*run)() = nullptr;
};

struct ToolbarButton {
    CommandId id = CommandId::open;
    const char *image = "";  // name of the picture in the resources
    Text text = Text::none;
    Text otherText = Text::none;  // in place of text while isOther holds
    bool (*isOther)() = nullptr;
};

std::span<const MenuRow> menuTable();
std::span<const Command> commandTable();  // in the order of the menus
std::span<const ToolbarButton> toolbarTable();
std::span<const ToolbarButton> debugBarTable();  // the buttons of the debugger's bar
const Command *findCommand(CommandId id);        // null when there is no such row

}  // namespace numalink
