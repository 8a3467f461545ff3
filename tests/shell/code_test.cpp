// What the editor knows of programs, in the real window: the list of completions, problems and mends, indentation,
// moving about, renaming. What is found is tested in tests/language.
#include "shell/editor/completion_list.h"
#include "shell/editor/language_tips.h"
#include "shell/editor/program_edit.h"
#include "shell/editor/program_reading.h"
#include "shell/editor/program_store.h"
#include "shell/editor/program_view.h"
#include "shell/editor/statement_marks.h"
#include "shell/shell_fixture.h"
#include "shell/workbench/code_panes.h"
#include "text/program_bytes.h"

namespace numalink {

struct Code : ShellTest {
    ItemId open(std::string_view words, const std::string &name = "PROG") {
        EXPECT_TRUE(running || startProgram());
        const ItemId id = addWords(name, words);
        show(id);
        programEdit->setFocus();
        return id;
    }
    static std::string stored(ItemId id) {
        StoredItem item;
        EXPECT_TRUE(storeReadItem(id, item));
        return wordsFromTokens(programTokens(item.data));
    }
    static void key(int code, Qt::KeyboardModifiers held = {}) {
        QTest::keyClick(programEdit, static_cast<Qt::Key>(code), held);
    }
    // The offscreen platform takes the focus from the window as the list closes.
    static void type(const QString &text) { QTest::keyClicks(programEdit, text); }
    static QTreeView *list() {
        for (QWidget *window : QApplication::topLevelWidgets())
            if (window->objectName() == QLatin1String("completionList")) return static_cast<QTreeView *>(window);
        return mainWindow->findChild<QTreeView *>(QStringLiteral("completionList"));
    }
    static QString offered(int row) { return list()->model()->index(row, 0).data().toString(); }
    static void waitForProblems() { QTest::qWait(700); }
};

TEST_F(Code, CompletionPutsTheTokenAndStaysOutOfTheWay) {
    const ItemId id = open("");
    type(QStringLiteral("Loc"));
    ASSERT_TRUE(completionShown());
    EXPECT_EQ(offered(0), QStringLiteral("Locate"));
    key(Qt::Key_Tab);
    EXPECT_FALSE(completionShown());
    EXPECT_TRUE(signatureShown());
    type(QStringLiteral(" 1,1"));
    key(Qt::Key_Escape);
    EXPECT_FALSE(signatureShown());
    type(QStringLiteral(",A"));
    EXPECT_TRUE(signatureShown()) << "each argument shows it anew";
    key(Qt::Key_Return);
    type(QStringLiteral("AB"));
    // The line's end is a line end, unless one was chosen.
    key(Qt::Key_Return);
    EXPECT_FALSE(completionShown());
    type(QStringLiteral("wend"));
    ASSERT_TRUE(completionShown());
    key(Qt::Key_Down);
    key(Qt::Key_Escape);
    EXPECT_FALSE(completionShown());
    key(Qt::Key_Space, Qt::ControlModifier);
    handleCommand(CommandId::codeComplete);
    ASSERT_TRUE(completionShown());
    EXPECT_EQ(offered(0), QStringLiteral("WhileEnd"));
    key(Qt::Key_Return);
    EXPECT_EQ(viewToText().section(QLatin1Char('\n'), 2), QStringLiteral("WhileEnd"));
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(viewToText().section(QLatin1Char('\n'), 2), QStringLiteral("wend"));
    QTest::keyClick(programEdit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(leaveCurrentView());
    EXPECT_EQ(stored(id), "\\Locate 1,1,A\r\nAB\r\n\\WhileEnd");
}

TEST_F(Code, OffersLabelsAndTheProgramsOfTheFolder) {
    ASSERT_TRUE(startProgram());
    addProgram("SUBPROG", "1");
    open("");
    type(QStringLiteral("Lbl 7"));
    key(Qt::Key_Return);
    QTest::qWait(100);
    type(QStringLiteral("Goto "));
    handleCommand(CommandId::codeComplete);
    ASSERT_TRUE(completionShown());
    EXPECT_EQ(offered(0), QStringLiteral("7"));
    key(Qt::Key_Return);
    key(Qt::Key_Return);
    type(QStringLiteral("Prog \"SU"));
    ASSERT_TRUE(completionShown());
    EXPECT_EQ(offered(0), QStringLiteral("SUBPROG"));
    settingsSetInt(setting::completeWhileTyping, 0);
    key(Qt::Key_Escape);
    type(QStringLiteral("B"));
    EXPECT_FALSE(completionShown());
}

TEST_F(Code, ProblemsAreShownAndMended) {
    const ItemId id = open("\\If A=1\r\n2\\->A\r\n\\IfEnd\r\n\\Goto9");
    waitForProblems();
    ASSERT_EQ(problemsOnView().size(), 2u);
    EXPECT_EQ(programEdit->extraSelections().size(), 4) << "and the two parts of the block at the caret";
    handleCommand(CommandId::codeProblems);
    auto *dock = mainWindow->findChild<QDockWidget *>(QStringLiteral("problemsDock"));
    auto *table = static_cast<QTreeWidget *>(dock->widget());
    ASSERT_EQ(table->topLevelItemCount(), 2);
    EXPECT_EQ(table->topLevelItem(0)->text(0), QStringLiteral("2"));
    handleCommand(CommandId::codeNextProblem);
    EXPECT_EQ(programEdit->textCursor().blockNumber(), 1);
    handleCommand(CommandId::codeMend);
    EXPECT_EQ(viewToText().section(QLatin1Char('\n'), 1, 1), QStringLiteral("Then 2\u2192A"));
    waitForProblems();
    EXPECT_EQ(problemsOnView().size(), 1u);
    handleCommand(CommandId::codeNextProblem);
    EXPECT_EQ(programEdit->textCursor().selectedText(), QStringLiteral("9"));
    EXPECT_TRUE(leaveCurrentView());
    EXPECT_EQ(stored(id), "\\If A=1\r\n\\Then 2\\->A\r\n\\IfEnd\r\n\\Goto9");
}

TEST_F(Code, BlocksStandToTheRightWithoutAByteOfIt) {
    open("\\While A\r\nB\r\n\\WhileEnd\r\nC");
    const auto left = [](int line) {
        return programEdit->cursorRect(QTextCursor(programEdit->document()->findBlockByNumber(line))).left();
    };
    EXPECT_EQ(left(0), left(2));
    EXPECT_GT(left(1), left(0));
    EXPECT_EQ(left(3), left(0));
    EXPECT_EQ(viewToText(), QStringLiteral("While A\nB\nWhileEnd\nC"));
    EXPECT_FALSE(programChanged());
    EXPECT_FALSE(programEdit->document()->isUndoAvailable());
    // What is under the pointer is where it is seen.
    const QTextCursor inner(programEdit->document()->findBlockByNumber(1));
    EXPECT_EQ(programEdit->cursorForPosition(programEdit->cursorRect(inner).center()).position(), inner.position());
    handleCommand(CommandId::codeIndent);
    EXPECT_EQ(left(1), left(0));
}

TEST_F(Code, AMendIsOfTheTextAsItIs) {
    open("\\If A=1\r\n2\\->A\r\n\\IfEnd");
    waitForProblems();
    type(QStringLiteral("77"));
    key(Qt::Key_Return);
    key(Qt::Key_Down);
    handleCommand(CommandId::codeMend);
    EXPECT_EQ(viewToText(), QStringLiteral("77\nIf A=1\nThen 2\u2192A\nIfEnd"));
}

// The lines that are in sight, by their numbers from 0.
std::string shownLines() {
    std::string shown;
    for (QTextBlock block = programEdit->document()->begin(); block.isValid(); block = block.next())
        if (block.isVisible()) shown += std::to_string(block.blockNumber());
    return shown;
}

void caretTo(int line) { programEdit->setTextCursor(QTextCursor(programEdit->document()->findBlockByNumber(line))); }

constexpr char nested[] = "\\While A\r\n\\If B\r\n\\Then C\r\n9\\->D\r\n\\IfEnd\r\n\\WhileEnd\r\n5";

TEST_F(Code, BlocksFoldWithoutAByteOfIt) {
    const ItemId id = open(nested);
    const QString text = viewToText();
    caretTo(3);
    handleCommand(CommandId::codeFold);
    EXPECT_EQ(shownLines(), "01456");
    EXPECT_EQ(programEdit->textCursor().blockNumber(), 1) << "the caret stays in sight";
    key(Qt::Key_Down);
    EXPECT_EQ(programEdit->textCursor().blockNumber(), 4) << "and goes past what is hidden";
    EXPECT_EQ(shownLines(), "01456");
    handleCommand(CommandId::codeFold);
    EXPECT_EQ(shownLines(), "056") << "the next one around it";
    EXPECT_EQ(programEdit->accessibleDescription(), textOf(Text::foldedCount, {"4"}));
    EXPECT_TRUE(viewToText() == text && !programChanged() && !programEdit->document()->isUndoAvailable());
    // A copy is whole.
    programEdit->selectAll();
    handleCommand(CommandId::copyText);
    EXPECT_EQ(QApplication::clipboard()->text(), text);
    EXPECT_EQ(shownLines(), "056");
    // What was folded within stays so.
    caretTo(0);
    handleCommand(CommandId::codeUnfold);
    EXPECT_EQ(shownLines(), "01456");
    // Typing ahead of it, undo and leaving the program leave the fold with its lines.
    caretTo(0);
    type(QStringLiteral("7"));
    key(Qt::Key_Return);
    QTest::qWait(80);
    EXPECT_EQ(shownLines(), "012567");
    undoInProgram();
    undoInProgram();
    QTest::qWait(80);
    EXPECT_EQ(shownLines(), "01456");
    EXPECT_EQ(viewToText(), text);
    show(addProgram("OTHER", "1"));
    show(id);
    EXPECT_EQ(shownLines(), "01456");
    handleCommand(CommandId::codeFoldAll);
    EXPECT_EQ(shownLines(), "056");
    handleCommand(CommandId::codeUnfoldAll);
    EXPECT_EQ(shownLines(), "0123456");
    EXPECT_EQ(stored(id), nested);
}

TEST_F(Code, WhatLeadsIntoAFoldShowsIt) {
    open(nested);
    const auto folded = [] {
        handleCommand(CommandId::codeFoldAll);
        return shownLines();
    };
    EXPECT_EQ(folded(), "056");
    putCaretAt(programEdit->document()->findBlockByNumber(3).position());
    EXPECT_EQ(shownLines(), "0123456");
    EXPECT_EQ(folded(), "056");
    showStatement(4, 0);
    EXPECT_EQ(shownLines(), "0123456") << "a stop";
    EXPECT_EQ(folded(), "056");
    programEdit->setTextCursor(programEdit->document()->find(QStringLiteral("9")));
    EXPECT_EQ(shownLines(), "0123456") << "what was found";
    // The block is none any more.
    EXPECT_EQ(folded(), "056");
    caretTo(0);
    key(Qt::Key_Delete);
    QTest::qWait(80);
    EXPECT_EQ(shownLines(), "01456") << "the If within still is one";
    undoInProgram();
    // Backspace behind a fold joins a hidden line, which is in sight then.
    handleCommand(CommandId::codeFoldAll);
    caretTo(5);
    key(Qt::Key_Backspace);
    EXPECT_EQ(shownLines(), "045");
    undoInProgram();
    EXPECT_FALSE(programChanged());
}

TEST_F(Code, TheColumnFoldsByTheMouse) {
    open(nested);
    auto *column = programEdit->findChild<QWidget *>(QStringLiteral("foldColumn"));
    const auto click = [&](int line) {
        const QRect place = programEdit->cursorRect(QTextCursor(programEdit->document()->findBlockByNumber(line)));
        QTest::mouseClick(column, Qt::LeftButton, {}, QPoint(5, place.center().y()));
    };
    click(1);
    EXPECT_EQ(shownLines(), "01456");
    click(4);
    EXPECT_EQ(shownLines(), "01456") << "nothing opens there";
    click(0);
    EXPECT_EQ(shownLines(), "056");
    const auto *edit = static_cast<ProgramEdit *>(programEdit);
    QTest::mouseClick(programEdit->viewport(), Qt::LeftButton, {},
                      edit->foldedDots(programEdit->document()->begin()).center());
    EXPECT_EQ(shownLines(), "01456");
}

TEST_F(Code, GoesToNamesAndBackAndRenamesThem) {
    ASSERT_TRUE(startProgram());
    const ItemId sub = addProgram("SUB", tokensOf("\\Prog \"MAIN\""));
    const ItemId main = open("\\Goto1\r\n\\Lbl 1\r\n\\Prog \"SUB\"", "MAIN");
    programEdit->moveCursor(QTextCursor::Right);
    handleCommand(CommandId::codeDefinition);
    EXPECT_EQ(programEdit->textCursor().blockNumber(), 1);
    whileOpen = [] { QApplication::activeModalWidget()->findChild<QLineEdit *>()->setText(QStringLiteral("A")); };
    answers = {"Return"};
    handleCommand(CommandId::codeRename);
    EXPECT_EQ(viewToText(), QStringLiteral("Goto A\nLbl A\nProg \"SUB\""));
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(viewToText(), QStringLiteral("Goto 1\nLbl 1\nProg \"SUB\""));
    programEdit->moveCursor(QTextCursor::End);
    programEdit->moveCursor(QTextCursor::Left);
    handleCommand(CommandId::codeUses);
    const auto *uses = mainWindow->findChild<QDockWidget *>(QStringLiteral("usesDock"));
    EXPECT_EQ(static_cast<QTreeWidget *>(uses->widget())->topLevelItemCount(), 1);
    handleCommand(CommandId::codeDefinition);
    EXPECT_EQ(viewItemId, sub);
    handleCommand(CommandId::codeBack);
    EXPECT_EQ(viewItemId, main);
    whileOpen = [] { QApplication::activeModalWidget()->findChild<QLineEdit *>()->setText(QStringLiteral("OTHER")); };
    answers = {"Return"};
    handleCommand(CommandId::codeRename);
    EXPECT_EQ(storeReadEntry(sub)->name, "OTHER");
    EXPECT_EQ(stored(main), "\\Goto1\r\n\\Lbl 1\r\n\\Prog \"OTHER\"");
    treeView->setFocus();
    handleCommand(CommandId::undo);
    EXPECT_EQ(storeReadEntry(sub)->name, "SUB");
    EXPECT_EQ(stored(main), "\\Goto1\r\n\\Lbl 1\r\n\\Prog \"SUB\"");
}

}  // namespace numalink
