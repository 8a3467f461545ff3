// What the Debug menu holds.
#include "shell/commands/rows/rows.h"

#include "debugger/breakpoints.h"
#include "shell/parts/on_view.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/emulator_window.h"
#include "shell/views/item_views.h"
#include "shell/workbench/debugging.h"
#include "shell/workbench/variables_pane.h"

namespace numalink {

namespace {

using enum MenuPosition;

QString endRunWords() { return textOf(Text::menuEndRun) + QStringLiteral("\tF7"); }

bool runIsStopped() { return shownStop() != nullptr; }

template <DebugStep step>
void stepBy() {
    debugStepBy(step);
}

constexpr Command rows[] = {
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
    // Its key is that of CommandId::emulate, which starts as well.
    {.id = CommandId::debugEnd,
     .menu = debug,
     .text = Text::menuEndRun,
     .tip = Text::tipEndRun,
     .enabled = emulatorShown,
     .words = endRunWords,
     .run = endRun},
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
};

}  // namespace

std::span<const Command> debugRows() { return rows; }

}  // namespace numalink
