#include "shell/parts/open_windows.h"

#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QScreen>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>

#include "shell/parts/tree_refresh.h"

namespace numalink {

namespace {

void closeEach(QWidget *(*front)()) {
    while (QWidget *window = front()) {
        window->close();
        if (front() == window) break;
    }
}

// Moves all but the last part, the buttons, into an area that scrolls.
void scrollParts(QDialog &dialog, QVBoxLayout &layout) {
    auto *area = new QScrollArea(&dialog);
    auto *content = new QWidget;
    auto *parts = new QVBoxLayout(content);
    while (layout.count() > 1) {
        QLayoutItem *part = layout.takeAt(0);
        if (QLayout *inner = part->layout())
            parts->addLayout(inner);
        else
            parts->addItem(part);
        if (QWidget *widget = part->widget()) widget->setParent(content);
    }
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(content);
    area->setFocusPolicy(Qt::NoFocus);  // what has the focus within is scrolled into sight
    layout.setSizeConstraint(QLayout::SetDefaultConstraint);
    layout.insertWidget(0, area, 1);
}

}  // namespace

void fitToScreen(QDialog &dialog) {
    constexpr QSize frame(16, 48);  // about what a window manager adds
    const QWidget *over = dialog.parentWidget() != nullptr ? dialog.parentWidget() : &dialog;
    const QSize room = over->screen()->availableSize() - frame;
    dialog.ensurePolished();
    auto *layout = qobject_cast<QVBoxLayout *>(dialog.layout());
    if (layout != nullptr && layout->count() > 1) {
        const QSize needed = layout->totalMinimumSize();
        if (needed.width() > room.width() || needed.height() > room.height()) scrollParts(dialog, *layout);
    }
    const QSize wanted = dialog.testAttribute(Qt::WA_Resized) ? dialog.size() : dialog.sizeHint();
    if (layout != nullptr && wanted != wanted.boundedTo(room)) dialog.resize(wanted.boundedTo(room));
}

int runDialog(QDialog &dialog) {
    fitToScreen(dialog);
    const int result = dialog.exec();
    dialogClosed();
    return result;
}

void runMenu(QMenu &menu, const QPoint &onScreen) {
    menu.exec(onScreen);
    dialogClosed();
}

// Not at once: who has asked goes on with what the tree and the view have been.
void dialogClosed() { QTimer::singleShot(0, refreshTreeWhenFree); }

bool raiseOpenDialog() {
    QWidget *dialog = QApplication::activeModalWidget();
    if (dialog == nullptr) return false;
    dialog->raise();
    dialog->activateWindow();
    return true;
}

// Menus first: one may stand over a dialog.
void closeOpenWindows() {
    closeEach(QApplication::activePopupWidget);
    closeEach(QApplication::activeModalWidget);
}

}  // namespace numalink
