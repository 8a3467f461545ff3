// numalink-tour SAMPLES PICTURES: starts the program with the library that lies beside it, imports the item files of
// SAMPLES with every question answered as it stands, shows each view, and leaves pictures of the window in PICTURES.
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QMainWindow>
#include <QMenu>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <cstdio>

#include "shell/command_handler.h"
#include "shell/item_tree.h"
#include "shell/menus.h"
#include "shell/shell_texts.h"
#include "shell/shell_widgets.h"
#include "shell/start_up.h"
#include "store/item_store.h"

namespace {

QString pictureFolder;
int pictureCount = 0;

// The whole virtual screen, so that dialogs and menus are on it.
void takePicture(const char *name) {
    QTest::qWait(150);
    const QString file = QStringLiteral("%1/%2-%3.png")
                             .arg(pictureFolder)
                             .arg(++pictureCount, 2, 10, QLatin1Char('0'))
                             .arg(QString::fromLatin1(name));
    QPixmap picture = QGuiApplication::primaryScreen()->grabWindow(0, numalink::mainWindow->x() - 40,
                                                                   numalink::mainWindow->y() - 40, 900, 640);
    if (picture.isNull() || picture.width() < 10) picture = numalink::mainWindow->grab();
    picture.save(file);
    std::printf("%s\n", qPrintable(file));
}

// Photographs the first box or dialog of its sort and confirms every one.
void answerDialogs() {
    static QStringList seen;
    QWidget *dialog = QApplication::activeModalWidget();
    if (dialog == nullptr) return;
    const QString name = dialog->objectName().isEmpty() ? QStringLiteral("box") : dialog->objectName();
    if (!seen.contains(name)) {
        seen << name;
        takePicture(qPrintable(name));
    }
    QTest::keyClick(dialog, Qt::Key_Return);
}

// The first item of a kind, or none.
numalink::ItemId firstOfKind(numalink::ItemKind wanted) {
    for (const numalink::ItemEntry &entry : numalink::storeListItems())
        if (entry.kind == wanted) return entry.id;
    return numalink::noItem;
}

void showItems() {
    const struct {
        numalink::ItemKind kind;
        const char *name;
    } views[] = {{numalink::kind::program, "program"}, {numalink::kind::matrix, "matrix"},
                 {numalink::kind::list, "list"},       {numalink::kind::picture, "picture"},
                 {numalink::kind::backup, "backup"},   {numalink::kind::colourScreen, "screen"}};
    for (const auto &view : views) {
        const numalink::ItemId item = firstOfKind(view.kind);
        if (item == numalink::noItem || !numalink::selectItem(item)) continue;
        numalink::treeView->scrollToItem(numalink::treeEntryOf(item));
        takePicture(view.name);
    }
}

}  // namespace

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: numalink-tour SAMPLES PICTURES\n");
        return 2;
    }
    pictureFolder = QString::fromLocal8Bit(argv[2]);
    QDir().mkpath(pictureFolder);
    if (!numalink::startUp()) return 1;
    takePicture("start");
    QTimer answering;
    QObject::connect(&answering, &QTimer::timeout, answerDialogs);
    answering.start(100);
    QStringList samples;
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    for (const QString &file :
         folder.entryList({QStringLiteral("*.cat"), QStringLiteral("*.cas"), QStringLiteral("*.fxi")}))
        samples << folder.absoluteFilePath(file);
    numalink::importDropped(samples);
    takePicture("library");
    showItems();
    numalink::menuAt(1)->popup(numalink::mainWindow->mapToGlobal(QPoint(40, 24)));
    takePicture("menu");
    numalink::menuAt(1)->close();
    numalink::handleCommand(40055);
    takePicture("tree-hidden");
    numalink::handleCommand(40055);
    answering.stop();
    numalink::shutDown();
    numalink::tearDown();
    return 0;
}
