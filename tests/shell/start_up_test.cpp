// The start, with whatever is missing or held, and each way to the end.
#include <QProcess>
#include <QTabWidget>
#include <QTimer>
#include <csignal>
#include <filesystem>
#include <map>

#include "link/link_thread.h"
#include "link/transmit_queue.h"
#include "platform/program_folder.h"
#include "shell/app/command_line.h"
#include "shell/app/single_copy.h"
#include "shell/app/tray.h"
#include "shell/commands/library_commands.h"
#include "shell/editor/symbols_window.h"
#include "shell/parts/status_bar.h"
#include "shell/shell_fixture.h"
#include "shell/views/surface_view.h"
#include "store/undo/undo.h"
#include "telling/language_table.h"

namespace numalink {

using StartUp = ShellTest;

TEST_F(StartUp, ShowsTheWindowWithWordingToolbarAndTree) {
    ASSERT_TRUE(startProgram());
    EXPECT_TRUE(mainWindow->isVisible());
    EXPECT_EQ(mainWindow->size(), QSize(640, 430));
    EXPECT_TRUE(shown.empty()) << shown.front();
    EXPECT_EQ(toolbar->actions().size(), 9);
    for (const Command &row : commandTable()) {
        const QString text = commandAction(row.id)->text();
        EXPECT_FALSE(text.isEmpty() || text.contains(QLatin1Char('<'))) << static_cast<int>(row.id);
    }
    const auto isShown = [] { return mainWindow->findChild<QWidget *>(QStringLiteral("aboutBox")) != nullptr; };
    EXPECT_TRUE(isShown());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isShown(); }, 10000)) << "it goes by itself";
}

TEST_F(StartUp, TheLinksWordsStayBesideWhatACommandDoes) {
    ASSERT_TRUE(startProgram());
    const auto *tip = mainWindow->findChild<QLabel *>(QStringLiteral("tipField"));
    QAction *open = commandAction(CommandId::open);
    open->showStatusText(mainWindow);
    QTest::qWait(20);
    EXPECT_GT(tip->width(), statusBar->width() * 3 / 4) << "with no words of the link it has their room";
    showStatus(linkField, QStringLiteral("Ready for a calculator"), false);
    showStatus(itemField, QStringLiteral("6 bytes"), false);
    open->showStatusText(mainWindow);
    QTest::qWait(20);
    EXPECT_EQ(tip->text(), textOf(Text::tipOpen));
    EXPECT_TRUE(tip->isVisible() && linkField->isVisible() && !linkField->visibleRegion().isEmpty());
    EXPECT_GE(linkField->width(), linkField->fontMetrics().horizontalAdvance(linkField->text()));
    QStatusTipEvent over{QString()};
    QApplication::sendEvent(mainWindow, &over);
    EXPECT_TRUE(itemField->isVisible() && !tip->isVisible());
}

// No colours, no language; and no port, of which nothing is said until one is needed.
TEST_F(StartUp, AFirstUseHasColorsAndLeadsToTheSettings) {
    ASSERT_TRUE(startProgram());
    EXPECT_EQ(settingsInt(setting::syntaxHighlighting), 1);
    EXPECT_NE(settingsColour(setting::colorText), 0u);
    EXPECT_EQ(settingsValue(setting::comPort), setting::portOff);
    ASSERT_TRUE(QTest::qWaitFor([] { return linkPort() == LinkPort::refused; }, 3000));
    EXPECT_TRUE(linkField->text().isEmpty() && shown.empty()) << "nobody has asked for a port";
    const ItemId program = addProgram("ABC", "A");
    show(program);
    handleCommand(CommandId::transmit);
    const auto leadsThere = [] {
        return linkField->text().startsWith(QLatin1String("<a href=\"settings\"")) &&
               linkField->text().contains(textOf(Text::portNone));
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return leadsThere() && shown.size() == 1; }, 3000));
    EXPECT_FALSE(progressBar->isVisible());
    answer(wording(Text::ok));
    QString page;
    whileOpen = [&] {
        const auto *pages = QApplication::activeModalWidget()->findChild<QTabWidget *>();
        page = pages->tabText(pages->currentIndex());
    };
    shown.clear();
    Q_EMIT linkField->linkActivated(QStringLiteral("settings"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return answers.empty(); }, 3000));
    EXPECT_EQ(shown, std::vector<std::string>{wording(Text::settingsTitle)})
        << "the language stays: no word about a new one";
    EXPECT_EQ(page, textOf(Text::settingsCommunication));
    userInterface.statusText(StatusPart::item, Text::none, "<b>A</b>");
    EXPECT_EQ(itemField->toolTip(), QStringLiteral("&lt;b&gt;A&lt;/b&gt;"));
    setSymbolsWanted(false);
    setSurfaceZoom(3);
    endProgram();

    settingsSetValue(setting::language, "Deutsch");
    settingsSetInt(setting::syntaxHighlighting, 0);
    ASSERT_TRUE(settingsSave());
    ASSERT_TRUE(startProgram());
    EXPECT_EQ(settingsInt(setting::syntaxHighlighting), 0) << "what the user has set stays";
    EXPECT_TRUE(symbolsWanted() && surfaceZoom() == 1) << "the run before is forgotten";
    EXPECT_EQ(QCoreApplication::translate("QFileDialog", "Create New Folder"),
              QStringLiteral("Neuen Ordner erstellen"));
}

void choose(const char *name, const char *data) {
    auto *box = QApplication::activeModalWidget()->findChild<QComboBox *>(QString::fromLatin1(name));
    box->setCurrentIndex(box->findData(QString::fromLatin1(data)));
}

// Asked once, where there is nothing yet; what was chosen is done at once.
TEST_F(StartUp, ANewUserIsAskedOnceWhatToBeginWith) {
    setSettingsFolder(folder.path);
    const auto start = [this] {
        shown.clear();
        ASSERT_TRUE(startUp({.asksWhenNew = true}));
        running = true;
        QTest::qWait(100);
    };
    whileOpen = [] { choose("family", "ALGEBRA"); };
    answer(wording(Text::ok));
    start();
    const std::string title = wording(Text::firstTitle);
    EXPECT_EQ(shown, std::vector<std::string>{title}) << "and no word about the samples";
    EXPECT_EQ(settingsValue(setting::linkType), "ALGEBRA");
    EXPECT_EQ(settingsValue(setting::comPort), setting::portAutomatic);
    for (const auto &[folderName, item] : {std::pair("/Games", "SNAKE"), {"/Maths", "GAUSS"}, {"/Plots", "ROSE"}})
        EXPECT_TRUE(storeItemExists(item, storeResolvePath(folderName, false))) << item;
    EXPECT_TRUE(programEdit->isVisible() && programEdit->toPlainText().contains(QStringLiteral("Getkey")));
    endProgram();
    start();
    EXPECT_TRUE(shown.empty()) << "never again";
    EXPECT_EQ(settingsValue(setting::comPort), setting::portAutomatic);
    endProgram();
    for (const char *file : {"storage.dat", "settings.xml", "backups"}) std::filesystem::remove_all(folder.path + file);
    folder.write("storage.dat", "");
    start();
    EXPECT_EQ(shown, std::vector<std::string>{title});
    EXPECT_EQ(settingsValue(setting::comPort), setting::portOff);
    EXPECT_EQ(storeResolvePath("/Games", false), noItem);
    endProgram();
    for (const char *file : {"storage.dat", "backups"}) std::filesystem::remove_all(folder.path + file);
    start();
    EXPECT_TRUE(shown.empty()) << "who has settings isn't new";
    EXPECT_EQ(settingsValue(setting::comPort), setting::portOff) << "and still has no port";
    endProgram();
    std::filesystem::remove(folder.path + "settings.xml");
    start();
    EXPECT_TRUE(shown.empty()) << "nor is who has a library";
    EXPECT_EQ(settingsValue(setting::comPort), setting::portOff) << "but a port is none that was chosen";
    endProgram();
    setSettingsFolder("");
}

TEST_F(StartUp, WithoutDataFilesTellsOfTheFontsAndWorks) {
    const EmptyProgramFolder empty;
    tokenTableSet({});
    setLibraryFolder(folder.path);
    ASSERT_TRUE(startProgram());
    EXPECT_EQ(shown, (std::vector<std::string>{"Cannot find large font file", "Cannot find small font file"}));
    EXPECT_EQ(commandAction(CommandId::open)->text(), QStringLiteral("<unknown string>"));
    EXPECT_EQ(menuAt(MenuPosition::file)->title(), QStringLiteral("<unknown string>"));
    const ItemId item = addProgram("ABC", "A");
    show(item);
    EXPECT_EQ(programEdit->toPlainText(), QStringLiteral("<65> "));
    endProgram();
}

TEST_F(StartUp, EndsWithTheBoxesWhenTheLibraryIsNoLibrary) {
    folder.write("storage.dat", std::string(9000, 'x'));
    EXPECT_FALSE(startProgram());
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_TRUE(shown[0].starts_with(wording(Text::libraryWrongHead)) &&
                shown[0].find("--repair " + folder.path) != std::string::npos);
    EXPECT_EQ(shown[1], wording(Text::noLibraryAtStart));
    EXPECT_EQ(mainWindow, nullptr);
    EXPECT_EQ(folder.read("storage.dat"), std::string(9000, 'x'));
}

// One that is lost and one that is damaged, with copies beside.
TEST_F(StartUp, AsksBeforeItBeginsALibraryAnewOfWhichThereAreCopies) {
    ASSERT_TRUE(startProgram());
    addProgram("ABC", "A");
    endProgram();
    const std::string whole = folder.read("storage.dat"), copy = "backups/storage-2026-01-02.dat";
    const std::string take = wording(Text::storeTakeCopy, {"2026-01-02"});
    struct Row {
        std::string library, answer;
        bool starts, holds;
    };
    const Row rows[] = {
        {"", "Esc", false, false},
        {"", take, true, true},
        {std::string(9000, 'x'), take, true, true},
        {"", wording(Text::storeBeginEmpty), true, false},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.answer);
        for (const auto &entry : std::filesystem::directory_iterator(folder.path + "backups"))
            std::filesystem::remove(entry.path());
        folder.write(copy, whole);
        folder.write("backups/storage-2026-01-03.dat", whole.substr(0, 8000));
        folder.write("storage.dat", row.library);
        answers.clear();
        if (!row.library.empty()) answer("Return");  // the box that tells what is wrong
        answer(row.answer);
        ASSERT_EQ(startProgram(), row.starts);
        EXPECT_EQ(storeItemExists("ABC", rootId), row.holds);
        if (row.starts) endProgram();
        EXPECT_TRUE(row.starts || folder.read("storage.dat") == row.library);
    }
    EXPECT_EQ(folder.read("storage.dat.damaged-1"), rows[2].library);
}

using FolderContent = std::map<std::string, std::pair<std::string, std::filesystem::file_time_type>>;

FolderContent contentOf(const ScratchFolder &folder) {
    FolderContent content;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder.path)) {
        const std::string name = std::filesystem::relative(entry.path(), folder.path).string();
        content[name] = {entry.is_directory() ? "" : folder.read(name), entry.last_write_time()};
    }
    return content;
}

TEST_F(StartUp, ASecondProcessRaisesTheFirstAndEndsWithoutAWordAndTouchesNothing) {
    ASSERT_TRUE(startProgram());
    addProgram("ABC", "A");
    mainWindow->hide();
    const FolderContent before = contentOf(folder);
    QProcess second;
    const auto startSecond = [&](const QStringList &files) {
        second.start(QCoreApplication::applicationFilePath(),
                     QStringList{QStringLiteral("--second-copy"), QString::fromStdString(folder.path)} + files);
        ASSERT_TRUE(QTest::qWaitFor([&] { return second.state() == QProcess::NotRunning; }, 60000));
        EXPECT_EQ(second.exitCode(), 0);
        EXPECT_EQ(second.readAllStandardOutput().toStdString(), "");
        EXPECT_TRUE(mainWindow->isVisible());
    };
    startSecond({});
    EXPECT_TRUE(before.contains("storage.dat") && contentOf(folder) == before);
    startSecond({QStringLiteral("/none/a.cat"), QStringLiteral("/none/b.cat")});
    EXPECT_TRUE(QTest::qWaitFor([this] { return shown.size() == 2; }));
    for (const auto &[box, file] : {std::pair(0u, "/none/a.cat"), std::pair(1u, "/none/b.cat")})
        EXPECT_TRUE(shown[box].ends_with(wording(Text::fileMissing, {file}))) << shown[box];
}

TEST_F(StartUp, TakesFoldersOfLibrariesAndFilesByWhateverBytesTheyAreNamed) {
    for (const char *made : {"empty", "library", "files"}) std::filesystem::create_directory(folder.path + made);
    folder.write("library/storage.dat", "");
    folder.write("files/caf\xE9.cat", "");
    struct Row {
        std::vector<std::string> given;
        const char *library;  // below the folder; null: one's own
        std::vector<std::string> files;
    };
    const std::string odd = folder.path + "files/caf\xE9.cat";
    const Row rows[] = {
        {{folder.path + "empty"}, "empty/", {}},
        {{odd, folder.path + "library"}, "library/", {odd}},
        {{folder.path + "empty", odd}, nullptr, {folder.path + "empty", odd}},
        {{folder.path + "files"}, nullptr, {folder.path + "files"}},  // told as what it is; no library begins there
        {{"--", "--trace", "-x", ""}, nullptr, {absolutePath("--trace"), absolutePath("-x"), ""}},
    };
    setenv("NUMALINK_HOME", "/own", 1);
    for (const auto &[given, library, files] : rows) {
        const StartWish wish = chooseLibrary(given);
        EXPECT_EQ(libraryFolder(), library == nullptr ? "/own/" : folder.path + library);
        EXPECT_EQ(wish.files, files);
        EXPECT_TRUE(wish.trace.empty() && !wish.asksWhenNew);
        EXPECT_EQ(unknownOption(given), "");
    }
    unsetenv("NUMALINK_HOME");
    setSettingsFolder("");
    EXPECT_EQ(unknownOption({"a.cat", "--trace", "f", "-quiet", "--other"}), "-quiet");
}

TEST_F(StartUp, AnotherLibraryTakesThePlaceOfThisOneAndNothingOfThisOneStays) {
    setSettingsFolder(folder.path);
    const std::string other = folder.path + "other/", broken = folder.path + "broken/";
    for (const std::string &made : {other, broken}) std::filesystem::create_directory(made);
    folder.write("broken/storage.dat", std::string(9000, 'x'));
    ASSERT_TRUE(startProgram());
    const ItemId program = addProgram("ABC", "A");
    show(program);
    handleCommand(CommandId::queue);
    programEdit->setPlainText(QStringLiteral("B"));
    EXPECT_FALSE(changeLibrary(other, false)) << "there is none yet";
    ASSERT_TRUE(changeLibrary(other, true));
    EXPECT_TRUE(transmitQueueIds().empty());
    EXPECT_EQ(selectedItemId(), noItem);
    EXPECT_EQ(treeEntryOf(program), nullptr);
    EXPECT_FALSE(programEdit->isVisible() || storeUndoOffer());
    ASSERT_EQ(addProgram("XYZ", "X"), program) << "the two libraries give the same ids";
    refreshTree();
    shown.clear();
    EXPECT_FALSE(changeLibrary(broken, false));
    EXPECT_EQ(shown.size(), 1u);
    folder.write("games.cat", "%Header Record");
    openLibraryFile(folder.path + "games.cat");
    EXPECT_EQ(shown.back(), wording(Text::storeAbsent, {folder.path + "games.cat"}));
    EXPECT_EQ(libraryFolder(), other);
    EXPECT_TRUE(storeItemExists("XYZ", rootId) && treeEntryOf(program) != nullptr);
    Q_EMIT menuAt(MenuPosition::recent)->aboutToShow();
    const QAction *recent = commandAction(CommandId::recentLibrary1);
    EXPECT_EQ(recent->text().toStdString(), "&1 " + folder.path);
    EXPECT_FALSE(commandAction(CommandId::recentLibrary2)->isVisible());
    commandAction(CommandId::recentLibrary1)->trigger();
    ASSERT_EQ(libraryFolder(), folder.path);
    show(program);
    EXPECT_EQ(programEdit->toPlainText(), QStringLiteral("B"));
    endProgram();
    setSettingsFolder("");
}

TEST_F(StartUp, AWindowThatIsHiddenComesBackWithItsSymbolsWhenNoNotificationAreaIsThere) {
    ASSERT_TRUE(startProgram());
    const ItemId program = addProgram("ABC", "A");
    show(program);
    auto *symbols = mainWindow->findChild<QWidget *>(QStringLiteral("symbolsWindow"));
    ASSERT_TRUE(symbols->isVisible());
    hideToTray();
    EXPECT_FALSE(mainWindow->isVisible() || symbols->isVisible());
    EXPECT_TRUE(QTest::qWaitFor([] { return mainWindow->isVisible(); }));
    EXPECT_TRUE(symbols->isVisible());
    hideToTray();
    storeDelete(program);
    refreshTree();
    raiseMainWindow();
    EXPECT_FALSE(symbols->isVisible()) << "its program has gone";
}

// The letters that Alt reaches in a menu, each with its entries; those below it come with it.
void checkMnemonics(const QString &menu, const QList<QAction *> &entries) {
    std::map<QString, QStringList> reached;
    for (const QAction *entry : entries) {
        if (entry->isSeparator()) continue;
        const qsizetype mark =
            QString(entry->text()).replace(QLatin1String("&&"), QLatin1String("  ")).indexOf(QLatin1Char('&'));
        reached[mark < 0 ? QString() : entry->text().mid(mark + 1, 1).toLower()] << entry->text();
        if (entry->menu() != nullptr) checkMnemonics(entry->text(), entry->menu()->actions());
    }
    EXPECT_FALSE(reached.contains(QString())) << menu.toStdString();
    for (const auto &[letter, texts] : reached)
        EXPECT_EQ(texts.size(), 1) << menu.toStdString() << ": " << texts.join(QLatin1Char('|')).toStdString();
}

TEST_F(StartUp, NoTwoEntriesOfAMenuHaveTheSameLetterInAnyLanguage) {
    for (const char *language : {"English", "Nederlands", "Deutsch",
                                 "Fran\xC3\xA7"
                                 "ais"}) {
        folder.write("settings.xml", "");
        settingsSetValue(setting::language, language);
        ASSERT_TRUE(settingsSave());
        ASSERT_TRUE(startProgram());
        ASSERT_EQ(languageRecord(languageCurrent()).name, language);
        show(addProgram("ABC", "A"));
        for (QMenu *menu : mainWindow->findChildren<QMenu *>()) Q_EMIT menu->aboutToShow();
        checkMnemonics(QString::fromUtf8(language), mainWindow->menuBar()->actions());
        QTimer::singleShot(0, [] {
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            checkMnemonics(menu->objectName(), menu->actions());
            menu->close();
        });
        QContextMenuEvent asked(QContextMenuEvent::Keyboard, {}, {});
        QApplication::sendEvent(programEdit, &asked);
        endProgram();
    }
}

TEST_F(StartUp, TheQueueIsWorkedByKeyboard) {
    ASSERT_TRUE(startProgram());
    for (const char *name : {"ONE", "TWO", "THREE"}) {
        show(addProgram(name, "A"));
        handleCommand(CommandId::queue);
    }
    ASSERT_EQ(transmitQueueIds().size(), 3u);
    handleCommand(CommandId::showQueue);
    auto *window = mainWindow->findChild<QWidget *>(QStringLiteral("queueWindow"));
    auto *list = window->findChild<QListWidget *>();
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->hasFocus(); }));
    const ItemId second = transmitQueueIds()[1];
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_TRUE(QTest::qWaitFor([&] { return list->count() == 2 && list->currentRow() == 0; }));
    EXPECT_EQ(transmitQueueIds()[0], second);
    QTest::keyClick(list, Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(StartUp, ExitCloseAndSignalsEndTheEventLoop) {
    QTimer tooLate;
    QObject::connect(&tooLate, &QTimer::timeout, &tooLate, [] { QCoreApplication::exit(1); });
    void (*const ends[])() = {[] { commandAction(CommandId::exit)->trigger(); }, [] { mainWindow->close(); },
                              [] { ::raise(SIGTERM); }, [] { ::raise(SIGHUP); }};
    for (void (*end)() : ends) {
        ASSERT_TRUE(startProgram());
        tooLate.start(10000);
        QTimer::singleShot(0, mainWindow, end);
        EXPECT_EQ(QApplication::exec(), 0);
        EXPECT_FALSE(storeIsOpen());
        running = false;
        tearDown();
    }
}

}  // namespace numalink
