#include "shell/parts/main_widgets.h"

#include <QApplication>
#include <QFontDatabase>
#include <QIcon>
#include <QLabel>
#include <QMainWindow>
#include <QScreen>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>
#include <algorithm>

#include "shell/parts/fonts.h"
#include "shell/parts/own_colors.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/status_bar.h"

namespace numalink {

QMainWindow *mainWindow = nullptr;
QWidget *clientArea = nullptr;
QTreeWidget *treeView = nullptr;
QToolButton *treeToggleButton = nullptr;
QStatusBar *statusBar = nullptr;
QProgressBar *progressBar = nullptr;
QLabel *linkField = nullptr;
QLabel *itemField = nullptr;
QPlainTextEdit *programEdit = nullptr;
QWidget *lineNumberEdit = nullptr;
QWidget *containerWindow = nullptr;
QWidget *emulatorWindow = nullptr;
QToolBar *toolbar = nullptr;
QMenu *itemMenu = nullptr;
QMenu *treeGroundMenu = nullptr;
QMenu *programMenu = nullptr;

namespace {

constexpr int windowWidth = 640, windowHeight = 430;
constexpr int toolbarImageSize = 24, treeImageSize = 16;

void makeTree() {
    treeView = new QTreeWidget(clientArea);
    treeView->setObjectName(QStringLiteral("treeView"));
    treeView->setAccessibleName(textOf(Text::libraryTree));
    treeView->setHeaderLabel(textOf(Text::libraryTree));  // for screen readers
    treeView->setHeaderHidden(true);
    treeView->setIconSize(QSize(treeImageSize, treeImageSize) * textScale());
    treeView->setFont(treeFont());
    treeView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    treeView->setSelectionMode(QAbstractItemView::ExtendedSelection);
    treeView->setDragEnabled(false);
    treeView->setMouseTracking(true);
    treeView->setUniformRowHeights(true);
}

void centreMainWindow(int width) {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    mainWindow->resize(QSize(width, grown(windowHeight)).boundedTo(screen.size()));
    mainWindow->move((screen.width() - mainWindow->width()) / 2, (screen.height() - mainWindow->height()) / 2);
}

}  // namespace

void makeMainWindow() {
    loadScreenFace();
    mainWindow = new QMainWindow;
    mainWindow->setWindowTitle(QStringLiteral("Vesper Foundry - Numalink"));
    mainWindow->setWindowIcon(QIcon(QStringLiteral(":/images/numalink.svg")));
    mainWindow->setAcceptDrops(true);
    centreMainWindow(grown(windowWidth));
    keepPaletteReadable(mainWindow);
    clientArea = new QWidget;
    mainWindow->setCentralWidget(clientArea);
}

void makeClientWidgets() {
    makeTree();
    treeToggleButton = new QToolButton(clientArea);
    treeToggleButton->setText(QStringLiteral("<"));
    treeToggleButton->setAutoRaise(true);
    treeToggleButton->setFocusPolicy(Qt::NoFocus);
    treeToggleButton->setAccessibleName(textOf(Text::menuHideFiles).remove(QLatin1Char('&')));
    makeStatusBar();
    containerWindow = new QWidget(clientArea);
    containerWindow->setObjectName(QStringLiteral("containerWindow"));
    containerWindow->hide();
    toolbar = mainWindow->addToolBar(QString::fromLatin1("Numalink"));
    toolbar->setObjectName(QStringLiteral("toolbar"));
    toolbar->setMovable(false);
    toolbar->setIconSize(QSize(toolbarImageSize, toolbarImageSize) * textScale());
    toolbar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    toolbar->setContextMenuPolicy(Qt::PreventContextMenu);
    nameMoreButton(toolbar);
    statusBar->show();
}

void nameMoreButton(QToolBar *bar) {
    if (auto *more = bar->findChild<QToolButton *>(QStringLiteral("qt_toolbar_ext_button")))
        more->setAccessibleName(textOf(Text::moreButtons));
}

void fitWindowToToolbar() {
    const int needed = toolbar->sizeHint().width();
    if (needed > grown(windowWidth)) centreMainWindow(needed);
}

void showUnminimised(QWidget *window) {
    if (window->isMinimized()) window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
}

void destroyWidgets() {
    delete mainWindow;
    mainWindow = nullptr;
    clientArea = containerWindow = emulatorWindow = nullptr;
    treeView = nullptr;
    treeToggleButton = nullptr;
    statusBar = nullptr;
    progressBar = nullptr;
    linkField = itemField = nullptr;
    programEdit = nullptr;
    lineNumberEdit = nullptr;
    toolbar = nullptr;
}

}  // namespace numalink
