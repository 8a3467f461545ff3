// The editor by key events: what is typed becomes tokens at once, untouched bytes stay, undo goes key by key.
#include "calculator/frames.h"
#include "shell/app/draft_offer.h"
#include "shell/editor/program_document.h"
#include "shell/editor/program_drafts.h"
#include "shell/editor/program_store.h"
#include "shell/editor/program_view.h"
#include "shell/shell_fixture.h"
#include "text/auto_correct.h"

namespace numalink {

struct Editor : ShellTest {
    ItemId open(const std::string &tokens) {
        EXPECT_TRUE(running || startProgram());
        const ItemId id = addProgram("PROG", tokens);
        show(id);
        programEdit->setFocus();
        return id;
    }
    // Bytes between ':' and the end mark, as the library has them.
    static std::string stored(ItemId id) {
        StoredItem item;
        if (!storeReadItem(id, item) || item.data.empty()) return "none";
        const ByteView tokens = programTokens(item.data);
        return {tokens.begin(), tokens.end()};
    }
    static void key(int code, Qt::KeyboardModifiers held = {}) {
        QTest::keyClick(programEdit, static_cast<Qt::Key>(code), held);
    }
    static void typeCodes(std::string_view codes) { typeText(qtFromCodes(codes)); }
    static void typeText(const QString &text) {
        for (const QChar character : text) {
            QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(character));
            QApplication::sendEvent(programEdit, &press);
        }
    }
    static int caret() { return programEdit->textCursor().position(); }
};

TEST_F(Editor, OpeningAloneStoresNothingAndAnEditOnlyWhatItTouches) {
    const ItemId id = open("\"Score*\"A or DO\xFA\rX");
    EXPECT_FALSE(programChanged());
    EXPECT_FALSE(programEdit->document()->isUndoAvailable());
    handleCommand(CommandId::refresh);
    StoredItem item;
    ASSERT_TRUE(storeReadItem(id, item));
    EXPECT_EQ(item.dataSize, 20u);  // no checksum place: it was never written
    key(Qt::Key_End);
    typeKeys(QStringLiteral("1"));
    key(Qt::Key_Home);
    typeKeys(QStringLiteral("-"));
    ASSERT_TRUE(storeRename(id, "NAMED"));
    EXPECT_TRUE(leaveCurrentView());
    EXPECT_EQ(stored(id), "\x99\"Score*\"A or DO\xFA\x31\rX");
    EXPECT_EQ(storeReadEntry(id)->name, "NAMED") << "as it is called by now";
}

TEST_F(Editor, KeysBecomeTokensAndUndoGoesKeyByKey) {
    const ItemId id = open("");
    typeKeys(QStringLiteral("if A>1"));
    key(Qt::Key_Return);
    typeKeys(QStringLiteral("2->B"));
    EXPECT_EQ(viewToText().toStdString().substr(0, 3), "If ");
    for (const char16_t *line : {u"2\u2192B", u"2\u2192", u"2\u2212", u"2"}) {
        EXPECT_EQ(programEdit->textCursor().block().text(), QString::fromUtf16(line));
        EXPECT_EQ(programEdit->textCursor().positionInBlock(), QString::fromUtf16(line).size());
        key(Qt::Key_Z, Qt::ControlModifier);
    }
    for (int step = 0; step < 4; step++)
        QTest::keyClick(programEdit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(programEdit->textCursor().block().text(), QStringLiteral("2\u2192B"));
    EXPECT_EQ(programEdit->textCursor().positionInBlock(), 3);
    EXPECT_TRUE(leaveCurrentView());
    EXPECT_EQ(stored(id), std::string("\xF7\x00\x41>1\r2\x0E\x42", 9));
    StoredItem item;
    ASSERT_TRUE(storeReadItem(id, item));
    EXPECT_TRUE(frameIsGood(item.data));
    EXPECT_EQ(decodeProgramInfo(item.head)->imageLength, item.dataSize);
}

TEST_F(Editor, WhatWasStoredIsUndoneInTheTextAndInTheTree) {
    const ItemId id = open("AB");
    const ItemId other = addProgram("OTHER", "C");
    refreshTree();
    key(Qt::Key_A, Qt::ControlModifier);
    key(Qt::Key_Delete);
    select(other);
    EXPECT_EQ(stored(id), "");
    select(id);
    programEdit->setFocus();
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(viewToText(), QStringLiteral("AB"));
    treeView->setFocus();
    Q_EMIT menuAt(MenuPosition::edit)->aboutToShow();
    EXPECT_EQ(commandAction(CommandId::undo)->text(), textOf(Text::undoEdit, {"PROG"})) << "it is stored by leaving it";
    QTest::keyClick(mainWindow, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(viewToText(), QString());
    EXPECT_FALSE(programEdit->document()->isUndoAvailable()) << "these bytes were stored by nobody's typing";
    QTest::keyClick(mainWindow, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(stored(id), "AB");
    EXPECT_EQ(viewToText(), QStringLiteral("AB"));
    EXPECT_EQ(selectedItemId(), id);
}

TEST_F(Editor, EveryDisplayTextIsReachedByKeys) {
    open("");
    const auto typed = [](std::string_view codes) {
        key(Qt::Key_A, Qt::ControlModifier);
        key(Qt::Key_Delete);
        typeCodes(codes);
        ViewLine line;
        const Bytes bytes = lineBytes(readBlock(programEdit->document()->begin(), line)).bytes;
        return std::string(bytes.begin(), bytes.end());
    };
    int reached = 0;
    for (std::size_t i = 0; i < tokenCount(); i++) {
        const std::string text(tokenDisplay(tokenRecord(i)));
        if (text.empty() || text == "\r") continue;
        const TypedToken whole = textToToken(text, false, true);
        if (whole.used != static_cast<int>(text.size())) continue;
        std::string token(1, static_cast<char>(whole.byte1));
        if (whole.length == 2) token += static_cast<char>(whole.byte2);
        EXPECT_EQ(typed(text), token) << i << " " << text;
        reached++;
    }
    EXPECT_GT(reached, 560);
}

TEST_F(Editor, InputMethodsSymbolsAndPasteAreConvertedToo) {
    const ItemId id = open("*");
    key(Qt::Key_End);
    QInputMethodEvent commit;
    commit.setCommitString(QStringLiteral("*"));
    QApplication::sendEvent(programEdit, &commit);
    auto *symbols = mainWindow->findChild<QWidget *>(QStringLiteral("symbolsWindow"));
    ASSERT_NE(symbols, nullptr);
    EXPECT_TRUE(symbols->isVisible());
    const QList<QToolButton *> buttons = symbols->findChildren<QToolButton *>();
    ASSERT_EQ(buttons.size(), 22);
    QTest::mouseClick(buttons[3], Qt::LeftButton);  // division
    QApplication::clipboard()->setText(QStringLiteral("1->A\nwhile A\u2265\u03C0\n  int(A) <= \u201Cb\u2013c\u201D"));
    key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_TRUE(leaveCurrentView());
    EXPECT_FALSE(symbols->isVisible());
    showSelectedAgain();
    EXPECT_TRUE(symbols->isVisible());
    symbols->close();
    EXPECT_TRUE(leaveCurrentView());
    showSelectedAgain();
    EXPECT_FALSE(symbols->isVisible()) << "the user has closed it";
    EXPECT_EQ(stored(id), "*\xA9\xB9\x31\x0E\x41\r\xF7\x08\x41\x12\xD0\r\xA6(A)\x10\"b\x99\x63\"");
}

TEST_F(Editor, CopyIsReadableAndComesBackWithItsBytes) {
    const std::string line = "\"or*\"\x0E\x41\x89\x31<\xFA\r";
    const ItemId id = open(line);
    key(Qt::Key_A, Qt::ControlModifier);
    key(Qt::Key_C, Qt::ControlModifier);
    QString mail = QApplication::clipboard()->text();
    EXPECT_EQ(QString(mail).remove(QChar(0x200C)).replace(QChar(0xFF0B), QLatin1Char('+')),
              QStringLiteral("\"or*\"\u2192A+1<<250> \n"));
    key(Qt::Key_End, Qt::ControlModifier);
    key(Qt::Key_V, Qt::ControlModifier);
    // As a mail brings it: other line ends, no blanks ahead of them, and nothing of ours on the clipboard.
    QApplication::clipboard()->setText(mail.replace(QStringLiteral(" \n"), QStringLiteral("\r\n")));
    key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_TRUE(leaveCurrentView());
    EXPECT_EQ(stored(id), line + line + line);
}

TEST_F(Editor, TextThatCannotBeStoredIsNeverLost) {
    const ItemId id = open("A\rB");
    const ItemId other = addProgram("OTHER", "X");
    refreshTree();
    key(Qt::Key_End, Qt::ControlModifier);
    typeText(QStringLiteral("\u20AC1"));
    key(Qt::Key_Home, Qt::ControlModifier);
    for (int attempt = 0; attempt < 2; attempt++) {
        answer(wording(Text::goBack));
        select(other);
        ASSERT_EQ(shown.size(), static_cast<std::size_t>(attempt + 1));
        EXPECT_EQ(shown.back(), wording(Text::lineNotStorable, {"2"}) + "\nLine 2: € (U+20AC)");
        EXPECT_EQ(selectedItemId(), id);
        EXPECT_EQ(caret(), 3);
    }
    answer(wording(Text::goBack));
    handleCommand(CommandId::newProgram);
    EXPECT_EQ(storeListItems().size(), 2u) << "not even the folder for it was made";
    EXPECT_EQ(stored(id), "A\rB");
    answer(wording(Text::keepDraft));
    std::filesystem::permissions(folder.path + "storage.dat", std::filesystem::perms::owner_all);
    endProgram();
    EXPECT_EQ(std::filesystem::status(folder.path + "draft-1.txt").permissions(), std::filesystem::perms::owner_all);
    EXPECT_TRUE(folder.read("draft-1.txt").find("\u20AC1") != std::string::npos);
    answer(wording(Text::draftOpen));
    ASSERT_TRUE(startProgram());
    EXPECT_TRUE(QTest::qWaitFor([] { return viewToText() == QStringLiteral("A\nB\u20AC1"); }));
    key(Qt::Key_End, Qt::ControlModifier);
    key(Qt::Key_Backspace);
    key(Qt::Key_Backspace);
    typeText(QStringLiteral("2"));
    EXPECT_TRUE(leaveCurrentView());
    EXPECT_EQ(stored(id), "A\rB2");
    EXPECT_EQ(folder.read("draft-1.txt"), "");
}

TEST_F(Editor, SignalsKeepADraftWithoutAsking) {
    open("A");
    typeText(QStringLiteral("\u20AC"));
    shutDownAtOnce();
    tearDown();
    running = false;
    EXPECT_TRUE(shown.empty());
    EXPECT_FALSE(folder.read("draft-1.txt").empty());
    answer(wording(Text::draftOpen));
    ASSERT_TRUE(startProgram());
    ASSERT_TRUE(QTest::qWaitFor([] { return viewToText() == QStringLiteral("\u20ACA"); }));
    answer(wording(Text::ok));
    handleCommand(CommandId::remove);
    open("B");
    typeKeys(QStringLiteral("C"));
    EXPECT_TRUE(leaveCurrentView());
    EXPECT_FALSE(folder.read("draft-1.txt").empty()) << "it is no draft of this program";
}

// What a run leaves that is killed while somebody writes.
TEST_F(Editor, WhatIsTypedBecomesADraftUntilItIsStored) {
    const auto draft = [this] { return folder.read("draft-1.txt"); };
    const ItemId id = open("A");
    programEdit->insertPlainText(QStringLiteral("B"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !draft().empty(); }, 5000));
    const std::string left = draft();
    programEdit->insertPlainText(QStringLiteral("C"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return draft().ends_with("\nBCA"); }, 5000)) << "over the same";
    EXPECT_TRUE(leaveCurrentView());
    EXPECT_EQ(stored(id), "BCA");
    EXPECT_EQ(draft(), "");
    showSelectedAgain();
    programEdit->insertPlainText(QStringLiteral("D"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !draft().empty(); }, 5000));
    programEdit->undo();
    ASSERT_TRUE(QTest::qWaitFor([&] { return draft().empty(); }, 5000)) << "the text is the stored one again";
    endProgram();
    folder.write("draft-1.txt", left);
    answer(wording(Text::draftOpen));
    ASSERT_TRUE(startProgram());
    EXPECT_TRUE(QTest::qWaitFor([] { return viewToText() == QStringLiteral("BA"); }));
    EXPECT_EQ(selectedItemId(), id);
}

TEST_F(Editor, ItemThatHasGoneComesBackUnderAFreeName) {
    ASSERT_TRUE(startProgram());
    const ItemId outer = add(kind::folder, "F");
    show(addProgram("PROG", "A", outer));
    programEdit->setFocus();
    typeKeys(QStringLiteral("B"));
    ASSERT_TRUE(storeDelete(outer));
    answer(wording(Text::ok));
    refreshTree();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !shown.empty(); }));
    const ItemId back = storeFindItem("PROG", storeStandardFolder(1001));
    ASSERT_NE(back, noItem);
    EXPECT_EQ(stored(back), "BA");
}

TEST_F(Editor, FindGoesOnFromTheSelectionAndTellsTheEnd) {
    open("B\x0E\x41\rXb\x0E\x61");
    QTimer::singleShot(0, [] {
        QTest::keyClicks(QApplication::activeModalWidget()->findChild<QLineEdit *>(), QStringLiteral("b->a"));
    });
    answer(wording(Text::ok));
    handleCommand(CommandId::find);
    EXPECT_EQ(programEdit->textCursor().selectedText(), QStringLiteral("B\u2192A"));
    handleCommand(CommandId::findAgain);
    EXPECT_EQ(programEdit->textCursor().blockNumber(), 1);
    answer(wording(Text::ok));
    handleCommand(CommandId::findAgain);
    EXPECT_EQ(shown.back(), wording(Text::findNothing));
    EXPECT_EQ(programEdit->textCursor().selectedText(), QStringLiteral("b\u2192a"));
}

TEST_F(Editor, ColorsFollowTheSettings) {
    ASSERT_TRUE(startProgram());
    settingsSetInt(setting::syntaxHighlighting, 1);
    settingsSetColour(setting::colorNumbers, 0x0000C0);
    open("A1");
    const auto formats = programEdit->document()->begin().layout()->formats();
    ASSERT_EQ(formats.size(), 2);
    EXPECT_EQ(formats[1].format.foreground().color(), QColor(0xC0, 0, 0));
    settingsSetInt(setting::syntaxHighlighting, 0);
    recolorProgram();
    EXPECT_TRUE(programEdit->document()->begin().layout()->formats().isEmpty());
    EXPECT_FALSE(programEdit->document()->isUndoAvailable());
}

}  // namespace numalink
