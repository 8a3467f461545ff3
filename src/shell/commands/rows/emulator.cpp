// What the Emulator menu and its speeds hold.
#include "shell/commands/rows/rows.h"

#include "emulator/machine/pace.h"
#include "settings/settings_store.h"
#include "shell/run/display_out.h"
#include "shell/run/emulator_window.h"
#include "shell/run/keypad_focus.h"
#include "shell/run/moments.h"
#include "shell/run/recording.h"
#include "shell/run/run_keys.h"

namespace numalink {

namespace {

using enum MenuPosition;

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

constexpr Command rows[] = {
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
    {.id = CommandId::recordKeypad,
     .menu = emulator,
     .text = Text::menuRecordKeypad,
     .tip = Text::tipRecordKeypad,
     .checked = recordsKeypad,
     .run = toggleRecordsKeypad},
    {.id = CommandId::saveKeys,
     .menu = emulator,
     .text = Text::menuSaveKeys,
     .tip = Text::tipSaveKeys,
     .run = saveKeys},
    {.id = CommandId::copyPicture,
     .menu = emulator,
     .text = Text::menuCopyPicture,
     .tip = Text::tipCopyPicture,
     .run = copyDisplayPicture},
    {.id = CommandId::copyDisplay,
     .menu = emulator,
     .text = Text::menuCopyDisplay,
     .tip = Text::tipCopyDisplay,
     .run = copyDisplayText},
    {.id = CommandId::saveMoment,
     .menu = emulator,
     .text = Text::menuSaveMoment,
     .shortcut = "Ctrl+Shift+F9",
     .tip = Text::tipSaveMoment,
     .keyWhileRunning = true,
     .enabled = canSaveMoment,
     .run = saveMoment},
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
    {.id = CommandId::keypad,
     .menu = emulator,
     .text = Text::menuKeypad,
     .shortcut = "Ctrl+F7",
     .tip = Text::tipKeypad,
     .keyWhileRunning = true,
     .checked = keypadFocused,
     .run = toggleKeypadFocus},
};

}  // namespace

std::span<const Command> emulatorRows() { return rows; }

}  // namespace numalink
