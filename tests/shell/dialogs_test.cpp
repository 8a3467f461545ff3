// Every dialog, in every language: it fits a small screen, no word of it is cut, and each control has a name. CMake
// runs these a second time with one and a half pixels a pixel.
#include <map>

#include "emulator/machine/keypad.h"
#include "shell/dialogs/about_box.h"
#include "shell/dialogs/bitmap_dialog.h"
#include "shell/dialogs/export_dialog.h"
#include "shell/dialogs/import_dialog.h"
#include "shell/dialogs/link_dialogs.h"
#include "shell/dialogs/report_dialog.h"
#include "shell/dialogs/settings_dialog.h"
#include "shell/editor/find_dialog.h"
#include "shell/editor/password_dialog.h"
#include "shell/editor/statement_marks.h"
#include "shell/parts/scale.h"
#include "shell/parts/status_bar.h"
#include "shell/run/keypad_skin.h"
#include "shell/shell_fixture.h"
#include "shell/views/surface_view.h"
#include "telling/language_table.h"

namespace numalink {

namespace {

Surface noise() {
    Surface surface(128, 64);
    for (std::size_t i = 0; i < surface.dots.size(); i++)
        surface.dots[i] = i * 7 % 3 == 0 ? Color{0xFF000000} : Color{0xFFFFFFFF};
    return surface;
}

void openImport() {
    ImportQuestion question;
    question.itemNames = std::vector<std::string>(40, "PROGRAM");
    question.folderName = "A folder's name";
    askImport(question);
}

void openTaken() { askImportTaken({.count = 40, .names = "ABCDEFGH, BCDEFGHI, CDEFGHIJ, DEFGHIJK, ..."}); }

void openExport() {
    ExportQuestion question;
    question.items = {{.id = 1, .folder = "Games/Old", .name = "SNAKE"}};
    question.target = ExportTarget::cas;
    askExport(question);
}

void openBitmap() {
    BitmapQuestion question;
    question.fileName = "photo.png";
    question.scaled = question.sharp = question.image = noise();
    askBitmap(question);
}

constexpr std::pair<const char *, void (*)()> dialogs[] = {
    {"settings", changeSettings},
    {"port", choosePort},
    {"export", openExport},
    {"import", openImport},
    {"names taken", openTaken},
    {"bitmap", openBitmap},
    {"exists", [] { askItemExists("Program SNAKE is on the calculator. Replace it?"); }},
    {"slot", [] { askPictureSlot("A picture", 3); }},
    {"find", findInProgram},
    {"password", changePassword},
    {"about", showAboutBox},
    {"report", showReport},
};

std::string spoken(const QWidget *part) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): Qt asks for it so
    const QAccessibleInterface *access = QAccessible::queryAccessibleInterface(const_cast<QWidget *>(part));
    return access == nullptr ? "" : access->text(QAccessible::Name).toStdString();
}

void expectNames(QWidget *window) {
    for (QWidget *part : window->findChildren<QWidget *>()) {
        if (!part->isVisible() || part->focusPolicy() == Qt::NoFocus ||
            part->objectName().startsWith(QLatin1String("qt_")) ||
            qobject_cast<QTabWidget *>(part) != nullptr)  // its tabs have the focus
            continue;
        EXPECT_FALSE(spoken(part).empty())
            << part->metaObject()->className() << " " << part->objectName().toStdString();
    }
}

void expectWhole(QWidget *window) {
    for (const QWidget *part : window->findChildren<QWidget *>()) {
        const auto *label = qobject_cast<const QLabel *>(part);
        const bool hasWords = qobject_cast<const QAbstractButton *>(part) != nullptr || label != nullptr;
        const bool giving = part->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored;
        if (!hasWords || !part->isVisible() || giving || (label != nullptr && label->text().isEmpty())) continue;
        const int needed = label != nullptr && label->wordWrap() ? label->heightForWidth(label->width())
                                                                 : part->minimumSizeHint().height();
        EXPECT_GE(part->height(), needed) << spoken(part);
        if (label == nullptr || !label->wordWrap()) {
            EXPECT_GE(part->width(), part->minimumSizeHint().width()) << spoken(part);
        }
    }
}

void look(QWidget *window) {
    constexpr QSize smallScreen(1024, 600), frame(8, 40);
    const QSize needed = window->size() + frame;
    if (textScale() == 1) {
        EXPECT_EQ(needed, needed.boundedTo(smallScreen));
    }
    EXPECT_EQ(window->size(), window->size().boundedTo(window->screen()->size()));
    expectNames(window);
    expectWhole(window);
}

void lookAtPages(QWidget *window) {
    auto *pages = window->findChild<QTabWidget *>();
    for (int page = 0; page < (pages == nullptr ? 1 : pages->count()); page++) {
        if (pages != nullptr) pages->setCurrentIndex(page);
        QTest::qWait(1);
        const ::testing::ScopedTrace trace(__FILE__, __LINE__, "page " + std::to_string(page));
        look(window);
    }
}

}  // namespace

using Dialogs = StartedShell;

TEST_F(Dialogs, FitASmallScreenWithNoWordCutAndEachControlNamed) {
    show(addProgram("ABC", "A"));
    int looked = 0;
    for (int language = 0; language < languageCount(); language++) {
        languageLoad(languageRecord(language).name, "English");
        for (const auto &[name, open] : dialogs) {
            const ::testing::ScopedTrace trace(__FILE__, __LINE__, languageRecord(language).name + ", " + name);
            whileOpen = [&] {
                answerBoxes = false;  // it stays open meanwhile
                lookAtPages(QApplication::activeModalWidget());
                answerBoxes = true;
                looked++;
            };
            open();
            EXPECT_EQ(whileOpen, nullptr) << "it didn't open";
        }
    }
    EXPECT_EQ(looked, static_cast<int>(std::size(dialogs)) * languageCount());
    languageLoad("English", "English");
}

TEST_F(Dialogs, WindowAndPanesComeBackAsTheyWereLeft) {
    handleCommand(CommandId::besideProgram);
    mainWindow->setGeometry(20, 30, 700, 520);
    QTest::qWait(1);
    auto *pane = mainWindow->findChild<QDockWidget *>(QStringLiteral("variablesDock"));
    ASSERT_TRUE(pane->isVisible());
    const int before = pane->width();
    mainWindow->resizeDocks({pane}, {before + 37}, Qt::Horizontal);
    QTest::qWait(1);
    const QSize paneThen = pane->size();
    const QRect then = mainWindow->geometry();
    endProgram();
    ASSERT_TRUE(startProgram());
    EXPECT_EQ(mainWindow->geometry(), then);
    pane = mainWindow->findChild<QDockWidget *>(QStringLiteral("variablesDock"));
    EXPECT_EQ(pane->size(), paneThen);
    // A screen that is gone.
    mainWindow->move(5000, 5000);
    endProgram();
    ASSERT_TRUE(startProgram());
    EXPECT_TRUE(mainWindow->screen()->geometry().intersects(mainWindow->geometry()));
    endProgram();
    settingsSetValue(setting::windowPlace, "no such place");
    settingsSetValue(setting::paneSizes, "V99999999999x1W-3xP");
    ASSERT_TRUE(settingsSave());
    EXPECT_TRUE(startProgram() && mainWindow->isVisible());
}

}  // namespace numalink
