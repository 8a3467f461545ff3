#include "shell/parts/tree_refresh.h"

#include <QApplication>
#include <QTimer>
#include <QTreeWidget>

#include "shell/parts/main_widgets.h"
#include "telling/graphical_calls.h"

namespace numalink {

namespace {

struct TreeRefresh {
    void (*refresh)() = nullptr;  // null until there is a tree to refresh
    bool (*busy)() = nullptr;
    bool owed = false;
    bool askingAgain = false;
};
TreeRefresh state;

bool mustWait() {
    return state.busy() || QApplication::activePopupWidget() != nullptr || QApplication::activeModalWidget() != nullptr;
}

// Not every dialog and menu says when it closes, so an owed refresh asks for itself.
void askAgain() {
    if (state.askingAgain) return;
    state.askingAgain = true;
    QTimer::singleShot(postponedMilliseconds, treeView, [] {
        state.askingAgain = false;
        refreshTreeWhenFree();
    });
}

}  // namespace

void refreshTree() {
    graphicalRun([] {
        if (treeView == nullptr) return;
        state.owed = true;
        refreshTreeWhenFree();
    });
}

void refreshTreeWhenFree() {
    if (!state.owed || state.refresh == nullptr || treeView == nullptr) return;
    if (mustWait()) return askAgain();
    state.owed = false;
    state.refresh();
}

void connectTreeRefresh(void (*refresh)(), bool (*busy)()) {
    state.refresh = refresh;
    state.busy = busy;
}

void forgetTreeRefresh() { state = {}; }

}  // namespace numalink
