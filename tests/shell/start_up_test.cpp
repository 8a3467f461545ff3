#include <QProcess>
#include <csignal>
#include <filesystem>
#include <map>

#include "shell/app/single_copy.h"
#include "shell/shell_fixture.h"

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
        EXPECT_FALSE(text.isEmpty() || text.contains(QLatin1Char('<'))) << row.id;
        EXPECT_TRUE(row.working || !commandEnabled(row.id)) << row.id;
    }
    const auto isShown = [] { return mainWindow->findChild<QWidget *>(QStringLiteral("aboutBox")) != nullptr; };
    EXPECT_TRUE(isShown());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isShown(); }, 10000)) << "it goes by itself";
}

// No port was chosen yet, no colours, no language.
TEST_F(StartUp, AFirstUseHasColoursAndLeadsToTheSettings) {
    ASSERT_TRUE(startProgram());
    EXPECT_EQ(settingsInt(setting::syntaxHighlighting), 1);
    EXPECT_NE(settingsColour(setting::colorText), 0u);
    const QString link = QStringLiteral("<a href=\"settings\">") + textOf(Text::portNone);
    EXPECT_TRUE(QTest::qWaitFor([&] { return linkField->text().startsWith(link); }, 3000));
    EXPECT_FALSE(progressBar->isVisible());
    answer(wording(Text::ok));
    emit linkField->linkActivated(QStringLiteral("settings"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return answers.empty(); }, 3000));
    EXPECT_EQ(shown, std::vector<std::string>{wording(Text::settingsTitle)})
        << "the language stays: no word about a new one";
    endProgram();

    settingsSetValue(setting::language, "Deutsch");
    settingsSetInt(setting::syntaxHighlighting, 0);
    ASSERT_TRUE(settingsSave());
    ASSERT_TRUE(startProgram());
    EXPECT_EQ(settingsInt(setting::syntaxHighlighting), 0) << "what the user has set stays";
    EXPECT_EQ(QCoreApplication::translate("QFileDialog", "Create New Folder"),
              QStringLiteral("Neuen Ordner erstellen"));
}

TEST_F(StartUp, WithoutDataFilesTellsOfTheFontsAndWorks) {
    const EmptyProgramFolder empty;
    tokenTableSet({});
    setLibraryFolder(folder.path);
    ASSERT_TRUE(startProgram());
    EXPECT_EQ(shown, (std::vector<std::string>{"Cannot find large font file", "Cannot find small font file"}));
    EXPECT_EQ(commandAction(command::open)->text(), QStringLiteral("<unknown string>"));
    EXPECT_EQ(menuAt(0)->title(), QStringLiteral("<unknown string>"));
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

using FolderContent = std::map<std::string, std::pair<std::string, std::filesystem::file_time_type>>;

FolderContent contentOf(const ScratchFolder &folder) {
    FolderContent content;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder.path)) {
        const std::string name = std::filesystem::relative(entry.path(), folder.path).string();
        content[name] = {entry.is_directory() ? "" : folder.read(name), entry.last_write_time()};
    }
    return content;
}

TEST_F(StartUp, ASecondProcessRaisesTheFirstAndEndsWithBoxesAndTouchesNothing) {
    ASSERT_TRUE(startProgram());
    addProgram("ABC", "A");
    mainWindow->hide();
    const FolderContent before = contentOf(folder);
    QProcess second;
    second.start(QCoreApplication::applicationFilePath(),
                 {QStringLiteral("--second-copy"), QString::fromStdString(folder.path)});
    ASSERT_TRUE(QTest::qWaitFor([&] { return second.state() == QProcess::NotRunning; }, 60000));
    EXPECT_EQ(second.exitCode(), 0);
    const std::string held = wording(Text::storeHeld, {folder.path + "storage.dat"});
    EXPECT_EQ(second.readAllStandardOutput().toStdString(),
              wording(Text::libraryNotOpened) + "\n" + held + "\n" + wording(Text::noLibraryAtStart) + "\n");
    EXPECT_TRUE(mainWindow->isVisible());
    EXPECT_TRUE(before.contains("storage.dat") && contentOf(folder) == before);
}

TEST_F(StartUp, ExitCloseAndSignalsEndTheEventLoop) {
    QTimer tooLate;
    QObject::connect(&tooLate, &QTimer::timeout, &tooLate, [] { QCoreApplication::exit(1); });
    void (*const ends[])() = {[] { commandAction(command::exit)->trigger(); }, [] { mainWindow->close(); },
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
