// A run beside its program: steps, breakpoints, panes and the way back, by the commands that the user has.
#include <QCheckBox>
#include <QDockWidget>
#include <QLabel>
#include <QPushButton>
#include <QThread>
#include <QToolTip>
#include <QTreeWidget>

#include "debugger/breakpoints.h"
#include "emulator/machine/machine.h"
#include "shell/editor/line_numbers.h"
#include "shell/editor/statement_marks.h"
#include "shell/editor/text_marks.h"
#include "shell/run/emulator_place.h"
#include "shell/run/emulator_window.h"
#include "shell/shell_fixture.h"
#include "shell/tree/label_edit.h"
#include "shell/workbench/debugging.h"
#include "shell/workbench/pane_parts.h"
#include "shell/workbench/panes.h"

namespace numalink {

struct Workbench : StartedShell {
    void SetUp() override {
        StartedShell::SetUp();
        settingsSetInt(setting::fullSpeed, 1);
    }

    // By a command, up to the stop that it leads to; its line, or 0 where there is none.
    static int stopAfter(CommandId id) {
        const std::uint64_t before = shownStop() != nullptr ? shownStop()->statement : UINT64_MAX;
        handleCommand(id);
        const bool stopped =
            QTest::qWaitFor([&] { return shownStop() != nullptr && shownStop()->statement != before; }, 5000);
        return stopped ? shownStop()->place.line : 0;
    }

    static QString stopWords() { return mainWindow->findChild<QLabel *>(QStringLiteral("stopLine"))->text(); }
    static QTreeWidget *tableOf(const char *dock) {
        return mainWindow->findChild<QDockWidget *>(QString::fromLatin1(dock))->findChild<QTreeWidget *>();
    }
    static QTreeWidgetItem *rowNamed(const char *dock, const QString &name) {
        for (QTreeWidgetItem *row : tableOf(dock)->findItems(name, Qt::MatchExactly | Qt::MatchRecursive)) return row;
        return nullptr;
    }
    static QString valueOf(const char *name) {
        const QTreeWidgetItem *row = rowNamed("variablesDock", QString::fromLatin1(name));
        return row != nullptr ? row->text(1) : QStringLiteral("none");
    }
};

TEST_F(Workbench, StepsLooksChangesAndGoesBack) {
    const ItemId called = addWords("SUB", "7\\->B\r\\Return");
    const ItemId program = addWords("MAIN", "1\\->A:2\\->A\rA+1\\->A\r\\Prog \"SUB\"\r\\Do\r\\LpWhile 1");
    refreshTree();
    show(program);
    EXPECT_EQ(stopAfter(CommandId::debugStep), 1) << "a step starts the program ahead of its first statement";
    ASSERT_TRUE(emulatorRunning);
    EXPECT_TRUE(programEdit->isVisible());
    EXPECT_NE(emulatorWindow->parentWidget(), clientArea);
    EXPECT_TRUE(lineMarkOf(1).isNext);
    EXPECT_EQ(countTextMarks(MarkLayer::statements), 1);
    EXPECT_EQ(stopAfter(CommandId::debugStep), 1);
    EXPECT_EQ(shownStop()->place.statement, 1);
    EXPECT_EQ(stopAfter(CommandId::debugStep), 2);
    EXPECT_EQ(valueOf("A"), QStringLiteral("2"));
    EXPECT_TRUE(rowNamed("variablesDock", QStringLiteral("A"))->font(1).bold()) << "it has changed";

    rowNamed("variablesDock", QStringLiteral("A"))->setText(1, QStringLiteral("41"));
    EXPECT_EQ(stopAfter(CommandId::debugStep), 3);
    EXPECT_EQ(valueOf("A"), QStringLiteral("42"));
    rowNamed("variablesDock", QStringLiteral("A"))->setText(1, QStringLiteral("no"));
    EXPECT_EQ(shown.back(), wording(Text::debugNotANumber));
    EXPECT_EQ(valueOf("A"), QStringLiteral("42"));

    EXPECT_EQ(stopAfter(CommandId::debugStep), 1);
    EXPECT_EQ(viewItemId, called);
    EXPECT_EQ(tableOf("callsDock")->topLevelItemCount(), 2);
    EXPECT_EQ(stopAfter(CommandId::debugStepOut), 4);
    EXPECT_EQ(viewItemId, program);
    EXPECT_EQ(valueOf("B"), QStringLiteral("7"));
    EXPECT_EQ(stopAfter(CommandId::debugBackStep), 2) << "of the called one";
    EXPECT_EQ(stopAfter(CommandId::debugBackStep), 1);
    EXPECT_EQ(stopAfter(CommandId::debugBackStep), 3);
    EXPECT_EQ(valueOf("B"), QStringLiteral("0"));
    EXPECT_TRUE(commandEnabled(CommandId::debugNewRoad));
    rowNamed("variablesDock", QStringLiteral("A"))->setText(1, QStringLiteral("5"));
    EXPECT_TRUE(stopWords().contains(textOf(Text::stopNewRoad))) << stopWords().toStdString();
    EXPECT_FALSE(commandEnabled(CommandId::debugNewRoad)) << "it has been taken";

    QTest::keyClick(mainWindow, Qt::Key_F7);
    EXPECT_FALSE(emulatorRunning);
    EXPECT_FALSE(emulatorShown());
    EXPECT_EQ(shownStop(), nullptr);
    EXPECT_EQ(viewItemId, program);
    EXPECT_EQ(countTextMarks(MarkLayer::statements), 0);

    // Another run: nothing has changed in it yet. Ended in the called program, what was started is on view again.
    EXPECT_EQ(stopAfter(CommandId::debugStep), 1);
    EXPECT_EQ(valueOf("A"), QStringLiteral("0"));
    EXPECT_FALSE(rowNamed("variablesDock", QStringLiteral("A"))->font(1).bold());
    for (int i = 0; i < 4; i++) EXPECT_NE(stopAfter(CommandId::debugStep), 0);
    EXPECT_EQ(viewItemId, called);
    QTest::keyClick(mainWindow, Qt::Key_F7);
    EXPECT_EQ(viewItemId, program);
}

// A breakpoint whose statement has gone stops nothing and looks so; who has scrolled away from a stop is left there.
TEST_F(Workbench, WhatIsLostIsSeenAndTheTextStaysWhereItWasScrolled) {
    std::string words = "0\\->A\r9\\->Z";
    for (int i = 0; i < 100; i++) words += "\rA+1\\->A";
    show(addWords("LONG", words.c_str()));
    lineNumberClicked(2);
    EXPECT_TRUE(QTest::qWaitFor([] { return lineMarkOf(2).sign == LineSign::breakpoint; }, 3000));
    EXPECT_EQ(stopAfter(CommandId::debugGoOn), 2);
    QScrollBar *bar = programEdit->verticalScrollBar();
    bar->setValue(bar->maximum());
    debuggingChanged();
    EXPECT_EQ(bar->value(), bar->maximum());
    EXPECT_EQ(stopAfter(CommandId::debugStep), 3);
    EXPECT_LT(bar->value(), 10) << "another stop is brought into sight";
    QTest::keyClick(mainWindow, Qt::Key_F7);
    programEdit->setPlainText(QStringLiteral("5\u2192B\n6\u2192C\n7\u2192D"));
    EXPECT_TRUE(QTest::qWaitFor([] { return lineMarkOf(2).sign == LineSign::idleBreakpoint; }, 3000));
}

// What can't be read of the breakpoints is kept beside them.
TEST_F(Workbench, ADamagedFileOfBreakpointsIsKept) {
    const ItemId program = addWords("LOOP", "1\\->A");
    endProgram();
    folder.write("breakpoints.json", "no list");
    ASSERT_TRUE(startProgram());
    show(program);
    lineNumberClicked(1);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !folder.read("breakpoints.json").empty(); }, 3000));
    EXPECT_EQ(folder.read("breakpoints.json.damaged"), "no list");
}

TEST_F(Workbench, BreakpointsStopComeBackAndFollowTheText) {
    const ItemId program = addWords("LOOP", "0\\->A\r\\Do\rA+1\\->A\r\\LpWhile 1");
    refreshTree();
    show(program);
    lineNumberClicked(3);
    EXPECT_TRUE(QTest::qWaitFor([] { return lineMarkOf(3).sign == LineSign::breakpoint; }, 3000));
    Breakpoint point = breakpointsOfItem(program).at(0);
    point.condition = "A=5";
    EXPECT_TRUE(breakpointChange(point));
    EXPECT_EQ(stopAfter(CommandId::debugGoOn), 3);
    EXPECT_EQ(valueOf("A"), QStringLiteral("5"));
    handleCommand(CommandId::debugGoOn);
    EXPECT_TRUE(QTest::qWaitFor([] { return shownStop() == nullptr; }, 3000));
    EXPECT_NE(stopAfter(CommandId::debugPause), 0);

    // The text changes below the run: what is marked moves with its statements while one types, and the run, which has
    // the old text, stops where it did.
    const int next = shownStop()->place.line;
    QTextCursor cursor(programEdit->document());
    cursor.insertText(QStringLiteral("9\u2192C\n"));
    programEdit->setTextCursor(cursor);
    EXPECT_TRUE(QTest::qWaitFor([] { return lineMarkOf(4).sign == LineSign::breakpoint; }, 3000));
    EXPECT_EQ(lineMarkOf(3).sign, LineSign::none);
    EXPECT_TRUE(lineMarkOf(next + 1).isNext);
    EXPECT_EQ(countTextMarks(MarkLayer::statements), 1);
    QTreeWidget *calls = tableOf("callsDock");
    Q_EMIT calls->itemActivated(calls->topLevelItem(0), 0);
    EXPECT_EQ(statementAtCaret().line, next + 1) << "a call is gone to where it stands now";
    handleCommand(CommandId::rename);
    finishLabelEdit();
    EXPECT_EQ(lineMarkOf(4).sign, LineSign::breakpoint);
    EXPECT_TRUE(stopWords().contains(textOf(Text::stopOldText))) << stopWords().toStdString();
    point = breakpointsOfItem(program).at(0);
    point.condition.clear();
    EXPECT_TRUE(breakpointChange(point));
    EXPECT_EQ(stopAfter(CommandId::debugGoOn), 3);
    point.condition = "A=5";
    EXPECT_TRUE(breakpointChange(point));
    QTest::keyClick(mainWindow, Qt::Key_F7);

    endProgram();
    ASSERT_TRUE(startProgram());
    EXPECT_EQ(breakpoints().size(), 1u) << "kept beside the library";
    EXPECT_EQ(breakpoints().at(0).condition, "A=5");
    handleCommand(CommandId::breakpointsClear);
    EXPECT_TRUE(QTest::qWaitFor([this] { return folder.read("breakpoints.json").empty(); }, 3000));
}

TEST_F(Workbench, AStoppedRunEndsWithTheProgramAndOtherItemsCanBeLookedAt) {
    const ItemId program = addWords("MAIN", "1\\->A\r2\\->A");
    const ItemId other = addWords("OTHER", "3\\->A");
    refreshTree();
    show(program);
    handleCommand(CommandId::besideProgram);
    EXPECT_TRUE(paneShown(Pane::variables));
    EXPECT_NE(stopAfter(CommandId::debugStep), 0);
    select(other);
    EXPECT_TRUE(emulatorRunning);
    EXPECT_EQ(viewItemId, other);
    handleCommand(CommandId::paneProfile);
    EXPECT_TRUE(paneShown(Pane::profile));
    handleCommand(CommandId::besideProgram);
    EXPECT_EQ(emulatorWindow->parentWidget(), clientArea);
    EXPECT_FALSE(paneShown(Pane::variables));
    EXPECT_NE(shownStop(), nullptr) << "it stands still until it is told to go on";
    EXPECT_TRUE(stopWords().contains(textOf(Text::stopOverView)));
    handleCommand(CommandId::debugGoOn);
    EXPECT_TRUE(emulatorRunning);
    EXPECT_FALSE(runIsFollowed()) << "over the view";
    EXPECT_TRUE(stopWords().isEmpty());
    handleCommand(CommandId::besideProgram);
    EXPECT_NE(stopAfter(CommandId::debugPause), 0);
    endProgram();
    EXPECT_FALSE(emulatorRunning);
    ASSERT_TRUE(startProgram());
    EXPECT_TRUE(besideProgram());
    EXPECT_TRUE(paneShown(Pane::profile)) << "as it was left";
    mainWindow->findChild<QDockWidget *>(QStringLiteral("profileDock"))->close();
    EXPECT_FALSE(paneShown(Pane::profile));
    show(program);
    lineNumberClicked(2);
    EXPECT_TRUE(QTest::qWaitFor([] { return tableOf("breakpointsDock")->topLevelItemCount() == 1; }, 3000));
    EXPECT_NE(stopAfter(CommandId::debugStep), 0);
    answer(wording(Text::ok));
    handleCommand(CommandId::remove);
    EXPECT_FALSE(emulatorRunning) << "its program is gone";
    EXPECT_TRUE(QTest::qWaitFor([] { return tableOf("breakpointsDock")->topLevelItemCount() == 0; }, 3000));
}

// The same statements in an edited text, and the next run counts without being told again.
TEST_F(Workbench, TwoProfilesStandSideBySide) {
    show(addWords("SUM", "\\For 1\\->I\\To 9\rA+I\\->A\r\\Next"));
    handleCommand(CommandId::paneProfile);
    auto *dock = mainWindow->findChild<QDockWidget *>(QStringLiteral("profileDock"));
    dock->findChild<QCheckBox *>()->setChecked(true);
    const auto countAndTimes = [&](const QString &statement) {
        for (const QTreeWidgetItem *row : tableOf("profileDock")->findItems(statement, Qt::MatchExactly, 1))
            return row->text(2) + QLatin1Char('|') + row->text(4) + QLatin1Char('|') + row->text(5);
        return QString();
    };
    const auto runToEnd = [] {
        handleCommand(CommandId::debugGoOn);
        return QTest::qWaitFor([] { return runWaitsAt() == RunEnd::end; }, 5000);
    };
    const QString statement = QStringLiteral("A\uFF0BI\u2192A");
    EXPECT_TRUE(runToEnd());
    EXPECT_TRUE(QTest::qWaitFor([&] { return countAndTimes(statement).startsWith(QLatin1Char('9')); }, 5000));
    const QString time = countAndTimes(statement).section(QLatin1Char('|'), 1, 1);
    dock->findChild<QPushButton *>()->click();
    QTest::keyClick(mainWindow, Qt::Key_F7);
    programEdit->setPlainText(programEdit->toPlainText().replace(QStringLiteral("To 9"), QStringLiteral("To 3")));
    EXPECT_TRUE(runToEnd());
    EXPECT_TRUE(QTest::qWaitFor([&] { return countAndTimes(statement).startsWith(QLatin1Char('3')); }, 5000));
    EXPECT_TRUE(countAndTimes(statement).endsWith(QLatin1Char('|') + time)) << countAndTimes(statement).toStdString();
    QTest::keyClick(mainWindow, Qt::Key_F7);
}

TEST_F(Workbench, TellsWhatARunWaitsFor) {
    show(addWords("ASK", "?\\->A"));
    handleCommand(CommandId::besideProgram);
    handleCommand(CommandId::debugGoOn);
    EXPECT_TRUE(QTest::qWaitFor([] { return stopWords() == textOf(Text::debugWaitsInput); }, 3000))
        << stopWords().toStdString();
    QTest::keyClick(emulatorWindow, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([] { return stopWords() == textOf(Text::debugEnded); }, 3000))
        << stopWords().toStdString();
    QTest::keyClick(treeView, Qt::Key_Escape);
    QTest::qWait(20);
    EXPECT_TRUE(emulatorRunning) << "Escape in the tree is none of the run's";
    handleCommand(CommandId::debugEnd);
    EXPECT_FALSE(emulatorRunning);
}

TEST_F(Workbench, ABadConditionIsToldAndTheOldOneStays) {
    const ItemId program = addWords("LOOP", "\\Do\rA+1\\->A\r\\LpWhile 1");
    show(program);
    EXPECT_NE(stopAfter(CommandId::debugStep), 0);
    lineNumberClicked(2);
    EXPECT_TRUE(QTest::qWaitFor([] { return tableOf("breakpointsDock")->topLevelItemCount() == 1; }, 3000));
    const auto *fault = mainWindow->findChild<QLabel *>(QStringLiteral("breakpointFault"));
    const auto conditionAfter = [&](const QString &typed) {
        tableOf("breakpointsDock")->topLevelItem(0)->setText(1, typed);
        QTest::qWait(20);
        return breakpointsOfItem(program).at(0).condition;
    };
    EXPECT_EQ(conditionAfter(QStringLiteral("A>3")), "A>3");
    EXPECT_FALSE(fault->isVisibleTo(fault->parentWidget()));
    EXPECT_EQ(conditionAfter(QStringLiteral("A>")), "A>3");
    EXPECT_TRUE(fault->isVisibleTo(fault->parentWidget()));
    EXPECT_TRUE(fault->text().contains(QStringLiteral("Syn ERROR"))) << fault->text().toStdString();
    EXPECT_EQ(tableOf("breakpointsDock")->topLevelItem(0)->text(1), QStringLiteral("A>3"));
    EXPECT_EQ(conditionAfter(QString()), "");
    EXPECT_FALSE(fault->isVisibleTo(fault->parentWidget()));
    tableOf("breakpointsDock")->setCurrentItem(tableOf("breakpointsDock")->topLevelItem(0));
    QTest::keyClick(tableOf("breakpointsDock"), Qt::Key_Delete);
    EXPECT_TRUE(breakpointsOfItem(program).empty());
    EXPECT_TRUE(shown.empty()) << "no box";
}

TEST_F(Workbench, OnWishARunStopsWhereItMakesAnError) {
    show(addWords("WRONG", "1\\->A\rB+\\->A\r\\Do\r\\LpWhile 1"));
    EXPECT_EQ(stopAfter(CommandId::debugStep), 1);
    auto *errors = mainWindow->findChild<QDockWidget *>(QStringLiteral("breakpointsDock"))->findChild<QCheckBox *>();
    errors->setChecked(true);
    EXPECT_EQ(stopAfter(CommandId::debugGoOn), 2);
    EXPECT_EQ(shownStop()->reason, StopReason::error);
    errors->setChecked(false);
}

// Something else brings the panes up between a command and the look at where it led: they don't read what the run is
// changing by then.
TEST_F(Workbench, NothingIsReadFromARunThatGoesOn) {
    show(addWords("LOOP", "\\Do\rA+1\\->A\r\\LpWhile 1"));
    EXPECT_NE(stopAfter(CommandId::debugStep), 0);
    tableOf("watchesDock")->topLevelItem(0)->setText(0, QStringLiteral("A"));
    EXPECT_TRUE(QTest::qWaitFor([] { return tableOf("watchesDock")->topLevelItemCount() == 2; }, 3000));
    handleCommand(CommandId::debugGoOn);
    while (debugState() != DebugState::runs) QThread::msleep(1);
    QThread::msleep(20);
    debuggingChanged();
    EXPECT_NE(shownStop(), nullptr) << "no look was taken yet";
    EXPECT_EQ(valueOf("A"), QStringLiteral("0"));
    EXPECT_EQ(tableOf("watchesDock")->topLevelItem(0)->text(1), QStringLiteral("0"));
    EXPECT_EQ(countTextMarks(MarkLayer::statements), 1) << "nor does the mark go for a moment";
    QTest::keyClick(mainWindow, Qt::Key_F7);
}

// One run is followed at first alone, the next one at last alone, of another program.
TEST_F(Workbench, ARunThatIsFollowedLateHasItsOwnBreakpoints) {
    const ItemId first = addWords("FIRST", "\\Do\r\\LpWhile 1");
    const ItemId second = addWords("SECOND", "\\Do\rA+1\\->A\rB+1\\->B\rC+1\\->C\r\\LpWhile 1");
    refreshTree();
    show(second);
    lineNumberClicked(4);
    show(first);
    EXPECT_NE(stopAfter(CommandId::debugStep), 0);
    handleCommand(CommandId::debugGoOn);
    EXPECT_TRUE(QTest::qWaitFor([] { return shownStop() == nullptr; }, 3000));
    handleCommand(CommandId::besideProgram);
    EXPECT_FALSE(runIsFollowed());
    QTest::keyClick(mainWindow, Qt::Key_F7);
    show(second);
    QTest::keyClick(mainWindow, Qt::Key_F7);
    ASSERT_TRUE(emulatorRunning);
    EXPECT_EQ(stopAfter(CommandId::besideProgram), 4);
    EXPECT_EQ(valueOf("A"), valueOf("B"));
    QTest::keyClick(mainWindow, Qt::Key_F7);
}

// A breakpoint among folded lines shows at the line that stays, and whoever stops there sees it.
TEST_F(Workbench, ABreakpointInAFoldIsSeenAndAStopThereUnfolds) {
    show(addWords("LOOP", "0\\->A\r\\Do\rA+1\\->A\rB+1\\->B\r\\LpWhile 1"));
    lineNumberClicked(3);
    EXPECT_TRUE(QTest::qWaitFor([] { return lineMarkOf(3).sign == LineSign::breakpoint; }, 3000));
    const auto block = [](int line) { return programEdit->document()->findBlockByNumber(line - 1); };
    EXPECT_EQ(hiddenMarksBelow(block(2)).sign, LineSign::none) << "nothing is folded yet";
    handleCommand(CommandId::codeFoldAll);
    ASSERT_FALSE(block(3).isVisible());
    EXPECT_EQ(hiddenMarksBelow(block(2)).sign, LineSign::breakpoint);
    EXPECT_EQ(hiddenMarksBelow(block(2)).lines, QStringList{QStringLiteral("3")});
    EXPECT_EQ(hiddenMarksBelow(block(1)).sign, LineSign::none) << "the line behind is in sight";
    EXPECT_EQ(stopAfter(CommandId::debugGoOn), 3);
    EXPECT_TRUE(block(3).isVisible());
    handleCommand(CommandId::codeFoldAll);
    EXPECT_TRUE(hiddenMarksBelow(block(2)).isNext);
    QTest::keyClick(mainWindow, Qt::Key_F7);
}

// A long row ends with a whole number, and tells the rest.
TEST_F(Workbench, ARowOfAMatrixIsCutBetweenItsNumbersAndToldWhole) {
    EXPECT_EQ(cutBetweenCells(QStringLiteral("  1  123.5  -7"), 14), QStringLiteral("  1  123.5  -7"));
    EXPECT_EQ(cutBetweenCells(QStringLiteral("  1  123.5  -7"), 13), QStringLiteral("  1  123.5 \u2026"));
    EXPECT_EQ(cutBetweenCells(QStringLiteral("  1  123.5  -7"), 11), QStringLiteral("  1 \u2026"));
    EXPECT_EQ(cutBetweenCells(QStringLiteral("  1  123.5  -7"), 3), QStringLiteral("  1  123.5  -7"));
    QStringList cells;
    for (int column = 1; column <= 30; column++) cells << QString::number(column * 1000);
    const QString tip = tipOfCells(cells.join(QStringLiteral("  ")), 4);
    EXPECT_TRUE(tip.contains(QStringLiteral("[4,1] ")) && tip.contains(QStringLiteral("30000"))) << tip.toStdString();
    EXPECT_TRUE(tip.contains(QRegularExpression(QStringLiteral("\\[4,10\\] +10000 ")))) << tip.toStdString();

    show(addWords("GRID", "{2,40}\\->\\Dim \\Mat A\r\\Fill(123.5,\\Mat A)\r1\\->A"));
    EXPECT_EQ(stopAfter(CommandId::debugStep), 1);
    EXPECT_EQ(stopAfter(CommandId::debugStep), 2);
    EXPECT_EQ(stopAfter(CommandId::debugStep), 3);
    rowNamed("variablesDock", QStringLiteral("Mat A"))->setExpanded(true);
    QTreeWidgetItem *row = rowNamed("variablesDock", QStringLiteral("Mat A"))->child(0);
    QTreeWidget *table = tableOf("variablesDock");
    table->scrollToItem(row);
    const QPoint at = table->visualItemRect(row).center();
    QHelpEvent help(QEvent::ToolTip, {table->columnViewportPosition(1) + 5, at.y()},
                    table->viewport()->mapToGlobal(at));
    QApplication::sendEvent(table->viewport(), &help);
    const QString whole = QToolTip::text();
    const QPoint ofName(5, at.y());
    QHelpEvent uncut(QEvent::ToolTip, ofName, table->viewport()->mapToGlobal(ofName));
    QApplication::sendEvent(table->viewport(), &uncut);
    EXPECT_EQ(QToolTip::text(), textOf(Text::tipPaneVariables)) << "what is whole needs no tip of its own";
    EXPECT_TRUE(whole.contains(QStringLiteral("[1,10]"))) << whole.toStdString();
    QTest::keyClick(mainWindow, Qt::Key_F7);
}

// What is typed into the panes counts, and a pane that was torn off is so again.
TEST_F(Workbench, PanesTakeWhatIsTypedAndStayWhereTheyWerePut) {
    const ItemId program = addWords("LOOP", "0\\->A\r\\Do\rA+1\\->A\r\\LpWhile 1");
    show(program);
    EXPECT_NE(stopAfter(CommandId::debugStep), 0);
    QTreeWidget *watches = tableOf("watchesDock");
    watches->topLevelItem(0)->setText(0, QStringLiteral("2A+1"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return watches->topLevelItemCount() == 2; }, 3000));
    EXPECT_EQ(watches->topLevelItem(0)->text(1), QStringLiteral("1"));
    watches->topLevelItem(1)->setText(0, QStringLiteral("1/"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return watches->topLevelItemCount() == 3; }, 3000));
    EXPECT_TRUE(watches->topLevelItem(1)->text(1).contains(QStringLiteral("Syn ERROR")));

    lineNumberClicked(3);
    EXPECT_TRUE(QTest::qWaitFor([] { return tableOf("breakpointsDock")->topLevelItemCount() == 1; }, 3000));
    tableOf("breakpointsDock")->topLevelItem(0)->setText(2, QStringLiteral("4"));
    EXPECT_EQ(stopAfter(CommandId::debugGoOn), 3);
    EXPECT_EQ(valueOf("A"), QStringLiteral("3")) << "the fourth time";
    EXPECT_EQ(watches->topLevelItem(0)->text(1), QStringLiteral("7"));
    EXPECT_FALSE(watches->topLevelItem(1)->font(1).bold());
    watches->setCurrentItem(watches->topLevelItem(0));
    QTest::keyClick(watches, Qt::Key_Delete);
    EXPECT_EQ(watches->topLevelItemCount(), 2);
    tableOf("breakpointsDock")->topLevelItem(0)->setText(2, QStringLiteral("some"));
    QTest::qWait(20);
    EXPECT_EQ(breakpointsOfItem(program).at(0).count, 4u);
    // By the mouse and by a key, and back by the first of them.
    QTreeWidget *points = tableOf("breakpointsDock");
    const auto tick = [&] {
        const QRect row = points->visualItemRect(points->topLevelItem(0));
        QTest::mouseClick(points->viewport(), Qt::LeftButton, Qt::NoModifier,
                          row.topLeft() + QPoint(8, row.height() / 2));
        QTest::qWait(20);
    };
    mainWindow->findChild<QDockWidget *>(QStringLiteral("breakpointsDock"))->raise();
    QTest::qWait(20);
    tick();
    EXPECT_FALSE(breakpointsOfItem(program).at(0).enabled);
    tick();
    EXPECT_TRUE(breakpointsOfItem(program).at(0).enabled);
    points->setCurrentItem(points->topLevelItem(0), 1);
    QTest::keyClick(points, Qt::Key_Space);
    EXPECT_TRUE(QTest::qWaitFor([] { return lineMarkOf(3).sign == LineSign::idleBreakpoint; }, 3000));
    handleCommand(CommandId::debugGoOn);
    EXPECT_TRUE(QTest::qWaitFor([] { return shownStop() == nullptr; }, 3000)) << "it is switched off";
    EXPECT_FALSE(QTest::qWaitFor([] { return shownStop() != nullptr; }, 300));
    QTest::keyClick(mainWindow, Qt::Key_F7);

    const QRect place(140, 120, 333, 222);
    auto *calls = mainWindow->findChild<QDockWidget *>(QStringLiteral("callsDock"));
    calls->setFloating(true);
    calls->setGeometry(place);
    mainWindow->addDockWidget(Qt::LeftDockWidgetArea,
                              mainWindow->findChild<QDockWidget *>(QStringLiteral("watchesDock")));
    endProgram();
    ASSERT_TRUE(startProgram());
    const auto *torn = mainWindow->findChild<QDockWidget *>(QStringLiteral("callsDock"));
    EXPECT_TRUE(torn->isFloating());
    EXPECT_TRUE(QTest::qWaitFor([&] { return torn->isVisible(); }, 3000));
    EXPECT_EQ(torn->geometry(), place);
    EXPECT_EQ(mainWindow->dockWidgetArea(mainWindow->findChild<QDockWidget *>(QStringLiteral("watchesDock"))),
              Qt::LeftDockWidgetArea);
}

// All of the window, with the calculator's display in it and no symbols before that; also on 1,024 by 600
// (shell_small).
TEST_F(Workbench, TheWindowStaysOnItsScreen) {
    show(addWords("LOOP", "0\\->A\r\\Do\rA+1\\->A\r\\LpWhile 1"));
    const auto isOnScreen = [] {
        return mainWindow->screen()->availableGeometry().contains(mainWindow->frameGeometry());
    };
    for (const char *pane : {"variablesDock", "watchesDock"}) {
        EXPECT_NE(stopAfter(CommandId::debugStep), 0);
        mainWindow->findChild<QDockWidget *>(QString::fromLatin1(pane))->raise();
        QTest::qWait(100);
        EXPECT_TRUE(QTest::qWaitFor(isOnScreen, 2000)) << pane << " " << mainWindow->frameGeometry().height();
        EXPECT_GE(emulatorWindow->height(), displayHeight);
        const auto *symbols = mainWindow->findChild<QWidget *>(QStringLiteral("symbolsWindow"));
        const QRect calculator(emulatorWindow->mapToGlobal(QPoint()), emulatorWindow->size());
        EXPECT_FALSE(symbols->isVisible() && symbols->frameGeometry().intersects(calculator)) << pane;
        QTest::keyClick(mainWindow, Qt::Key_F7);
    }
}

}  // namespace numalink
