// What helps a new user: manual, reference, keys, tour, and a help button and tips wherever something is asked.
#include <qtestkeyboard.h>

#include <QListWidget>
#include <QProcess>
#include <QTextBrowser>
#include <QTreeWidget>
#include <filesystem>
#include <set>

#include "emulator/machine/keypad.h"
#include "emulator/machine/machine.h"
#include "language/reference.h"
#include "link/link_thread.h"
#include "link/transmit_queue.h"
#include "platform/program_folder.h"
#include "shell/app/first_start.h"
#include "shell/app/tour.h"
#include "shell/dialogs/bitmap_dialog.h"
#include "shell/dialogs/export_dialog.h"
#include "shell/dialogs/import_dialog.h"
#include "shell/dialogs/link_dialogs.h"
#include "shell/editor/program_document.h"
#include "shell/help/key_picture.h"
#include "shell/help/manual_pages.h"
#include "shell/help/manual_window.h"
#include "shell/help/reference_window.h"
#include "shell/run/emulator_keys.h"
#include "shell/run/emulator_window.h"
#include "shell/shell_fixture.h"

namespace numalink {

using Help = StartedShell;

QWidget *windowNamed(const char *name) { return mainWindow->findChild<QWidget *>(QString::fromLatin1(name)); }

QStringList pagesListed() {
    QStringList pages;
    const auto *list = windowNamed("manualWindow")->findChild<QListWidget *>();
    for (int i = 0; i < list->count(); i++) pages << list->item(i)->data(Qt::UserRole).toString();
    return pages;
}

// Each page of each language is there, and what it leads to and shows.
TEST_F(Help, ThePagesAreThereInEveryLanguageAndLeadNowhereElse) {
    const std::filesystem::path manual = dataPath("help");
    std::set<std::string> english;
    for (const auto &file : std::filesystem::directory_iterator(manual / "en")) english.insert(file.path().filename());
    EXPECT_EQ(english.size(), 12u);
    const QRegularExpression target(QStringLiteral("\\]\\(([^)]+)\\)"));
    for (const char *language : {"en", "de", "fr", "nl"}) {
        std::set<std::string> pages;
        for (const auto &file : std::filesystem::directory_iterator(manual / language)) {
            pages.insert(file.path().filename());
            QFile page(toQt(file.path()));
            ASSERT_TRUE(page.open(QFile::ReadOnly));
            const QString text = QString::fromUtf8(page.readAll());
            EXPECT_TRUE(text.startsWith(QLatin1String("# "))) << file.path();
            for (auto match = target.globalMatch(text); match.hasNext();) {
                const std::string name = match.next().captured(1).toStdString();
                EXPECT_TRUE(name == keyPictureName || english.contains(name) ||
                            std::filesystem::exists(manual / "images" / name))
                    << file.path() << " leads to " << name;
            }
        }
        EXPECT_EQ(pages, english) << language;
    }
    EXPECT_EQ(manualPages().size(), english.size() + 1) << "and what is new";
    EXPECT_TRUE(manualPicture(QStringLiteral("../en/keys.md")).isEmpty());
}

TEST_F(Help, TheManualIsSearchedAndFollowsItsLinks) {
    QTest::keyClick(mainWindow->windowHandle(), Qt::Key_F1);
    auto *browser = windowNamed("manualWindow")->findChild<QTextBrowser *>();
    EXPECT_EQ(browser->source().fileName(), QStringLiteral("first-steps.md"));
    EXPECT_TRUE(browser->toPlainText().contains(QStringLiteral("Ctrl+N")));
    auto *search = windowNamed("manualWindow")->findChild<QLineEdit *>();
    search->setText(QStringLiteral("breakpoint condition"));
    EXPECT_EQ(pagesListed().first(), QStringLiteral("debugging"));
    EXPECT_LE(pagesListed().size(), 2);
    EXPECT_EQ(browser->source().fileName(), QStringLiteral("debugging.md"));
    EXPECT_FALSE(browser->extraSelections().isEmpty());
    search->setText(QStringLiteral("how do I get my old programs from the calculator?"));
    EXPECT_EQ(browser->source().fileName(), QStringLiteral("communication.md")) << "a question finds its answer";
    search->setText(QStringLiteral("zzzz"));
    EXPECT_TRUE(pagesListed().isEmpty());
    QTest::keyClick(browser, Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(search->hasFocus() && search->selectedText() == QStringLiteral("zzzz"));
    showManual(QStringLiteral("settings"));
    EXPECT_EQ(pagesListed().size(), 13);
    EXPECT_TRUE(browser->extraSelections().isEmpty());
    browser->setSource(QUrl(QStringLiteral("communication.md")));
    const auto *list = windowNamed("manualWindow")->findChild<QListWidget *>();
    EXPECT_EQ(list->currentItem()->data(Qt::UserRole).toString(), QStringLiteral("communication"));
    browser->backward();
    EXPECT_EQ(list->currentItem()->data(Qt::UserRole).toString(), QStringLiteral("settings"));
}

// Each thing that is new is told in every language, and the page is about the newest version.
TEST_F(Help, WhatIsNewIsToldInEveryLanguage) {
    QFile table(toQt(dataPath("help/news.tsv")));
    ASSERT_TRUE(table.open(QFile::ReadOnly));
    QStringList lines = QString::fromUtf8(table.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    lines.removeIf([](const QString &line) { return line.startsWith(QLatin1Char('#')); });
    EXPECT_EQ(lines.takeFirst(), QStringLiteral("since\tpage\ten\tnl\tde\tfr"));
    ASSERT_GT(lines.size(), 5);
    std::set<QString> pages{QStringLiteral("-")};
    for (const ManualPage &page : manualPages()) pages.insert(page.name);
    for (const QString &line : lines) {
        const QStringList fields = line.split(QLatin1Char('\t'));
        ASSERT_EQ(fields.size(), 6) << line.toStdString();
        EXPECT_TRUE(pages.contains(fields[1])) << line.toStdString();
        EXPECT_EQ(QSet<QString>(fields.begin() + 2, fields.end()).size(), 4) << line.toStdString();
        EXPECT_FALSE(fields.contains(QString())) << line.toStdString();
    }
    // The version ahead of the newest section of the changelog that says anything.
    QStringList sections;
    for (const QString &section : allChanges().split(QStringLiteral("\n## [")).mid(1))
        if (section.contains(QLatin1String("\n- "))) sections << section.section(QLatin1Char(']'), 0, 0);
    ASSERT_GE(sections.size(), 2);
    EXPECT_EQ(lines.first().section(QLatin1Char('\t'), 0, 0), sections[1]);
    showWhatIsNew();
    auto *browser = windowNamed("manualWindow")->findChild<QTextBrowser *>();
    EXPECT_TRUE(browser->toPlainText().contains(textOf(Text::newsSince, {sections[1].toStdString()})));
    browser->setSource(QUrl(QString::fromLatin1(allChangesName)));
    EXPECT_TRUE(browser->toPlainText().contains(QStringLiteral("Changelog")));
}

bool isControl(const QWidget *widget) {
    if (!widget->isVisible() || widget->focusPolicy() == Qt::NoFocus) return false;
    if (widget == treeView || widget == programEdit) return false;  // whose entries and words have tips of their own
    const QWidget *parent = widget->parentWidget();
    const bool isPart =
        qobject_cast<const QComboBox *>(parent) || widget->objectName().startsWith(QLatin1String("qt_"));
    return !isPart && (qobject_cast<const QAbstractButton *>(widget) || qobject_cast<const QComboBox *>(widget) ||
                       qobject_cast<const QLineEdit *>(widget) || qobject_cast<const QAbstractItemView *>(widget) ||
                       qobject_cast<const QPlainTextEdit *>(widget));
}

// Looked at on each page; F1 opens the manual over the dialog, at a page that is there.
void lookAtDialog(QWidget *dialog, bool hasHelp = true) {
    const std::string name = dialog->objectName().toStdString();
    auto *pages = dialog->findChild<QTabWidget *>();
    int controls = 0;
    for (int page = 0; page < (pages == nullptr ? 1 : pages->count()); page++) {
        if (pages != nullptr) pages->setCurrentIndex(page);
        for (const QWidget *widget : dialog->findChildren<QWidget *>()) {
            if (!isControl(widget)) continue;
            controls++;
            EXPECT_FALSE(widget->toolTip().isEmpty())
                << name << ": " << widget->metaObject()->className() << " " << widget->objectName().toStdString() << " "
                << (qobject_cast<const QAbstractButton *>(widget)
                        ? qobject_cast<const QAbstractButton *>(widget)->text().toStdString()
                        : "");
        }
    }
    EXPECT_GT(controls, 1) << name;
    if (!hasHelp) return;
    bool pressed = false;
    for (QPushButton *button : dialog->findChildren<QPushButton *>()) {
        if (button->text() != textOf(Text::helpButton)) continue;
        button->click();
        pressed = true;
    }
    ASSERT_TRUE(pressed) << name << " has no help button";
    auto *manual = windowNamed("manualWindow");
    ASSERT_NE(manual, nullptr) << name;
    const QString page = manual->findChild<QTextBrowser *>()->source().fileName();
    EXPECT_TRUE(page != QLatin1String("first-steps.md") || name == "firstStart") << name << " has no page of its own";
    EXPECT_TRUE(manual->isEnabled() && manual->isVisible());
    manual->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(Help, EveryDialogHasAHelpButtonAndEveryControlATip) {
    addProgram("SAME", "A");
    const ItemId program = addProgram("ABC", "A");
    show(program);
    programEdit->moveCursor(QTextCursor::End);
    programEdit->insertPlainText(QStringLiteral("B"));  // and so it has versions
    handleCommand(CommandId::refresh);
    addProgram("ALSO", "A");
    add(kind::folder, "Folder");
    show(program);
    int seen = 0;
    const auto lookAt = [&](const std::function<void()> &ask) {
        whileOpen = [&seen] {
            seen++;
            lookAtDialog(QApplication::activeModalWidget());
        };
        ask();
        EXPECT_EQ(whileOpen, nullptr) << "nothing was asked";
    };
    for (const CommandId id :
         {CommandId::settings, CommandId::find, CommandId::password, CommandId::move, CommandId::compareItems,
          CommandId::versions, CommandId::duplicates, CommandId::report, CommandId::assignKeys})
        lookAt([id] { handleCommand(id); });
    ImportQuestion import{.itemNames = {"A"}, .folderName = "B"};
    lookAt([&] { askImport(import); });
    ExportQuestion exported;
    exported.items.push_back({.id = 1, .folder = "", .name = "A"});
    lookAt([&] { askExport(exported); });
    BitmapQuestion bitmap{
        .fileName = "a.bmp", .scaled = Surface(128, 64), .sharp = Surface(128, 64), .image = Surface(128, 64)};
    lookAt([&] { askBitmap(bitmap); });
    lookAt([] { askPictureSlot("A", 1); });
    lookAt([] { askItemExists("?"); });
    lookAt(askFirstStart);
    EXPECT_EQ(seen, 15);
    handleCommand(CommandId::showQueue);
    lookAtDialog(windowNamed("queueWindow"));
    handleCommand(CommandId::searchLibrary);
    lookAtDialog(windowNamed("searchWindow"));
    showReference();
    lookAtDialog(windowNamed("referenceWindow"));
    showManual({});
    lookAtDialog(windowNamed("manualWindow"), false);
    handleCommand(CommandId::filterTree);
    handleCommand(CommandId::debugStep);  // with all panes
    lookAtDialog(mainWindow, false);
}

TEST_F(Help, TheReferenceOpensAtTheFirstOfItsList) {
    showReference();
    auto *tree = windowNamed("referenceWindow")->findChild<QTreeWidget *>();
    ASSERT_NE(tree->currentItem(), nullptr);
    EXPECT_EQ(tree->currentItem(), tree->topLevelItem(0)->child(0));
    EXPECT_EQ(tree->topLevelItem(0)->text(0), textOf(Text::topicFlow));
    for (QTreeWidgetItemIterator at(tree); *at != nullptr; ++at) EXPECT_FALSE((*at)->text(0).trimmed().isEmpty());
    const auto *page = windowNamed("referenceWindow")->findChild<QTextBrowser *>();
    EXPECT_TRUE(page->toPlainText().startsWith(tree->currentItem()->text(0)));
    windowNamed("referenceWindow")->findChild<QLineEdit *>()->setText(QStringLiteral("no such token"));
    EXPECT_TRUE(page->toPlainText().isEmpty());
}

TEST_F(Help, TheReferenceIsSearchedAndPutsWordsIntoTheProgram) {
    const ItemId program = addProgram("ABC", "A");
    show(program);
    showReference();
    auto *tree = windowNamed("referenceWindow")->findChild<QTreeWidget *>();
    const auto countTokens = [&] {
        int count = 0;
        for (int i = 0; i < tree->topLevelItemCount(); i++) count += tree->topLevelItem(i)->childCount();
        return count;
    };
    EXPECT_EQ(countTokens(), static_cast<int>(referenceRows().size()));
    EXPECT_EQ(tree->currentItem()->text(0), QStringLiteral("A")) << "the token at the caret";
    const int topics = tree->topLevelItemCount();
    EXPECT_EQ(topics, static_cast<int>(referenceTopics().size()));
    windowNamed("referenceWindow")->findChild<QLineEdit *>()->setText(QStringLiteral("while condition"));
    EXPECT_GE(countTokens(), 2);
    EXPECT_LE(countTokens(), 6);
    for (QTreeWidgetItemIterator at(tree); *at != nullptr; ++at)
        if ((*at)->text(0) == QLatin1String("While")) tree->setCurrentItem(*at);
    const QString page = windowNamed("referenceWindow")->findChild<QTextBrowser *>()->toPlainText();
    for (const char *part : {"While", "WhileEnd", "\\While", "A=128"})
        EXPECT_TRUE(page.contains(QString::fromLatin1(part))) << part;
    programEdit->moveCursor(QTextCursor::Start);
    windowNamed("referenceWindow")->findChild<QPushButton *>(QStringLiteral("referenceInsert"))->click();
    EXPECT_TRUE(programEdit->toPlainText().startsWith(QStringLiteral("While ")));
    handleCommand(CommandId::refresh);
    StoredItem stored;
    ASSERT_TRUE(storeReadItem(program, stored));
    const Bytes image = {':', 0xF7, 0x08, 'A', 0xFF};
    EXPECT_TRUE(std::ranges::equal(ByteView(stored.data).first(image.size()), image));
}

// Every key of the calculator but those that no keyboard has; each name leads to one key.
TEST_F(Help, TheKeysOfTheKeyboardAreShownWhileControlIsHeld) {
    std::map<QString, int> keyOf;
    int named = 0;
    for (const KeyFace &face : keyFaces()) {
        const QStringList names = keyboardNamesOf(face.code);
        named += names.isEmpty() ? 0 : 1;
        for (const QString &name : names) EXPECT_TRUE(keyOf.emplace(name, face.code).second) << name.toStdString();
    }
    EXPECT_GE(named, 40);
    EXPECT_EQ(keyOf.at(QStringLiteral("↑")), 28);
    EXPECT_EQ(keyOf.at(QStringLiteral("F1")), 79);
    EXPECT_EQ(keyOf.at(QStringLiteral("7")), 74);
    show(addProgram("ABC",
                    "\xE2"
                    "1\r\xEC"
                    "1"));
    handleCommand(CommandId::emulate);
    ASSERT_TRUE(emulatorShown());
    ASSERT_TRUE(QTest::qWaitFor([] { return windowNamed("aboutBox") == nullptr; }, 10000)) << "its end moves the focus";
    mainWindow->activateWindow();
    emulatorWindow->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([] { return emulatorWindow->hasFocus(); }));
    const QImage before = emulatorWindow->grab().toImage();
    const auto control = [](QEvent::Type type) {
        QKeyEvent key(type, Qt::Key_Control, {});
        QApplication::sendEvent(emulatorWindow, &key);
    };
    control(QEvent::KeyPress);
    EXPECT_TRUE(QTest::qWaitFor([&] { return emulatorWindow->grab().toImage() != before; }, 3000));
    control(QEvent::KeyRelease);
    EXPECT_EQ(emulatorWindow->grab().toImage().copy(0, 80, 40, 40), before.copy(0, 80, 40, 40));
    handleCommand(CommandId::emulate);
}

QPushButton *tourButton(const char *name) {
    return windowNamed("tourPanel")->findChild<QPushButton *>(QString::fromLatin1(name));
}

// All of it by Next alone; then left at each step. The library, the settings and the list of libraries are as they
// were.
TEST_F(Help, TheTourDoesWhatItTellsAndLeavesTheLibraryAsItWas) {
    setSettingsFolder(folder.path);
    addProgram("MINE", "A");
    settingsSetValue(setting::comPort, setting::portOff);
    const auto itemsShown = [] {
        std::vector<std::pair<ItemId, std::string>> items;
        for (const ItemEntry &item : storeListItems())
            if (treeEntryOf(item.id) != nullptr) items.emplace_back(item.id, item.name);
        return items;
    };
    refreshTree();
    const auto library = itemsShown();
    EXPECT_EQ(library.size(), 1u);
    const auto itemIn = [](const char *inFolder, const char *name) {
        return storeFindItem(name, storeResolvePath(inFolder, false));
    };
    const auto isOver = [&] {
        return QTest::qWaitFor([&] { return !tourIsOn(); }, 5000) && libraryFolder() == folder.path;
    };
    for (std::size_t last = 0; last <= 10; last++) {
        SCOPED_TRACE(last);
        handleCommand(CommandId::tour);
        ASSERT_TRUE(tourIsOn());
        EXPECT_FALSE(storeItemExists("MINE", rootId));
        for (std::size_t step = 0; step < last; step++) {
            tourButton("tourNext")->click();
            switch (step) {
                case 1:
                    EXPECT_NE(itemIn("/Games", "SNAKE"), noItem);
                    break;
                case 3:
                    EXPECT_TRUE(emulatorRunning);
                    break;
                case 5:
                    EXPECT_EQ(programEdit->document()->blockCount(), 6);
                    break;
                case 7:
                    EXPECT_TRUE(QTest::qWaitFor([] { return transmitQueueCount() > 0; }, 15000));
                    EXPECT_TRUE(QTest::qWaitFor([] { return transmitQueueCount() == 0; }, 15000));
                    EXPECT_TRUE(
                        QTest::qWaitFor([] { return itemField->text() == textOf(Text::itemSent, {"HELLO"}); }, 5000));
                    break;
                case 8:
                    EXPECT_EQ(itemIn("/Games", "HELLO"), noItem);
                    break;
                case 9:
                    EXPECT_NE(itemIn("/Games", "HELLO"), noItem);
                    break;
                default:
                    break;
            }
        }
        last == 10 ? tourButton("tourNext")->click() : static_cast<QDialog *>(windowNamed("tourPanel"))->reject();
        ASSERT_TRUE(isOver());
        EXPECT_EQ(itemsShown(), library);
        EXPECT_EQ(settingsValue(setting::comPort), setting::portOff);
        EXPECT_EQ(linkPort() == LinkPort::opened, false);
    }
    EXPECT_FALSE(std::filesystem::exists(folder.path + "recent-libraries.txt"));
    const std::string stored = folder.read("storage.dat");
    handleCommand(CommandId::tour);
    endProgram();
    EXPECT_FALSE(tourIsOn());
    EXPECT_EQ(folder.read("storage.dat").size(), stored.size());
    EXPECT_TRUE(folder.read("storage.dat") == stored) << "the end of the program is an end of the tour";
    setSettingsFolder("");
}

}  // namespace numalink
