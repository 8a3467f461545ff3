// Playing in the window: keys that are recorded, played and assigned, full speed while a key is held, and the display
// on its way out as pictures.
#include <algorithm>

#include "emulator/machine/key_port.h"
#include "emulator/machine/keypad.h"
#include "emulator/machine/machine.h"
#include "emulator/machine/pace.h"
#include "emulator/run/key_file.h"
#include "emulator/run/run_loading.h"
#include "emulator/run/scripted_run.h"
#include "emulator/screens/display.h"
#include "shell/run/display_out.h"
#include "shell/run/emulator_keys.h"
#include "shell/run/emulator_window.h"
#include "shell/run/key_assignments.h"
#include "shell/run/recording.h"
#include "shell/shell_fixture.h"
#include "shell/views/bitmap_export.h"

namespace numalink {

namespace {

QString marks() {
    const auto *label = mainWindow->findChild<QLabel *>(QStringLiteral("runMarks"));
    return label == nullptr || !label->isVisible() ? QString() : label->text();
}

}  // namespace

struct Playing : StartedShell {
    void SetUp() override {
        StartedShell::SetUp();
        settingsSetInt(setting::fullSpeed, 1);
    }

    void run(const char *words) {
        program = addWords("PLAY", words);
        show(program);
        handleCommand(CommandId::emulate);
        ASSERT_TRUE(emulatorRunning);
        focus();
    }

    static void focus() {
        mainWindow->activateWindow();
        emulatorWindow->setFocus();
        ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::focusWidget() == emulatorWindow; }, 3000));
    }

    // A path for the next dialog of files.
    void answerPath(const std::string &name) {
        whileOpen = [this, name] {
            auto *typed = QApplication::activeModalWidget()->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
            ASSERT_NE(typed, nullptr);
            typed->setText(toQt(folder.path + name));
            QTest::keyClick(typed, Qt::Key_Return);
        };
    }

    static bool shows(const char *text) {
        return QTest::qWaitFor([text] { return displayText().find(text) != std::string::npos; }, 5000);
    }

    ItemId program = noItem;
};

TEST_F(Playing, WhatWasRecordedInTheWindowGivesTheSameDisplayWithoutOneAndInIt) {
    run("0\\->A:\\Do:\\Getkey\\->K:\\LpWhile K\\<>72:?\\->N:\\Locate 5,5,N:\\Locate 9,5,\\Ran#:\\Locate 1,6,\"DONE\"");
    QTest::qWait(50);
    QTest::keyPress(emulatorWindow, Qt::Key_1);
    QTest::qWait(100);
    QTest::keyRelease(emulatorWindow, Qt::Key_1);
    ASSERT_TRUE(shows("?"));
    for (const Qt::Key key : {Qt::Key_4, Qt::Key_7, Qt::Key_Return}) {
        QTest::qWait(120);
        QTest::keyClick(emulatorWindow, key);
    }
    ASSERT_TRUE(shows("DONE"));
    answerPath("taken.keys");
    handleCommand(CommandId::saveKeys);
    const Surface wanted = displayNow();
    ASSERT_NE(displayText().find("7"), std::string::npos);
    handleCommand(CommandId::emulate);
    ASSERT_FALSE(emulatorRunning);

    KeyFile file;
    ASSERT_EQ(keyFileRead(folder.read("taken.keys"), file), 0);
    EXPECT_EQ(file.program, "PLAY");
    EXPECT_GT(file.keys.getKeys.size(), 1u);
    const ItemId other = program;
    const RunReport report = runScripted({.keys = file.keys.waits,
                                          .getKeys = file.keys.getKeys,
                                          .statementLimit = file.keys.statements,
                                          .begins = file.keys.begins},
                                         [&] { return loadRun(other, itemsBeside(other)); });
    EXPECT_EQ(displayNow().dots, wanted.dots);
    EXPECT_EQ(report.statements, file.keys.statements);

    settingsSetInt(setting::haltOnError, 1);
    answerPath("taken.keys");
    handleCommand(CommandId::playKeys);
    ASSERT_TRUE(emulatorRunning);
    EXPECT_EQ(settingsInt(setting::haltOnError), 0) << "as it was for the record";
    EXPECT_TRUE(marks().contains(textOf(Text::keysPlaying)));
    ASSERT_TRUE(shows("DONE"));
    EXPECT_EQ(displayNow().dots, wanted.dots);
    EXPECT_TRUE(QTest::qWaitFor([] { return marks().isEmpty(); }, 5000));
    handleCommand(CommandId::emulate);
    EXPECT_EQ(settingsInt(setting::haltOnError), 1);
    for (const std::string &box : shown) EXPECT_EQ(box.find("keys are of"), std::string::npos) << box;
}

TEST_F(Playing, FilesThatAreNoKeysOrAnothersAreToldAndPlayOnlyThen) {
    show(addProgram("ABC", "A"));
    folder.write("bad.keys", "numalink-keys 1\nkeys 31,\n");
    answerPath("bad.keys");
    handleCommand(CommandId::playKeys);
    EXPECT_FALSE(emulatorRunning);
    EXPECT_NE(shown.back().find("line 2"), std::string::npos) << shown.back();
    folder.write("other.keys", "numalink-keys 1\nprogram 12345678 SNAKE\nkeys 0*3\n");
    answerPath("other.keys");
    handleCommand(CommandId::playKeys);
    EXPECT_NE(shown.back().find("SNAKE"), std::string::npos) << shown.back();
    EXPECT_TRUE(emulatorRunning);
    EXPECT_TRUE(QTest::qWaitFor([] { return itemField->text() == textOf(Text::keysPlayed); }, 5000));
    handleCommand(CommandId::emulate);
}

TEST_F(Playing, AKeyThatIsHeldMakesTheRunFastAndNothingElse) {
    settingsSetInt(setting::fullSpeed, 0);
    run("\\Locate 1,1,\"HI\":\\Lbl 1:\\Goto1");
    ASSERT_TRUE(shows("HI"));
    EXPECT_FALSE(fullSpeed);
    QTest::keyPress(emulatorWindow, Qt::Key_QuoteLeft);
    EXPECT_TRUE(fullSpeed);
    EXPECT_EQ(keyCode, 0);
    EXPECT_TRUE(marks().contains(textOf(Text::fastHeldMark))) << marks().toStdString();
    QTest::keyPress(emulatorWindow, Qt::Key_A);
    EXPECT_EQ(keyCode, 76) << "other keys stay the calculator's";
    QTest::keyRelease(emulatorWindow, Qt::Key_QuoteLeft);
    EXPECT_FALSE(fullSpeed);
    EXPECT_TRUE(marks().isEmpty());
    QTest::keyPress(emulatorWindow, Qt::Key_QuoteLeft);
    emulatorWindow->clearFocus();
    EXPECT_FALSE(fullSpeed) << "a release that another window gets";
    EXPECT_EQ(settingsInt(setting::fullSpeed), 0);
    handleCommand(CommandId::emulate);
}

TEST_F(Playing, KeysAreAssignedByPressingThemAndEachConflictIsTold) {
    whileOpen = [] {
        QWidget *dialog = QApplication::activeModalWidget();
        auto *list = dialog->findChild<QTreeWidget *>(QStringLiteral("keysList"));
        auto *line = dialog->findChild<QLabel *>(QStringLiteral("keysLine"));
        const auto button = [&](Text words) {
            for (QPushButton *each : dialog->findChildren<QPushButton *>())
                if (each->text() == textOf(words)) each->click();
        };
        const auto press = [&](int code, Qt::Key key) {
            for (int i = 0; i < list->topLevelItemCount(); i++)
                if (list->topLevelItem(i)->data(0, Qt::UserRole) == code) list->setCurrentItem(list->topLevelItem(i));
            button(Text::keysAdd);
            QTest::keyClick(line, key);
            return line->text().toStdString();
        };
        const auto names = [&] { return list->currentItem()->text(1).toStdString(); };
        EXPECT_EQ(list->topLevelItemCount(), std::ssize(keyFaces()) + 1);
        EXPECT_EQ(press(31, Qt::Key_Home), wording(Text::keysGiven, {"Home", "EXE (↵)"}));
        EXPECT_EQ(names().substr(0, 4), "Home");
        EXPECT_EQ(press(31, Qt::Key_Tab), wording(Text::keysMoved, {"Tab", "→", "EXE (↵)"}));
        EXPECT_EQ(press(31, Qt::Key_F12), wording(Text::keysReserved, {"F12"}));
        EXPECT_EQ(press(31, Qt::Key_Escape), "") << "ends the asking";
        EXPECT_EQ(QApplication::activeModalWidget(), dialog);
        press(74, Qt::Key_F1);
        button(Text::keysReset);
        EXPECT_EQ(names().find("F1"), std::string::npos);
        press(fastKey, Qt::Key_End);
        press(43, Qt::Key_F2);
        button(Text::keysTakeAway);
        EXPECT_EQ(names(), "");
    };
    answer(wording(Text::ok));
    handleCommand(CommandId::assignKeys);
    EXPECT_TRUE(keyboardNamesOf(31).contains(QStringLiteral("Home")));
    EXPECT_TRUE(keyboardNamesOf(43).isEmpty());
    EXPECT_TRUE(keyboardNamesOf(79).contains(QStringLiteral("F1"))) << "a reset gives its key back";
    run("\\Locate 1,1,\"HI\":\\Lbl 1:\\Goto1");
    ASSERT_TRUE(shows("HI"));
    const std::pair<Qt::Key, int> pressed[] = {
        {Qt::Key_Home, 31}, {Qt::Key_Tab, 31}, {Qt::Key_Return, 31}, {Qt::Key_A, 76}};
    for (const auto &[key, code] : pressed) {
        QTest::keyPress(emulatorWindow, key);
        EXPECT_EQ(keyCode, code) << key;
    }
    keyCode = 0;
    for (const Qt::Key key : {Qt::Key_F2, Qt::Key_S}) {
        QTest::keyPress(emulatorWindow, key);
        EXPECT_EQ(keyCode, 0) << key;
    }
    const Assignments stored = assignments();
    loadAssignments();
    EXPECT_EQ(assignments(), stored) << "the settings have them";
    handleCommand(CommandId::emulate);
}

TEST_F(Playing, AssignmentsAreBoundedAndHostileTextsAreNone) {
    Assignments many;
    for (BoardKey key = 0x100; key < 0x100 + static_cast<int>(assignmentLimit); key++)
        EXPECT_TRUE(assign(many, key, 31));
    EXPECT_FALSE(assign(many, 0x400, 31));
    EXPECT_TRUE(assign(many, 0x100, 72)) << "one that is there can be changed";
    ASSERT_TRUE(storeAssignments(many));
    loadAssignments();
    EXPECT_EQ(assignments(), many);
    ASSERT_TRUE(storeAssignments({}));
    loadAssignments();
    EXPECT_TRUE(assignments().empty());
    settingsSetValue(std::string(setting::assignedKeys) + "1",
                     "41=31 =5 42= 43=33x 1000000=31 44=999 -45=31 46=-1 zz=31 47 41=72 ffffffffff=31 01000010=31");
    loadAssignments();
    EXPECT_EQ(assignments(), (Assignments{{Qt::Key_A, 72}, {Qt::Key_Home, 31}})) << "a key once, reserved ones never";
    settingsSetValue(std::string(setting::assignedKeys) + "1", "");
}

TEST_F(Playing, ARecordingTellsThatItIsOnAndIsNeverLostUnasked) {
    run("\\Locate 1,1,\"HI\":\\Lbl 1:\\Getkey\\->K:\\Locate 1,2,K:\\Goto1");
    ASSERT_TRUE(shows("HI"));
    handleCommand(CommandId::recordKeypad);
    for (const std::string name : {"a.gif", "b.png"}) {
        SCOPED_TRACE(name);
        focus();
        handleCommand(CommandId::record);
        EXPECT_TRUE(marks().contains(QStringLiteral("0:00"))) << marks().toStdString();
        QTest::keyPress(emulatorWindow, Qt::Key_Return);
        QTest::qWait(120);
        QTest::keyRelease(emulatorWindow, Qt::Key_Return);
        QTest::qWait(600);  // it is looked at four times a second
        EXPECT_FALSE(marks().contains(QStringLiteral(" 0 KB"))) << marks().toStdString();
        shown.clear();
        answerBoxes = false;
        int dialogs = 0;
        // The first path can't be written, the second is none: both times the recording is still there.
        QTimer answering;
        QObject::connect(&answering, &QTimer::timeout, [&] {
            QWidget *dialog = QApplication::activeModalWidget();
            if (dialog == nullptr) return;
            auto *typed = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
            if (typed == nullptr) {
                shown.push_back(static_cast<QMessageBox *>(dialog)->text().toStdString());
                return dialog->close(), void();
            }
            dialogs++;
            if (dialogs == 2) return dialog->close(), void();
            typed->setText(toQt(folder.path + (dialogs == 1 ? "none/" : "") + name));
            QTest::keyClick(typed, Qt::Key_Return);
        });
        answering.start(50);
        handleCommand(CommandId::record);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !folder.read(name).empty(); }, 10000));
        answering.stop();
        answerBoxes = true;
        EXPECT_EQ(dialogs, 3);
        EXPECT_TRUE(marks().isEmpty());
        EXPECT_TRUE(std::ranges::any_of(
            shown, [](const std::string &box) { return box.find(wording(Text::recordDrop).substr(0, 10)) == 0; }));
        const QImage first(toQt(folder.path + name));
        EXPECT_EQ(first.size(), QSize(keypadWidth, keypadHeight) * zoomOfPictures());
    }
    handleCommand(CommandId::recordKeypad);
    handleCommand(CommandId::emulate);
}

TEST_F(Playing, TheDisplayGoesOutAsPicturesDotByDot) {
    run("\\Locate 1,1,\"HI\":\\Lbl 1:\\Goto1");
    ASSERT_TRUE(shows("HI"));
    for (Surface before; before.dots != displayNow().dots; QTest::qWait(60)) before = displayNow();  // it stands still
    handleCommand(CommandId::copyPicture);
    const auto expectDisplay = [](const QImage &image) {
        const Surface display = displayNow();
        const int zoom = zoomOfPictures();
        ASSERT_EQ(image.size(), QSize(displayWidth, displayHeight) * zoom);
        for (int y = 0; y < displayHeight; y++)
            for (int x = 0; x < displayWidth; x++)
                ASSERT_EQ(image.pixel(x * zoom + zoom - 1, y * zoom) & 0xFFFFFF, dotAt(display, x, y)) << x << " " << y;
    };
    expectDisplay(QApplication::clipboard()->image());
    answerPath("shot.png");
    handleCommand(CommandId::screenshot);
    expectDisplay(QImage(toQt(folder.path + "shot.png")));
    const std::unique_ptr<QMimeData> content(displayToDrag());
    ASSERT_EQ(content->urls().size(), 1);
    expectDisplay(QImage(content->urls().front().toLocalFile()));
    EXPECT_TRUE(content->urls().front().toLocalFile().endsWith(QStringLiteral("/PLAY.png")));
    handleCommand(CommandId::emulate);
}

}  // namespace numalink
