#include "doc_pictures.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QLinearGradient>
#include <QListWidget>
#include <QMainWindow>
#include <QMessageBox>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTimer>
#include <QTreeWidget>
#include <functional>

#include "link/link_thread.h"
#include "settings/settings_store.h"
#include "shell/app/library_change.h"
#include "shell/app/start_up.h"
#include "shell/commands/command_handler.h"
#include "shell/commands/file_commands.h"
#include "shell/dialogs/about_box.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/program_colors.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/status_bar.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/selection.h"
#include "shell/views/surface_view.h"
#include "store/item_store.h"

namespace {

using namespace numalink;
using enum CommandId;

struct DocPictures {
    QString folder;
    int missing = 0;
    QTemporaryDir library;  // open until the program ends
};
DocPictures state;

constexpr QSize smallWindow(640, 430), wideWindow(780, 520);
constexpr int settling = 300;  // milliseconds until all is painted

void keep(const char *name, QWidget *widget) {
    QTest::qWait(settling);
    const QString file = QStringLiteral("%1/%2.png").arg(state.folder, QString::fromLatin1(name));
    const bool kept = widget->grab().toImage().convertToFormat(QImage::Format_RGB32).save(file);
    state.missing += kept ? 0 : 1;
    std::printf("%s%s\n", qPrintable(file), kept ? "" : ": not written");
}

using Act = std::function<void(QDialog &)>;

// While the call lasts, what is done with the dialog of that name as soon as it is open.
struct WhenOpen {
    WhenOpen(const char *name, const Act &act) {
        QObject::connect(&timer, &QTimer::timeout, &timer, [this, name = QString::fromLatin1(name), act] {
            auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            if (auto *box = qobject_cast<QMessageBox *>(dialog)) {
                std::printf("a box: %s\n", qPrintable(box->text()));
                box->reject();
                return;
            }
            if (dialog == nullptr || dialog->objectName() != name) return;
            timer.stop();
            seen = true;
            act(*dialog);
            dialog->reject();
        });
        timer.start(settling);
    }
    ~WhenOpen() {
        if (!seen) std::printf("a dialog didn't open\n");
        state.missing += seen ? 0 : 1;
    }
    WhenOpen(const WhenOpen &) = delete;
    WhenOpen &operator=(const WhenOpen &) = delete;

    QTimer timer;
    bool seen = false;
};

void push(QDialog &dialog, Text text) {
    for (QAbstractButton *button : dialog.findChildren<QAbstractButton *>())
        if (button->text() == textOf(text)) button->click();
}

ItemId named(const char *name) {
    for (const ItemEntry &entry : storeListItems())
        if (entry.name == name && treeEntryOf(entry.id) != nullptr) return entry.id;
    return noItem;
}

void select(const char *name) {
    if (!selectItem(named(name))) return;
    showInTree(named(name));
    QTest::qWait(settling);
}

void sizeWindow(const QSize &size) {
    mainWindow->resize(size);
    QTest::qWait(settling);
}

void takeViews() {
    sizeWindow(smallWindow);
    select("SNAKE");
    keep("main-window", mainWindow);
    handleCommand(emulate);
    QTest::qWait(2500);
    keep("emulator", mainWindow);
    handleCommand(emulate);
    setSurfaceZoom(3);
    select("Picture1");
    keep("picture", mainWindow);
    sizeWindow(wideWindow);
    setSurfaceZoom(4);
    select("Mat S");
    QTest::keyClick(treeView, Qt::Key_Return);
    QWidget *matrix = containerWindow->findChild<QScrollArea *>();
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Down}) QTest::keyClick(matrix, key);
    keep("matrix", mainWindow);
    setSurfaceZoom(1);
    sizeWindow(smallWindow);
}

// A house on a hill under an evening sky.
QImage landscape() {
    QImage photo(640, 320, QImage::Format_RGB32);
    QPainter painter(&photo);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, 240);
    sky.setColorAt(0, QColor(60, 110, 220));
    sky.setColorAt(1, QColor(210, 225, 235));
    painter.fillRect(photo.rect(), sky);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(250, 160, 40));
    painter.drawEllipse(QPoint(480, 80), 42, 42);
    painter.setBrush(QColor(110, 160, 110));
    painter.drawEllipse(QPoint(520, 330), 320, 150);
    painter.setBrush(QColor(50, 130, 50));
    painter.drawEllipse(QPoint(140, 340), 330, 150);
    painter.setBrush(QColor(235, 225, 205));
    painter.drawRect(130, 150, 90, 60);
    painter.setBrush(QColor(170, 60, 40));
    painter.drawPolygon(QPolygon({{115, 150}, {175, 105}, {235, 150}}));
    painter.setBrush(QColor(90, 60, 40));
    painter.drawRect(165, 175, 22, 35);
    return photo;
}

void takePhoto() {
    const QString file = state.folder + QStringLiteral("/Landscape.png");
    landscape().save(file);
    const WhenOpen bitmap("bitmapDialog", [](QDialog &dialog) {
        keep("bitmap", &dialog);
        push(dialog, Text::rasterSharp);
        keep("bitmap-sharp", &dialog);
    });
    importDropped({QFile::encodeName(file).toStdString()});
    QTest::qWait(settling);
    QFile::remove(file);
}

void takeExport() {
    const WhenOpen exporting("exportDialog", [](QDialog &dialog) {
        auto *list = dialog.findChild<QListWidget *>(QStringLiteral("availableItems"));
        for (const char *name : {"(Games) CATCH", "(Games) GUESS", "(Games) MASTER", "(Games) MINES"})
            for (QListWidgetItem *row : list->findItems(QString::fromLatin1(name), Qt::MatchExactly))
                Q_EMIT list->itemDoubleClicked((list->setCurrentItem(row), row));
        keep("export", &dialog);
    });
    handleCommand(save);
}

// REACT with two changes, and what it was.
void takeCompare() {
    select("REACT");
    QTextCursor cursor(programEdit->document()->findBlockByNumber(7));
    programEdit->setTextCursor(cursor);
    QTest::keyClicks(programEdit, QStringLiteral("ClrText"));
    QTest::keyClick(programEdit, Qt::Key_Return);
    programEdit->moveCursor(QTextCursor::End);
    QTest::keyClick(programEdit, Qt::Key_Return);
    QTest::keyClicks(programEdit, QStringLiteral("\"AGAIN?\""));
    select("SNAKE");
    select("REACT");
    const WhenOpen comparing("compareDialog", [](QDialog &dialog) { keep("compare", &dialog); });
    const WhenOpen forms("versionsDialog", [](QDialog &dialog) {
        auto *list = dialog.findChild<QTreeWidget *>();
        list->clearSelection();
        list->setCurrentItem(list->topLevelItem(1));
        push(dialog, Text::versionsCompare);
    });
    handleCommand(versions);
}

void takeSearch() {
    handleCommand(searchLibrary);
    auto *window = mainWindow->findChild<QDialog *>(QStringLiteral("searchWindow"));
    const QList<QLineEdit *> fields = window->findChildren<QLineEdit *>();
    fields.at(0)->setText(QStringLiteral("Locate X"));
    fields.at(1)->setText(QStringLiteral("Locate X+1"));
    push(*window, Text::searchStart);
    QTest::qWait(1000);
    keep("search", window);
    window->close();
}

bool startAnew(const char *language) {
    shutDown();
    tearDown();
    settingsSetValue(setting::language, language);
    settingsSave();
    if (!startUp()) return false;
    QTest::qWait(splashMilliseconds + settling);
    return true;
}

void useColors(const ColorScheme &scheme) {
    for (std::size_t i = 0; i < scheme.size(); i++)
        settingsSetColour(programColorKeys[i], settingColor(QColor::fromRgb(scheme[i])));
    settingsSetInt(setting::syntaxHighlighting, 1);
    settingsSave();
}

void takeSettings() {
    const WhenOpen open("settingsDialog", [](QDialog &dialog) {
        auto *pages = dialog.findChild<QTabWidget *>();
        pages->setCurrentIndex(pages->count() - 1);
        keep("settings-german", &dialog);
    });
    handleCommand(settings);
}

QPalette darkPalette() {
    QPalette dark;
    const QColor ground(42, 46, 50), base(27, 30, 32), text(252, 252, 252), off(110, 115, 118);
    for (const auto role : {QPalette::Window, QPalette::Button, QPalette::ToolTipBase}) dark.setColor(role, ground);
    for (const auto role : {QPalette::Base, QPalette::AlternateBase}) dark.setColor(role, base);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText,
                            QPalette::BrightText, QPalette::HighlightedText})
        dark.setColor(role, text);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        dark.setColor(QPalette::Disabled, role, off);
    dark.setColor(QPalette::PlaceholderText, off);
    dark.setColor(QPalette::Highlight, QColor(38, 118, 170));
    dark.setColor(QPalette::Link, QColor(100, 180, 240));
    return dark;
}

}  // namespace

bool takeDocPictures(const QString &folder) {
    state.folder = folder;
    QDir().mkpath(folder);
    settingsSetValue(setting::comPort, setting::portOff);
    startLinkThread();
    QTest::qWait(settling);
    showStatus(linkField, {}, false);
    if (!changeLibraryTo(state.library.path().toStdString() + "/", true, ListLibrary::never)) return false;
    importSamples();
    takeViews();
    takePhoto();
    takeExport();
    takeCompare();
    takeSearch();
    useColors(lightScheme);
    if (!startAnew("Deutsch")) return false;
    takeSettings();
    const QPalette light = QApplication::palette();
    QApplication::setPalette(darkPalette());
    useColors(darkScheme);
    if (!startAnew("English")) return false;
    sizeWindow(smallWindow);
    select("SNAKE");
    keep("program-dark", mainWindow);
    QApplication::setPalette(light);
    useColors(lightScheme);
    return state.missing == 0;
}
