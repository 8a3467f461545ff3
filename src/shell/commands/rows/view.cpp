// What the View menu holds, with its orders, panes and zooms.
#include "shell/commands/rows/rows.h"

#include "shell/editor/indentation.h"
#include "shell/editor/symbols_window.h"
#include "shell/parts/client_layout.h"
#include "shell/run/emulator_place.h"
#include "shell/run/emulator_window.h"
#include "shell/tree/tree_filter.h"
#include "shell/tree/tree_order.h"
#include "shell/views/surface_view.h"
#include "shell/workbench/debugging.h"
#include "shell/workbench/panes.h"

namespace numalink {

namespace {

using enum MenuPosition;

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

template <Pane pane>
constexpr Command paneRow(CommandId id, Text title) {
    return {.id = id,
            .menu = panes,
            .text = title,
            .checked = [] { return paneShown(pane); },
            .run = [] { togglePane(pane); }};
}

template <TreeOrder order>
constexpr Command sortRow(CommandId id, Text words) {
    return {.id = id,
            .menu = sort,
            .text = words,
            .checked = [] { return treeOrder() == order; },
            .run = [] { setTreeOrder(order); }};
}

constexpr Command rows[] = {
    {.id = CommandId::hideTree,
     .menu = view,
     .text = Text::menuHideFiles,
     .shortcut = "F11",
     .tip = Text::tipHideFiles,
     .checked = treeHidden,
     .run = toggleTree},
    {.id = CommandId::filterTree,
     .menu = view,
     .text = Text::filterNames,
     .shortcut = "Ctrl+Shift+L",
     .checked = treeFilterShown,
     .run = toggleTreeFilter},
    sortRow<TreeOrder::name>(CommandId::sortByName, Text::sortByName),
    sortRow<TreeOrder::kind>(CommandId::sortByKind, Text::sortByKind),
    sortRow<TreeOrder::size>(CommandId::sortBySize, Text::sortBySize),
    sortRow<TreeOrder::time>(CommandId::sortByTime, Text::sortByTime),
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
    {.id = CommandId::codeIndent,
     .menu = view,
     .text = Text::menuIndent,
     .tip = Text::tipIndent,
     .checked = linesAreIndented,
     .run = toggleIndentation},
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
};

}  // namespace

std::span<const Command> viewRows() { return rows; }

}  // namespace numalink
