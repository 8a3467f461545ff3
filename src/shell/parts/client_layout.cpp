#include "shell/parts/client_layout.h"

#include <QPlainTextEdit>
#include <QToolButton>
#include <QTreeWidget>
#include <algorithm>

#include "shell/parts/main_layout.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/scale.h"

namespace numalink {

bool treeVisible = true;
QWidget *treeFilterBar = nullptr;

namespace {

void place(QWidget *widget, const Rectangle &where) {
    widget->setGeometry(where.x, where.y, where.width, where.height);
}

}  // namespace

void applyLayout() {
    const MainLayout layout = layoutFor(clientArea->width(), clientArea->height(), treeVisible, textScale());
    Rectangle tree = layout.tree;
    if (treeFilterBar != nullptr && treeVisible && treeFilterBar->isVisibleTo(clientArea)) {
        const int height = std::min(treeFilterBar->sizeHint().height(), tree.height);
        place(treeFilterBar, {tree.x, tree.y, tree.width, height});
        tree.y += height;
        tree.height -= height;
    }
    if (treeFilterBar != nullptr && !treeVisible) treeFilterBar->hide();
    place(treeView, tree);
    treeView->setVisible(treeVisible);
    place(treeToggleButton, layout.toggle);
    place(lineNumberEdit, layout.lineNumbers);
    place(programEdit, layout.program);
    place(containerWindow, layout.container);
    if (emulatorWindow != nullptr && emulatorWindow->parentWidget() == clientArea)
        place(emulatorWindow, layout.container);
}

void toggleTree() {
    treeVisible = !treeVisible;
    applyLayout();
    treeToggleButton->setText(treeVisible ? QStringLiteral("<") : QStringLiteral(">"));
}

void forgetLayout() { treeVisible = true; }

}  // namespace numalink
