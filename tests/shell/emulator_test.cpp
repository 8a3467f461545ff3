// Runs in the window: keys and clicks on their way to them, and every way that one ends.
#include <algorithm>

#include "emulator/machine/keypad.h"
#include "emulator/machine/machine.h"
#include "emulator/screens/display.h"
#include "shell/run/emulator_window.h"
#include "shell/shell_fixture.h"

namespace numalink {

struct Emulator : StartedShell {
    void SetUp() override {
        StartedShell::SetUp();
        settingsSetInt(setting::fullSpeed, 1);
    }

    // Selects a new program of these exchange words and presses F7.
    void run(const char *words) {
        displayBefore = displayNow().dots;
        program = addWords("RUN", words);
        show(program);
        QTest::keyClick(mainWindow, Qt::Key_F7);
        ASSERT_TRUE(emulatorRunning);
        window = mainWindow->findChild<QWidget *>(QStringLiteral("emulatorWindow"));
        ASSERT_TRUE(window->isVisible());
        // The window becomes the active one a little later; a key that comes ahead of that would be cleared.
        ASSERT_TRUE(QTest::qWaitFor([&] { return !emulatorRunning || QApplication::focusWidget() == window; }, 3000));
    }

    // The display of the run before stands until the new one clears it: neither that nor a display of one color is
    // what this run's program draws.
    bool hasDrawn() const {
        const auto dots = displayNow().dots;
        return dots != displayBefore && std::count(dots.begin(), dots.end(), dots[0]) < std::ssize(dots);
    }

    std::vector<Color> displayBefore;
    ItemId program = noItem;
    QWidget *window = nullptr;
};

TEST_F(Emulator, RunsShowsStopsAndReturnsToTheProgram) {
    const QWidget *button = toolbar->widgetForAction(commandAction(CommandId::emulate));
    const int width = button->width();
    run("\\Locate 1,1,\"HI\"");
    EXPECT_TRUE(QTest::qWaitFor([this] { return hasDrawn(); }, 3000));
    EXPECT_FALSE(programEdit->isVisible());
    EXPECT_TRUE(commandEnabled(CommandId::screenshot));
    EXPECT_EQ(button->width(), width);
    EXPECT_EQ(mainWindow->focusWidget(), window);
    EXPECT_TRUE(QTest::qWaitFor([this] { return window->accessibleDescription() == QLatin1String("HI\n"); }));
    for (const auto &[code, held] : {std::pair(Qt::Key_F10, Qt::KeyboardModifiers()), {Qt::Key_F, Qt::AltModifier}}) {
        QTest::keyClick(window, code, held);
        QWidget *menu = QApplication::activePopupWidget();
        ASSERT_EQ(menu, menuAt(MenuPosition::file)) << "keys of menus stay the window's";
        QTest::keyClick(menu, Qt::Key_Escape);
        QTest::keyClick(mainWindow->menuBar(), Qt::Key_Escape);
        EXPECT_TRUE(emulatorRunning && keyCode == 0);
    }
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([] { return !emulatorRunning; }, 3000));
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(programEdit->isVisible());
    EXPECT_FALSE(commandEnabled(CommandId::screenshot));
    EXPECT_EQ(selectedItemId(), program);
}

TEST_F(Emulator, KeysOfTheKeyboardAndTheMouseReachTheRunAndNoCommand) {
    run("\\Locate 1,1,\"KEYS\":\\Do:\\LpWhile 1");
    // The start of a run clears the key.
    ASSERT_TRUE(QTest::qWaitFor([this] { return hasDrawn(); }, 3000));
    QTest::keyPress(window, Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(keyCode, 43);
    QTest::keyRelease(window, Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([] { return keyCode == 0; }, 3000));
    QTest::keyPress(window, Qt::Key_Tab);
    EXPECT_EQ(keyCode, 25);
    const struct {
        Qt::Key key = {};
        Qt::KeyboardModifiers modifiers = {};
        int code = 0;
    } numberKeys[] = {{Qt::Key_4, {}, 73},      {Qt::Key_5, {}, 63},         {Qt::Key_5, Qt::KeypadModifier, 63},
                      {Qt::Key_Period, {}, 61}, {Qt::Key_Minus, {}, 32},     {Qt::Key_ParenLeft, Qt::ShiftModifier, 55},
                      {Qt::Key_Comma, {}, 35},  {Qt::Key_Backspace, {}, 44}, {Qt::Key_Comma, Qt::KeypadModifier, 61}};
    for (const auto &number : numberKeys) {
        QTest::keyPress(window, number.key, number.modifiers);
        EXPECT_EQ(keyCode, number.code) << number.key;
    }
    const QPoint origin((window->width() - keypadWidth) / 2 + 1, (window->height() - keypadHeight) / 2 + 1);
    QTest::mousePress(window, Qt::LeftButton, {}, origin + QPoint(5, 75));
    QTest::mouseClick(window, Qt::RightButton, {}, origin + QPoint(60, 75));
    EXPECT_EQ(keyCode, 79) << "the left button alone presses and releases";
    QTest::mouseRelease(window, Qt::LeftButton, {}, origin + QPoint(5, 75));
    EXPECT_TRUE(QTest::qWaitFor([] { return keyCode == 0; }, 3000));
    QTest::mousePress(window, Qt::LeftButton, {}, origin + QPoint(1, 75));
    EXPECT_EQ(keyCode, 0) << "an edge is no key";
    mainWindow->activateWindow();
    window->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->hasFocus(); }, 3000));
    const auto tapsThenHolds = [this] {
        QTest::keyClick(window, Qt::Key_A);
        const bool lasts = keyCode != 0;
        QTest::keyPress(window, Qt::Key_Comma);
        QTest::qWait(100);
        return lasts && keyCode == 35;
    };
    ASSERT_TRUE(QTest::qWaitFor(tapsThenHolds, 5000))
        << "a tap lasts until the run can have seen it, and ends no later press; again, should the window have been "
           "without focus for a moment";
    window->clearFocus();
    EXPECT_EQ(keyCode, 0);
    QTest::mouseClick(window, Qt::LeftButton, {}, origin + QPoint(110, 180));
    EXPECT_TRUE(QTest::qWaitFor([] { return !emulatorRunning; }, 3000));
}

TEST_F(Emulator, ALineTellsOfModeCommandsAndItsButtonTurnsThemOn) {
    run("\\Deg:\\Lbl 1:\\Prog \"CALLED\":\\Goto1");
    EXPECT_EQ(window->findChild<QWidget *>(QStringLiteral("modeLine"))->isVisible(), true);
    handleCommand(CommandId::emulate);
    run("\"\\Deg\":\\Lbl 1:\\Goto1");
    EXPECT_FALSE(window->findChild<QWidget *>(QStringLiteral("modeLine"))->isVisible()) << "a string is no command";
    handleCommand(CommandId::emulate);
    run("\\Rad:\\Lbl 1:\\Goto1");
    EXPECT_FALSE(window->findChild<QWidget *>(QStringLiteral("modeLine"))->isVisible()) << "so it is in any case";
    handleCommand(CommandId::emulate);
    addWords("CALLED", "\\Break");
    run("\\Lbl 1:\\Prog \"CALLED\":\\Goto1");
    const auto *line = window->findChild<QWidget *>(QStringLiteral("modeLine"));
    ASSERT_TRUE(line->isVisible());
    EXPECT_NE(line->findChild<QLabel *>()->text().indexOf(QStringLiteral("Break")), -1);
    QTest::keyClick(window, Qt::Key_5);
    EXPECT_TRUE(emulatorRunning);
    line->findChild<QPushButton *>()->click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !line->isVisible(); }, 3000));
    EXPECT_TRUE(emulatorRunning && machine.calculatorModes);
    EXPECT_EQ(settingsInt(setting::calculatorModes), 1);
    EXPECT_EQ(mainWindow->focusWidget(), window);
}

TEST_F(Emulator, SelectingAnotherItemOrEndingTheProgramStopsTheRun) {
    const ItemId other = add(kind::matrix, "M");
    run("\\Lbl 1:\\Goto1");
    select(other);
    EXPECT_FALSE(emulatorRunning);
    EXPECT_EQ(viewItemId, other);
    select(program);
    handleCommand(CommandId::emulate);
    EXPECT_TRUE(emulatorRunning);
    endProgram();
    EXPECT_FALSE(emulatorRunning);
}

TEST_F(Emulator, AHaltInTheLastLineNamesItsErrorAndLeadsToTheStatement) {
    settingsSetInt(setting::haltOnError, 1);
    answerBoxes = false;
    run("1\\->A\r\"A:B\":2,,3");
    ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::activeModalWidget() != nullptr; }, 3000));
    const QWidget *box = QApplication::activeModalWidget();
    const QRect display(
        window->mapToGlobal(QPoint((window->width() - keypadWidth) / 2 + 1, (window->height() - keypadHeight) / 2 + 1)),
        QSize(displayWidth, displayHeight));
    EXPECT_FALSE(box->frameGeometry().intersects(display)) << "it speaks of what the display shows";
    answer(textOf(Text::goToStatement).remove(QLatin1Char('&')).toStdString());
    answerBoxes = true;
    ASSERT_TRUE(QTest::qWaitFor([] { return !emulatorRunning && mainWindow->focusWidget() == programEdit; }, 3000));
    EXPECT_NE(shown.back().find("Syn ERROR"), std::string::npos) << shown.back();
    EXPECT_EQ(programEdit->textCursor().selectedText(), QStringLiteral("2,,3"));
}

TEST_F(Emulator, EndsAtOnceWhileABoxOfTheRunIsOpen) {
    settingsSetInt(setting::haltOnError, 1);
    running = false;
    QTimer::singleShot(0, [this] { run("1,,2:1"); });
    // Only the signal may close the box.
    answerBoxes = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [] {
        if (QApplication::activeModalWidget() != nullptr) shutDownAtOnce();
    });
    watch.start(50);
    QTimer limit;
    QObject::connect(&limit, &QTimer::timeout, [] { QCoreApplication::exit(1); });
    limit.start(8000);
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_FALSE(emulatorRunning);
    EXPECT_FALSE(storeIsOpen());
    tearDown();
}

}  // namespace numalink
