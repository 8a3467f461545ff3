// Every dialog, in every language: it fits a small screen, no word of it is cut, and each control has a name. CMake
// runs these again with one and a half pixels a pixel, and with texts of twice the size.
#include <map>

#include "emulator/machine/keypad.h"
#include "shell/app/first_start.h"
#include "shell/app/tour.h"
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
#include "shell/library/arrivals_dialog.h"
#include "shell/parts/scale.h"
#include "shell/parts/status_bar.h"
#include "shell/run/keypad_skin.h"
#include "shell/run/keys_dialog.h"
#include "shell/run/moments_dialog.h"
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
    question.filesLeft = 499;
    askImport(question);
}

void openArrivals() {
    ArrivalsQuestion question;
    for (const ArrivalState state :
         {ArrivalState::isNew, ArrivalState::same, ArrivalState::differs, ArrivalState::twice}) {
        question.rows.push_back({.id = 9,
                                 .there = 8,
                                 .kind = kind::program,
                                 .name = "PROGRAM",
                                 .where = "A folder's name",
                                 .freeName = "PROGRAM2",
                                 .state = state,
                                 .choice = ArrivalChoice::keepBoth});
    }
    question.notes = std::vector<std::string>(300, "file: what can't be read of it");
    askArrivals(question);
}

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
    {"arrivals", openArrivals},
    {"bitmap", openBitmap},
    {"exists", [] { askItemExists("Program SNAKE is on the calculator. Replace it?"); }},
    {"slot", [] { askPictureSlot("A picture", 3); }},
    {"find", findInProgram},
    {"password", changePassword},
    {"about", showAboutBox},
    {"report", showReport},
    {"keys", assignKeys},
    {"moments", showMoments},
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
            qobject_cast<QTabWidget *>(part) != nullptr ||  // its tabs have the focus
            (qobject_cast<QTabBar *>(part) != nullptr &&
             part->parentWidget() == mainWindow))  // of panes, by their names
            continue;
        EXPECT_FALSE(spoken(part).empty())
            << part->metaObject()->className() << " " << part->objectName().toStdString();
    }
}

void expectWhole(QWidget *window) {
    for (const QWidget *part : window->findChildren<QWidget *>()) {
        const auto *label = qobject_cast<const QLabel *>(part);
        const auto *button = qobject_cast<const QAbstractButton *>(part);
        const bool hasWords = (button != nullptr && !button->text().isEmpty()) || label != nullptr;
        const bool isSign = button != nullptr && button->text().size() == 1;  // without a frame of its own
        const bool giving = part->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored;
        if (!hasWords || !part->isVisible() || part->objectName().startsWith(QLatin1String("qt_")) || giving ||
            (label != nullptr && label->text().isEmpty()))
            continue;
        QSize needed = part->minimumSizeHint();
        if (isSign) needed = part->fontMetrics().tightBoundingRect(button->text()).size();
        if (label != nullptr && label->wordWrap()) needed = QSize(0, label->heightForWidth(label->width()));
        EXPECT_GE(part->height(), needed.height()) << spoken(part);
        EXPECT_GE(part->width(), needed.width()) << spoken(part);
    }
}

// What Qt would cut short instead: words of tabs, heads of columns, what is chosen in a box, the hint of an empty line.
void expectNothingElided(QWidget *window) {
    const auto widthOf = [](const QWidget *part, const QString &text) {
        return part->fontMetrics().horizontalAdvance(text.simplified());
    };
    for (QWidget *part : window->findChildren<QWidget *>()) {
        if (!part->isVisible()) continue;
        const std::string name = part->objectName().toStdString() + ", " + spoken(part);
        // Those of panes are as wide as their user has the panes.
        if (const auto *tabs = qobject_cast<const QTabBar *>(part); tabs && tabs->parentWidget() != mainWindow) {
            EXPECT_GE(tabs->width(), tabs->sizeHint().width()) << name;
        }
        if (const auto *head = qobject_cast<const QHeaderView *>(part); head && head->orientation() == Qt::Horizontal) {
            for (int i = 0; i < head->count(); i++) {
                const QString title = head->model()->headerData(i, Qt::Horizontal).toString();
                if (head->isSectionHidden(i)) continue;
                EXPECT_GE(head->sectionSize(i), widthOf(head, title)) << name << ": " << title.toStdString();
            }
        }
        if (const auto *box = qobject_cast<const QComboBox *>(part);
            box && box->sizeAdjustPolicy() != QComboBox::AdjustToMinimumContentsLengthWithIcon) {
            QStyleOptionComboBox option;
            option.initFrom(box);
            const QRect room =
                box->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, box);
            EXPECT_GE(room.width(), widthOf(box, box->currentText()))
                << name << ": " << box->currentText().toStdString();
        }
        // In a pane, which is as wide as its user wants it, the tip has the hint too.
        const bool isTold =
            !part->toolTip().isEmpty() && qobject_cast<const QDockWidget *>(part->parentWidget()->parentWidget());
        if (const auto *line = qobject_cast<const QLineEdit *>(part); line && !isTold) {
            EXPECT_GE(line->width() - 8, widthOf(line, line->placeholderText())) << name;
        }
    }
}

void look(QWidget *window, bool isDialog = true) {
    constexpr QSize smallScreen(1024, 600), frame(8, 40);
    const QSize needed = window->size() + frame;
    if (textScale() == 1 && isDialog) {
        EXPECT_EQ(needed, needed.boundedTo(smallScreen));
    }
    if (isDialog) {
        EXPECT_EQ(window->size(), window->size().boundedTo(window->screen()->size()));
    }
    expectNames(window);
    expectWhole(window);
    expectNothingElided(window);
}

void lookAtPages(QWidget *window, bool isDialog = true) {
    auto *pages = window->findChild<QTabWidget *>();
    for (int page = 0; page < (pages == nullptr ? 1 : pages->count()); page++) {
        if (pages != nullptr) pages->setCurrentIndex(page);
        QTest::qWait(1);
        const ::testing::ScopedTrace trace(__FILE__, __LINE__, "page " + std::to_string(page));
        look(window, isDialog);
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

// Those that stay open, those whose size is theirs to choose, and the window itself with all that it can show.
TEST_F(Dialogs, WindowsShowTheirWordsWholeInEveryLanguage) {
    std::vector<std::string> names;
    for (int i = 0; i < languageCount(); i++) names.push_back(languageRecord(i).name);
    for (const std::string &language : names) {
        const ::testing::ScopedTrace trace(__FILE__, __LINE__, language);
        endProgram();
        settingsSetValue(setting::language, language);
        ASSERT_TRUE(settingsSave() && startProgram());
        const ItemId program = addProgram("ABC", "A");
        addProgram("SAME", "A");
        add(kind::folder, "Folder");
        show(program);
        programEdit->moveCursor(QTextCursor::End);
        programEdit->insertPlainText(QStringLiteral("B"));
        handleCommand(CommandId::refresh);
        addProgram("ALSO", "A");
        show(program);
        int looked = 0;
        for (const CommandId id :
             {CommandId::compareItems, CommandId::versions, CommandId::duplicates, CommandId::move}) {
            whileOpen = [&] {
                looked++;
                lookAtPages(QApplication::activeModalWidget(), false);
            };
            handleCommand(id);
        }
        whileOpen = [&] {
            looked++;
            lookAtPages(QApplication::activeModalWidget());
        };
        askFirstStart();
        EXPECT_EQ(looked, 5);
        for (const auto &[id, name] :
             {std::pair(CommandId::searchLibrary, "searchWindow"), std::pair(CommandId::showQueue, "queueWindow"),
              std::pair(CommandId::languageReference, "referenceWindow"),
              std::pair(CommandId::manual, "manualWindow")}) {
            const ::testing::ScopedTrace which(__FILE__, __LINE__, name);
            handleCommand(id);
            auto *window = mainWindow->findChild<QWidget *>(QLatin1String(name));
            ASSERT_NE(window, nullptr);
            QTest::qWait(1);
            lookAtPages(window, false);
            window->close();
        }
        handleCommand(CommandId::filterTree);
        handleCommand(CommandId::debugStep);
        QTest::qWait(50);
        lookAtPages(mainWindow, false);
        handleCommand(CommandId::debugEnd);
        handleCommand(CommandId::tour);
        auto *panel = mainWindow->findChild<QDialog *>(QStringLiteral("tourPanel"));
        QTest::qWait(1);
        for (const Text words :
             {Text::tourWelcome, Text::tourImport, Text::tourLook, Text::tourRun, Text::tourPlay, Text::tourWrite,
              Text::tourRunOwn, Text::tourSend, Text::tourDelete, Text::tourUndo, Text::tourEnd}) {
            panel->findChild<QLabel *>(QStringLiteral("tourWords"))->setText(textOf(words));
            look(panel, false);
        }
        panel->reject();
        EXPECT_TRUE(QTest::qWaitFor([] { return !tourIsOn(); }, 5000));
    }
    settingsSetValue(setting::language, "English");
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
