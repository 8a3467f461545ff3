// Every command once: its number, place in the menu, key, toolbar button, wording and handler.
#pragma once

#include <span>

#include "telling/texts.h"

namespace numalink {

namespace command {
inline constexpr int open = 40004;
inline constexpr int save = 40037;
inline constexpr int settings = 40043;
inline constexpr int exit = 40044;
inline constexpr int newFolder = 40054;
inline constexpr int newProgram = 40052;
inline constexpr int rename = 40008;
inline constexpr int remove = 40010;
inline constexpr int transmit = 40011;
inline constexpr int queue = 40012;
inline constexpr int emulate = 40016;
inline constexpr int password = 40042;
inline constexpr int saveBitmap = 40038;
inline constexpr int find = 40049;
inline constexpr int findAgain = 40047;
inline constexpr int refresh = 40051;
inline constexpr int screenshot = 40058;
inline constexpr int transmitQueue = 40006;
inline constexpr int hideTree = 40055;
inline constexpr int about = 40014;
inline constexpr int openView = 4654;  // opens the selected item's view; in no menu
inline constexpr int deleteKey = 46;   // Delete in the tree; in no menu
}  // namespace command

// Positions of the menu bar.
enum class MenuPosition { file, item, edit, emulator, communication, view, help };
inline constexpr int menuCount = 7;
inline constexpr Text menuTexts[menuCount] = {Text::menuFile,     Text::menuItem,          Text::menuEdit,
                                              Text::menuEmulator, Text::menuCommunication, Text::menuView,
                                              Text::menuHelp};

struct Command {
    int id;
    MenuPosition menu;
    bool separatorAhead;
    Text text;
    const char *shortcut;  // "" for none
    Text tip;              // tool tip and status text
    bool enabledAtStart;
    bool working;         // false: stands in the menu, greyed until the program can do it
    bool needsSelection;  // does nothing without a selected item
    bool storesFirst;     // an edited program on view is stored ahead of it
    int (*handler)();     // non-zero when handled
};

struct ToolbarButton {
    int commandId;
    const char *image;  // name of the picture in the resources
    Text text;
    bool enabledAtStart;
};

std::span<const Command> commandTable();
std::span<const ToolbarButton> toolbarTable();
const Command *findCommand(int id);  // null when there is no such row

}  // namespace numalink
