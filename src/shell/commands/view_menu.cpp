#include "shell/commands/view_menu.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>

#include "shell/commands/command_table.h"
#include "shell/commands/menus.h"
#include "shell/editor/symbols_window.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/emulator_window.h"
#include "shell/views/surface_view.h"

namespace numalink {

namespace {

void addZoom(QMenu *menu, QActionGroup *group, const QString &text, int zoom) {
    QAction *action = menu->addAction(text);
    action->setCheckable(true);
    action->setChecked(zoom == 1);
    group->addAction(action);
    QObject::connect(action, &QAction::triggered, menu, [zoom] {
        setSurfaceZoom(zoom);
        zoomEmulatorWindow();
    });
}

}  // namespace

void buildViewMenu() {
    QMenu *view = menuAt(static_cast<int>(MenuPosition::view));
    QAction *symbols = view->addAction(textOf(Text::menuSymbols));
    symbols->setObjectName(QStringLiteral("symbolsAction"));
    symbols->setShortcut(QKeySequence(QStringLiteral("F4")));
    symbols->setCheckable(true);
    symbols->setChecked(symbolsWanted());
    QObject::connect(symbols, &QAction::triggered, view, setSymbolsWanted);
    // Its own close button changes it too.
    QObject::connect(view, &QMenu::aboutToShow, symbols, [symbols] { symbols->setChecked(symbolsWanted()); });
    QMenu *zoom = view->addMenu(textOf(Text::menuZoom));
    auto *group = new QActionGroup(zoom);
    for (int size = 1; size <= zoomLimit; size++) addZoom(zoom, group, QStringLiteral("&%1").arg(size), size);
    addZoom(zoom, group, textOf(Text::zoomFit), zoomToFit);
}

}  // namespace numalink
