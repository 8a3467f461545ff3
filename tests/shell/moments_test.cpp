// Moments in the window: saved by the key, kept at a stop, offered and gone on from, and looked through.
#include <QListWidget>

#include "debugger/debugger.h"
#include "debugger/moment_files.h"
#include "debugger/moment_form.h"
#include "emulator/machine/machine.h"
#include "shell/run/emulator_window.h"
#include "shell/run/moments.h"
#include "shell/run/moments_dialog.h"
#include "shell/shell_fixture.h"

namespace numalink {

// Each run of this program has a number of its own, from a sequence that goes on from run to run.
struct MomentsInWindow : StartedShell {
    void SetUp() override {
        StartedShell::SetUp();
        settingsSetInt(setting::fullSpeed, 1);
        program = addWords("RUN", "\\Ran#\\->A:\\Locate 1,1,\"HI\":?\\->B:7\\->C:\\Lbl 1:\\Goto 1");
        show(program);
    }

    void start() {
        QTest::keyClick(mainWindow, Qt::Key_F7);
        ASSERT_TRUE(emulatorRunning);
        window = mainWindow->findChild<QWidget *>(QStringLiteral("emulatorWindow"));
        waitForInput();
    }
    // Then the machine stands still.
    void waitForInput() {
        ASSERT_TRUE(QTest::qWaitFor([] { return debugWaitsAt() == RunEnd::input; }, 5000));
    }
    double numberAtStop() {
        handleCommand(CommandId::emulate);
        EXPECT_FALSE(emulatorRunning);
        return machine.variables[0].re;
    }
    bool waitForSlot(int slot) {
        return QTest::qWaitFor([&] { return fileExists(momentPath(program, slot)); }, 5000);
    }
    QWidget *line() const { return window->findChild<QWidget *>(QStringLiteral("stopOfProgram")); }
    bool isOffered() const { return line() != nullptr && line()->isVisible(); }

    ItemId program = noItem;
    QWidget *window = nullptr;
};

TEST_F(MomentsInWindow, AStoppedRunIsOfferedAndGoneOnWith) {
    start();
    EXPECT_FALSE(isOffered());
    const double first = numberAtStop();
    ASSERT_TRUE(fileExists(momentPath(program, momentSlotOfStop)));
    start();
    ASSERT_TRUE(isOffered());
    line()->findChild<QPushButton *>()->click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isOffered(); }, 3000));
    waitForInput();
    EXPECT_EQ(numberAtStop(), first);
    // Who presses a key plays on; who doesn't want it isn't offered it, and nothing is kept.
    start();
    ASSERT_TRUE(isOffered());
    QTest::keyClick(window, Qt::Key_5);
    EXPECT_FALSE(isOffered());
    settingsSetInt(setting::keepMoments, 0);
    ASSERT_TRUE(momentDrop(program, momentSlotOfStop));
    numberAtStop();
    EXPECT_FALSE(fileExists(momentPath(program, momentSlotOfStop)));
}

TEST_F(MomentsInWindow, SlotsAreFilledLookedThroughAndGoneOnFrom) {
    start();
    handleCommand(CommandId::saveMoment);
    ASSERT_TRUE(waitForSlot(1));
    const double first = numberAtStop();
    start();
    // In the dialog of a run: the second slot is free, the first has a picture, and is gone on from.
    int rows = 0;
    bool couldSave = false, couldGoOn = true;
    whileOpen = [&] {
        answerBoxes = false;
        QWidget *dialog = QApplication::activeModalWidget();
        auto *list = dialog->findChild<QListWidget *>();
        rows = list->count();
        list->setCurrentRow(2);
        const auto buttons = dialog->findChildren<QPushButton *>();
        const auto named = [&](Text text) {
            return *std::ranges::find_if(buttons,
                                         [&](const QPushButton *each) { return each->text() == textOf(text); });
        };
        couldSave = QTest::qWaitFor([&] { return named(Text::momentSaveHere)->isEnabled(); }, 3000);
        couldGoOn = named(Text::momentGoOn)->isEnabled();
        named(Text::momentSaveHere)->click();
        list->setCurrentRow(1);
        named(Text::momentGoOn)->click();
    };
    handleCommand(CommandId::moments);
    EXPECT_EQ(rows, momentSlotCount + 1);
    EXPECT_TRUE(couldSave);
    EXPECT_FALSE(couldGoOn) << "the slot was empty";
    EXPECT_TRUE(fileExists(momentPath(program, 2)));
    ASSERT_TRUE(emulatorRunning);
    waitForInput();
    EXPECT_EQ(numberAtStop(), first);
}

// The eleventh asks; Return, which a game may be played with, keeps what is there.
TEST_F(MomentsInWindow, TheOldestGoesOnlyWhereTheUserLetsIt) {
    const auto timeIn = [&](int slot) {
        Moment moment;
        return momentOfSlot(program, slot, moment) == MomentFault::none ? moment.time : 0;
    };
    start();
    handleCommand(CommandId::saveMoment);
    ASSERT_TRUE(waitForSlot(1));
    Moment moment;
    ASSERT_EQ(momentOfSlot(program, 1, moment), MomentFault::none);
    for (int slot = 1; slot <= momentSlotCount; slot++) {
        moment.time = 1000 - static_cast<std::uint64_t>(slot % 4);  // the oldest are 3 and 7
        ASSERT_EQ(momentKeep(program, slot, momentAsBytes(moment).value()), FileResult::done);
    }
    const std::string damaged = "newer";
    ASSERT_EQ(momentKeep(program, 9, {reinterpret_cast<const std::uint8_t *>(damaged.data()), damaged.size()}),
              FileResult::done);
    answer("Return");
    handleCommand(CommandId::saveMoment);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !shown.empty() && answers.empty(); }, 5000));
    EXPECT_NE(shown.back().find(slotName(3)), std::string::npos) << shown.back();
    QTest::qWait(20);
    EXPECT_EQ(timeIn(3), 997u);
    answer(wording(Text::ok));
    handleCommand(CommandId::saveMoment);
    EXPECT_TRUE(QTest::qWaitFor([&] { return timeIn(3) > 1000; }, 5000));
    EXPECT_EQ(timeIn(7), 997u);
    numberAtStop();
}

// A moment whose way takes minutes: that is told, Escape ends it from anywhere in the window, and it is kept as it was.
TEST_F(MomentsInWindow, ALongWayToAMomentIsToldAndEscapeEndsIt) {
    program = addWords("LOOP", "\\Do:A+1\\->A:\\LpWhile 1");
    show(program);
    QTest::keyClick(mainWindow, Qt::Key_F7);
    ASSERT_TRUE(emulatorRunning);
    handleCommand(CommandId::saveMoment);
    ASSERT_TRUE(waitForSlot(1));
    numberAtStop();
    Moment moment;
    ASSERT_EQ(momentOfSlot(program, 1, moment), MomentFault::none);
    moment.statement += 90'000'000;
    ASSERT_EQ(momentKeep(program, 1, momentAsBytes(moment).value()), FileResult::done);
    ASSERT_TRUE(momentDrop(program, momentSlotOfStop));
    handleCommand(CommandId::newestMoment);
    ASSERT_TRUE(emulatorRunning);
    const auto *marks = mainWindow->findChild<QLabel *>(QStringLiteral("runMarks"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return marks->text().contains(QLatin1Char('%')); }, 5000));
    treeView->setFocus();
    QTest::keyClick(treeView, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([] { return !emulatorRunning; }, 3000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return marks->text().isEmpty(); }, 3000));
    Moment kept;
    ASSERT_EQ(momentOfSlot(program, momentSlotOfStop, kept), MomentFault::none);
    EXPECT_EQ(kept.statement, moment.statement);
}

// Of what lies in the folder, moments of programs that are gone go, and nothing else.
TEST_F(MomentsInWindow, OnlyMomentsOfProgramsThatAreGoneGo) {
    const Bytes bytes = {1, 2, 3};
    for (const ItemId id : {program, ItemId{program + 1000}}) ASSERT_EQ(momentKeep(id, 4, bytes), FileResult::done);
    const std::string other = momentFolder() + "9999.moment";
    ASSERT_EQ(writeWholeFile(other, bytes), FileResult::done);
    momentsOpen(folder.path);
    EXPECT_TRUE(fileExists(momentPath(program, 4)));
    EXPECT_FALSE(fileExists(momentPath(program + 1000, 4)));
    EXPECT_TRUE(fileExists(other));
}

// What has changed can't be gone on with, and says so.
TEST_F(MomentsInWindow, AChangedProgramBeginsAnewOnly) {
    start();
    numberAtStop();
    StoredItem item;
    ASSERT_TRUE(storeReadItem(program, item));
    item.data[1] = '7';
    ASSERT_TRUE(storeWriteItem(
        program, {.name = item.name, .parent = item.parent, .kind = item.kind, .head = item.head, .data = item.data}));
    start();
    EXPECT_FALSE(isOffered());
    handleCommand(CommandId::newestMoment);
    EXPECT_FALSE(emulatorRunning);
    ASSERT_FALSE(shown.empty());
    EXPECT_EQ(shown.back(), wording(Text::momentChanged));
}

}  // namespace numalink
