#include "shell/workbench/panes.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QTimer>
#include <QTreeWidget>
#include <algorithm>
#include <array>
#include <utility>

#include "settings/settings_store.h"
#include "shell/parts/command_states.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/pane_sizes.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/emulator_place.h"
#include "shell/workbench/breakpoints_pane.h"
#include "shell/workbench/calls_pane.h"
#include "shell/workbench/debugging.h"
#include "shell/workbench/profile_pane.h"
#include "shell/workbench/stop_view.h"
#include "shell/workbench/variables_pane.h"
#include "shell/workbench/watches_pane.h"

namespace numalink {

namespace {

constexpr int rightWidth = 290, bottomHeight = 150;  // pixels at first

struct PaneRow {
    Pane pane;
    char letter;  // in the setting
    const char *name;
    Text title, tip;
    QWidget *(*make)();
    void (*refresh)();
    Qt::DockWidgetArea area;  // at first
    bool shownAtFirst;
};

constexpr PaneRow rows[] = {
    {Pane::variables, 'V', "variablesDock", Text::paneVariables, Text::tipPaneVariables, makeVariablesPane,
     refreshVariables, Qt::RightDockWidgetArea, true},
    {Pane::watches, 'W', "watchesDock", Text::paneWatches, Text::tipPaneWatches, makeWatchesPane, refreshWatches,
     Qt::RightDockWidgetArea, true},
    {Pane::calls, 'C', "callsDock", Text::paneCalls, Text::tipPaneCalls, makeCallsPane, refreshCalls,
     Qt::BottomDockWidgetArea, true},
    {Pane::breakpoints, 'B', "breakpointsDock", Text::paneBreakpoints, Text::tipPaneBreakpoints, makeBreakpointsPane,
     refreshBreakpoints, Qt::BottomDockWidgetArea, true},
    {Pane::profile, 'P', "profileDock", Text::paneProfile, Text::tipPaneProfile, makeProfilePane, refreshProfile,
     Qt::BottomDockWidgetArea, false},
};

struct Dock {
    QDockWidget *widget = nullptr;
    bool wanted = false;
};

struct Panes {
    std::array<Dock, std::size(rows)> docks;
    bool shown = false;
    bool sized = false;      // once: afterwards the user's sizes stay
    bool arranging = false;  // what the docks tell meanwhile is our own doing
};
Panes state;

constexpr std::pair<Qt::DockWidgetArea, char> areaLetters[] = {{Qt::LeftDockWidgetArea, 'l'},
                                                               {Qt::RightDockWidgetArea, 'r'},
                                                               {Qt::TopDockWidgetArea, 't'},
                                                               {Qt::BottomDockWidgetArea, 'b'}};

// The setting: for each pane its letter, its area's, and "+" where it is shown: "Vr+Wr+Cb+Bb+Pb-".
std::string arrangementNow() {
    std::string text;
    for (std::size_t i = 0; i < std::size(rows); i++) {
        const Dock &dock = state.docks[i];
        const auto *area = std::ranges::find(areaLetters, mainWindow->dockWidgetArea(dock.widget),
                                             &std::pair<Qt::DockWidgetArea, char>::first);
        text += rows[i].letter;
        text += dock.widget->isFloating() || area == std::end(areaLetters) ? 'f' : area->second;
        text += dock.wanted ? '+' : '-';
    }
    return text;
}

struct PanePlace {
    Qt::DockWidgetArea area;
    bool floats;
    bool wanted;
};

// As the setting tells; a pane that it doesn't name, or a text that makes no sense, as at first.
PanePlace placeOf(const PaneRow &row, const std::string &setting) {
    PanePlace place{row.area, false, row.shownAtFirst};
    const std::size_t at = setting.find(row.letter);
    if (at == std::string::npos || at + 2 >= setting.size()) return place;
    const auto *area = std::ranges::find(areaLetters, setting[at + 1], &std::pair<Qt::DockWidgetArea, char>::second);
    if (area != std::end(areaLetters)) place.area = area->first;
    place.floats = setting[at + 1] == 'f';
    place.wanted = setting[at + 2] == '+';
    return place;
}

void changed() {
    if (state.arranging) return;
    rememberPanes();
    debugPanesChanged();
    commandStatesChanged();
}

// Closed by its own button.
bool dockEvent(QWidget *widget, QEvent *event) {
    if (event->type() != QEvent::Close) return false;
    for (Dock &dock : state.docks)
        if (dock.widget == widget) dock.wanted = false;
    QTimer::singleShot(0, mainWindow, changed);
    return false;
}

void makeDock(std::size_t index) {
    const PaneRow &row = rows[index];
    Dock &dock = state.docks[index];
    const QString title = textOf(row.title).remove(QLatin1Char('&'));  // it is the menu's too
    dock.widget = new QDockWidget(title, mainWindow);
    dock.widget->setObjectName(QString::fromLatin1(row.name));
    QWidget *content = row.make();
    content->setAccessibleName(title);
    dock.widget->setWidget(content);
    for (QTreeWidget *table : dock.widget->findChildren<QTreeWidget *>()) table->setToolTip(textOf(row.tip));
    dock.widget->hide();
    hookEvents(dock.widget, dockEvent);
    // Also when its tab comes to the front.
    QObject::connect(dock.widget, &QDockWidget::visibilityChanged, dock.widget, [index](bool visible) {
        if (!visible) return;
        takeProfile();
        rows[index].refresh();
    });
    QObject::connect(dock.widget, &QDockWidget::dockLocationChanged, dock.widget, changed);
    QObject::connect(dock.widget, &QDockWidget::topLevelChanged, dock.widget, changed);
}

void arrange() {
    state.arranging = true;
    const std::string setting = settingsValue(setting::panes);
    std::array<QDockWidget *, 16> firstOf{};  // by area
    for (std::size_t i = 0; i < std::size(rows); i++) {
        Dock &dock = state.docks[i];
        const PanePlace place = placeOf(rows[i], setting);
        dock.wanted = place.wanted;
        mainWindow->addDockWidget(place.area, dock.widget);
        dock.widget->setFloating(place.floats);
        if (place.floats) {
            tearOffAgain(dock.widget);
            continue;
        }
        QDockWidget *&first = firstOf[static_cast<std::size_t>(place.area)];
        if (first != nullptr)
            mainWindow->tabifyDockWidget(first, dock.widget);
        else
            first = dock.widget;
    }
    for (QDockWidget *first : firstOf)
        if (first != nullptr) first->raise();
    state.arranging = false;
}

// Panes that share an area by tabs share its size: the first one tells it.
void sizePanes() {
    QList<QDockWidget *> across, down;
    QList<int> widths, heights;
    for (const Dock &dock : state.docks) {
        const Qt::DockWidgetArea area = mainWindow->dockWidgetArea(dock.widget);
        if (!dock.wanted || dock.widget->isFloating()) continue;
        const bool isBelow = area == Qt::BottomDockWidgetArea || area == Qt::TopDockWidgetArea;
        const QSize known = paneSize(dock.widget);
        QList<QDockWidget *> &docks = isBelow ? down : across;
        if (std::ranges::any_of(docks, [&](QDockWidget *one) { return mainWindow->dockWidgetArea(one) == area; }))
            continue;
        docks << dock.widget;
        if (isBelow)
            heights << (known.isEmpty() ? grown(bottomHeight) : known.height());
        else
            widths << (known.isEmpty() ? grown(rightWidth) : known.width());
    }
    mainWindow->resizeDocks(across, widths, Qt::Horizontal);
    mainWindow->resizeDocks(down, heights, Qt::Vertical);
}

bool isWanted(const QDockWidget *pane) {
    return state.shown &&
           std::ranges::any_of(state.docks, [&](const Dock &dock) { return dock.widget == pane && dock.wanted; });
}

void refreshShown() {
    takeProfile();
    showStopInProgram();
    for (std::size_t i = 0; i < std::size(rows); i++)
        if (state.docks[i].widget->isVisible()) rows[i].refresh();
}

void forgetShownValues() {
    forgetValues();
    forgetCalls();
    forgetProfiles();
}

}  // namespace

void makePanes() {
    mainWindow->setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    makeCalculatorDock();
    for (std::size_t i = 0; i < std::size(rows); i++) makeDock(i);
    arrange();
    makeStopLine();
    debuggingChanged = refreshShown;
    marksMoved = showStopInProgram;
    shownValuesForgotten = forgetShownValues;
    showWorkbench = showPanes;
    anyPaneShown = panesShown;
    if (besideProgram()) showPanes(true);
}

void forgetPanes() {
    showWorkbench = [](bool) {};
    anyPaneShown = [] { return false; };
    state = {};
    forgetVariablesPane();
    forgetWatchesPane();
    forgetCallsPane();
    forgetBreakpointsPane();
    forgetProfilePane();
    forgetStopView();
}

void showPanes(bool show) {
    if (state.shown == show) return;
    state.arranging = true;
    if (show) makeRoomBeside();
    for (const Dock &dock : state.docks) notePaneSize(dock.widget);
    state.shown = show;
    for (const Dock &dock : state.docks) bringUpPane(dock.widget, isWanted);
    // Of those that share a place the first one is to be seen.
    for (auto dock = state.docks.rbegin(); dock != state.docks.rend(); ++dock)
        if (show && dock->wanted && !dock->widget->isFloating()) dock->widget->raise();
    showStopLine(show);
    if (show && !std::exchange(state.sized, true)) sizePanes();
    state.arranging = false;
    refreshShown();
}

bool panesShown() {
    return state.shown && std::ranges::any_of(state.docks, [](const Dock &dock) { return dock.wanted; });
}

bool paneShown(Pane pane) { return state.shown && state.docks[static_cast<std::size_t>(pane)].wanted; }

void togglePane(Pane pane) {
    Dock &dock = state.docks[static_cast<std::size_t>(pane)];
    dock.wanted = !paneShown(pane);
    if (!state.shown) return toggleBeside();
    dock.widget->setVisible(dock.wanted);
    if (dock.wanted) {
        dock.widget->raise();
        rows[static_cast<std::size_t>(pane)].refresh();
    }
    changed();
}

void rememberPanes() {
    settingsSetValue(setting::panes, arrangementNow());
    settingsSave();
}

}  // namespace numalink
