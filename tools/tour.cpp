// numalink-tour SAMPLES PICTURES: starts the program with the library that lies beside it, imports the item files of
// SAMPLES with every question answered as it stands, shows each view, exchanges items with a virtual calculator, and
// leaves pictures of the window in PICTURES; those of the manual, which data/help/images keeps, in its folder "help",
// and those that docs/images keeps in its folder "docs": best under a window manager, which frames what is open.
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QMainWindow>
#include <QMenu>
#include <QPlainTextEdit>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <atomic>
#include <cstdio>
#include <thread>

#include "doc_pictures.h"
#include "link/link_thread.h"
#include "link/transmit_queue.h"
#include "settings/settings_store.h"
#include "shell/app/start_up.h"
#include "shell/commands/command_handler.h"
#include "shell/commands/file_commands.h"
#include "shell/commands/menus.h"
#include "shell/dialogs/about_box.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/program_colors.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/selection.h"
#include "shell/views/surface_view.h"
#include "store/item_store.h"
#include "virtual_calculator/calculator_mover.h"
#include "virtual_calculator/pseudo_terminal.h"

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

// A picture of the manual: as wide as its text lets it be.
void takeHelpPicture(const char *name, const QPixmap &picture) {
    constexpr int widest = 480;  // pixels
    QDir(pictureFolder).mkpath(QStringLiteral("help"));
    const QString file = QStringLiteral("%1/help/%2.png").arg(pictureFolder, QString::fromLatin1(name));
    QImage image = picture.toImage();
    if (image.width() > widest) image = image.scaledToWidth(widest, Qt::SmoothTransformation);
    image.convertToFormat(QImage::Format_RGB32).save(file);
    std::printf("%s\n", qPrintable(file));
}

// The game that the manual shows, as it is after a moment.
void showRun(numalink::ItemId game) {
    if (!numalink::selectItem(game)) return;
    QTest::qWait(150);
    takeHelpPicture("window", numalink::mainWindow->grab());
    numalink::handleCommand(numalink::CommandId::emulate);
    QTest::qWait(2500);
    takePicture("run");
    takeHelpPicture("run", numalink::mainWindow->grab());
    numalink::handleCommand(numalink::CommandId::emulate);
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
        if (name == QLatin1String("importDialog")) takeHelpPicture("import", dialog->grab());
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
                 {numalink::kind::backup, "backup"},   {numalink::kind::colorScreen, "screen"}};
    for (const auto &view : views) {
        const numalink::ItemId item = firstOfKind(view.kind);
        if (item == numalink::noItem || !numalink::selectItem(item)) continue;
        numalink::treeView->scrollToItem(numalink::treeEntryOf(item));
        takePicture(view.name);
    }
}

struct VirtualCalculator {
    VirtualCalculator() = default;
    ~VirtualCalculator() { rest(); }
    VirtualCalculator(const VirtualCalculator &) = delete;
    VirtualCalculator &operator=(const VirtualCalculator &) = delete;

    // Until the conversation is over, on a thread of its own, at the speed of a real line.
    void converse() {
        rest();
        if (!own.toSend.empty()) startSending(own);
        stop = false;
        moving.stop = &stop;
        hand = std::thread([this] { moveCalculator(own, terminal.master, moving); });
    }
    void rest() {
        stop = true;
        if (hand.joinable()) hand.join();
        own.state = calculator::State::rest;
    }

    numalink::PseudoTerminal terminal;
    calculator::Calculator own;
    calculator::Moving moving{.byteMicroseconds = calculator::lineByteMicroseconds(9600), .patience = patience};
    std::atomic<bool> stop = false;
    std::thread hand;
    static constexpr int patience = 20000;  // milliseconds
};

// A program comes from a calculator, and a picture and the games go to it. False when either didn't arrive.
bool exchangeItems() {
    VirtualCalculator other;
    numalink::settingsSetValue(numalink::setting::comPort, other.terminal.path);
    numalink::settingsSetValue(numalink::setting::linkType, "cfx");
    numalink::startLinkThread();
    const std::string text = "\"HELLO FROM THE\"\r\"CALCULATOR\"";
    other.own.toSend.push_back(calculator::program("HELLO", {text.begin(), text.end()}));
    other.converse();
    const auto received = [] { return numalink::storeFindItem("HELLO", numalink::storeStandardFolder(1001)); };
    const auto shown = [&] { return numalink::treeEntryOf(received()) != nullptr; };
    if (!QTest::qWaitFor(shown, VirtualCalculator::patience)) return false;
    numalink::selectItem(received());
    numalink::treeView->scrollToItem(numalink::treeEntryOf(received()));
    takePicture("received");
    const numalink::ItemId picture = firstOfKind(numalink::kind::picture);
    if (!numalink::queueItem(picture) || !numalink::queueItem(received())) return false;
    for (const numalink::ItemEntry &entry : numalink::storeListItems())
        if (entry.kind == numalink::kind::matrix) numalink::queueItem(entry.id);
    const std::size_t count = numalink::transmitQueueCount();
    numalink::selectItem(picture);
    numalink::commandAction(numalink::CommandId::showQueue)->trigger();
    auto *queueWindow = numalink::mainWindow->findChild<QDialog *>(QStringLiteral("queueWindow"));
    queueWindow->move(numalink::mainWindow->pos() + QPoint(226, 182));  // beside tree and picture
    if (!QTest::qWaitFor([] { return !numalink::linkConversationRuns(); }, VirtualCalculator::patience)) return false;
    other.converse();
    numalink::handleCommand(numalink::CommandId::transmitQueue);
    QTest::qWait(1500);
    takePicture("transmission");
    const QRect window = numalink::mainWindow->geometry();
    const QPixmap onScreen =
        QGuiApplication::primaryScreen()->grabWindow(0, window.x(), window.y(), window.width(), window.height());
    takeHelpPicture("send", onScreen);
    QDir(pictureFolder).mkpath(QStringLiteral("docs"));
    onScreen.save(pictureFolder + QStringLiteral("/docs/link.png"));
    const bool sent = QTest::qWaitFor([] { return numalink::transmitQueueCount() == 0; }, VirtualCalculator::patience);
    queueWindow->close();
    other.rest();
    return sent && other.own.received.size() == count;
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
    QTest::qWait(numalink::splashMilliseconds);
    QTimer answering;
    QObject::connect(&answering, &QTimer::timeout, answerDialogs);
    answering.start(100);
    std::vector<std::string> samples;
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    for (const QString &file :
         folder.entryList({QStringLiteral("*.cat"), QStringLiteral("*.cas"), QStringLiteral("*.fxi")}))
        samples.push_back(QFile::encodeName(folder.absoluteFilePath(file)).toStdString());
    numalink::importDropped(samples);
    takePicture("library");
    const QColor ground = numalink::programEdit->palette().color(QPalette::Base);
    const numalink::ColorScheme &scheme = ground.lightness() < 128 ? numalink::darkScheme : numalink::lightScheme;
    numalink::settingsSetInt(numalink::setting::syntaxHighlighting, 1);
    for (std::size_t i = 0; i < scheme.size(); i++)
        numalink::settingsSetColour(numalink::programColorKeys[i], numalink::settingColor(QColor::fromRgb(scheme[i])));
    showItems();
    for (const numalink::ItemEntry &entry : numalink::storeListItems())
        if (entry.kind == numalink::kind::program && entry.name == "SNAKE") showRun(entry.id);
    numalink::setSurfaceZoom(2);
    numalink::selectItem(firstOfKind(numalink::kind::picture));
    takePicture("zoom");
    numalink::setSurfaceZoom(1);
    numalink::selectItem(firstOfKind(numalink::kind::program));
    using enum numalink::CommandId;
    for (const numalink::CommandId dialog : {settings, find, password}) numalink::handleCommand(dialog);
    numalink::menuAt(numalink::MenuPosition::item)->popup(numalink::mainWindow->mapToGlobal(QPoint(40, 24)));
    takePicture("menu");
    numalink::menuAt(numalink::MenuPosition::item)->close();
    numalink::handleCommand(numalink::CommandId::hideTree);
    takePicture("tree-hidden");
    numalink::handleCommand(numalink::CommandId::hideTree);
    const bool exchanged = exchangeItems();
    if (!exchanged) std::fprintf(stderr, "The virtual calculator and the program did not understand each other.\n");
    answering.stop();
    const bool taken = takeDocPictures(pictureFolder + QStringLiteral("/docs"));
    numalink::shutDown();
    numalink::tearDown();
    return exchanged && taken ? 0 : 1;
}
