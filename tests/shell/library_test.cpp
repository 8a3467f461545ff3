// Comparing, earlier forms, searching the library, duplicates, and the tree's filter and order, in the running window.
#include "history/history.h"
#include "shell/library/search_window.h"
#include "shell/library/signed_text.h"
#include "shell/shell_fixture.h"
#include "shell/tree/tree_filter.h"
#include "shell/tree/tree_order.h"
#include "store/undo/undo.h"
#include "text/program_images.h"

namespace numalink {

namespace {

QPushButton *buttonOf(QWidget *window, Text text) {
    for (QPushButton *button : window->findChildren<QPushButton *>())
        if (button->text() == textOf(text)) return button;
    return nullptr;
}

QString viewText() { return programEdit->toPlainText(); }

bool write(ItemId id, const std::string &tokens) {
    std::string image = ":" + tokens + "\xFF";
    image.push_back('\0');
    return writeProgramImage(id, {image.begin(), image.end()});
}

}  // namespace

using LibraryWindows = StartedShell;

TEST_F(LibraryWindows, DifferencesAreTakenOverAndTakenBack) {
    const ItemId a = addProgram("A", "1\r2\r3"), b = addProgram("B", "1\r3\r4");
    show(a);
    whileOpen = [] {
        QWidget *window = QApplication::activeModalWidget();
        const auto texts = window->findChildren<QPlainTextEdit *>();
        ASSERT_EQ(texts.size(), 2);
        EXPECT_EQ(texts[0]->toPlainText(), QStringLiteral("1\n2\n3\n"));
        EXPECT_EQ(texts[1]->toPlainText(), QStringLiteral("1\n\n3\n4"));
        QString signs;
        for (const QPlainTextEdit *text : texts)
            for (QTextBlock line = text->document()->begin(); line.isValid(); line = line.next())
                signs += SignedText::signOf(line) + QLatin1Char('|');
        EXPECT_EQ(signs, QStringLiteral("|\u2212||||||+|")) << "told by more than colour";
        EXPECT_FALSE(buttonOf(window, Text::comparePrevious)->isEnabled());
        buttonOf(window, Text::compareNext)->click();
        buttonOf(window, Text::compareToLeft)->click();
        EXPECT_EQ(texts[0]->toPlainText(), QStringLiteral("1\n2\n3\n4"));
        EXPECT_FALSE(buttonOf(window, Text::compareNext)->isEnabled());
    };
    handleCommand(CommandId::compareItems);
    QTest::qWait(1);
    EXPECT_EQ(viewText(), QStringLiteral("1\n2\n3\n4"));
    TakenBack done;
    ASSERT_TRUE(storeUndo(done));
    EXPECT_EQ(done.step.count, 1u);
    StoredItem item;
    ASSERT_TRUE(storeReadItem(b, item));
    EXPECT_EQ(item.data.size(), 7u);
}

TEST_F(LibraryWindows, AnEarlierFormComesBack) {
    const ItemId a = addProgram("A", "1");
    show(a);
    handleCommand(CommandId::versions);
    EXPECT_EQ(shown.size(), 1u) << "there is none yet";
    programEdit->setFocus();
    typeKeys(QStringLiteral("2"));
    whileOpen = [] {
        QWidget *window = QApplication::activeModalWidget();
        const auto *list = window->findChild<QTreeWidget *>();
        EXPECT_EQ(list->topLevelItemCount(), 2) << "what was edited on view is stored first";
        buttonOf(window, Text::versionsBack)->click();
    };
    handleCommand(CommandId::versions);
    QTest::qWait(1);
    EXPECT_EQ(viewText(), QStringLiteral("1"));
    EXPECT_EQ(historyForms(a).front().cause, FormCause::broughtBack);
}

TEST_F(LibraryWindows, PlacesAreFoundOpenedAndReplacedInOneStep) {
    const ItemId a = addProgram("A", "XQ1\rXQ2"), b = addProgram("B", "XQ1");
    addProgram("C", "Y");
    show(a);
    handleCommand(CommandId::searchLibrary);
    auto *window = mainWindow->findChild<QDialog *>(QStringLiteral("searchWindow"));
    ASSERT_NE(window, nullptr);
    const auto lines = window->findChildren<QLineEdit *>();
    const auto *list = window->findChild<QTreeWidget *>();
    lines[0]->setText(QStringLiteral("xq1"));
    buttonOf(window, Text::searchStart)->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->topLevelItemCount() == 2; }));
    EXPECT_FALSE(buttonOf(window, Text::searchReplace)->isEnabled());
    lines[1]->setText(QStringLiteral("YZ3"));
    buttonOf(window, Text::searchStart)->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return buttonOf(window, Text::searchReplace)->isEnabled(); }));
    EXPECT_EQ(list->topLevelItem(0)->text(3), QStringLiteral("YZ3"));
    Q_EMIT window->findChild<QTreeWidget *>()->itemActivated(list->topLevelItem(1), 0);
    EXPECT_EQ(viewItemId, b);
    EXPECT_EQ(programEdit->textCursor().selectedText(), QStringLiteral("XQ1"));
    buttonOf(window, Text::searchReplace)->click();
    EXPECT_EQ(viewText(), QStringLiteral("YZ3"));
    QTest::qWait(50);  // the search that follows has ended
    const auto labels = window->findChildren<QLabel *>();
    EXPECT_TRUE(std::ranges::any_of(labels, [](const QLabel *label) {
        return label->text() == textOf(Text::searchReplaced, {"2", "2"});
    }));
    TakenBack done;
    ASSERT_TRUE(storeUndo(done));
    EXPECT_EQ(done.step.count, 2u);
    window->close();
    EXPECT_EQ(list->topLevelItemCount(), 0);
}

TEST_F(LibraryWindows, TheTreeIsFilteredAndOrdered) {
    const ItemId folderId = add(kind::folder, "Games");
    const ItemId snake = addProgram("SNAKE", "1", folderId), apple = addProgram("APPLE", "123");
    const ItemId matrix = add(kind::matrix, "Mat A");
    refreshTree();
    handleCommand(CommandId::filterTree);
    auto *line = clientArea->findChild<QLineEdit *>(QStringLiteral("treeFilter"));
    ASSERT_NE(line, nullptr);
    EXPECT_GT(treeView->y(), 0);
    EXPECT_FALSE(treeEntryOf(matrix)->isHidden()) << "an empty filter shows every kind";
    line->setText(QStringLiteral("nak"));
    EXPECT_TRUE(treeEntryOf(apple)->isHidden());
    EXPECT_FALSE(treeEntryOf(snake)->isHidden());
    EXPECT_TRUE(treeEntryOf(folderId)->isExpanded());
    addProgram("BANAKA", "1");
    refreshTree();
    EXPECT_TRUE(treeEntryOf(matrix)->isHidden());
    handleCommand(CommandId::filterTree);
    EXPECT_FALSE(treeEntryOf(apple)->isHidden());
    EXPECT_EQ(treeView->y(), 0);
    ASSERT_TRUE(write(snake, "a longer one") && storeMove(snake, rootId));
    handleCommand(CommandId::sortBySize);
    QStringList names;
    for (int i = 0; i < treeView->topLevelItemCount(); i++)
        if (!isFolderKind(storeReadEntry(idOfEntry(treeView->topLevelItem(i)))->kind))
            names << treeView->topLevelItem(i)->text(0);
    EXPECT_EQ(names.first(), QStringLiteral("SNAKE"));
    handleCommand(CommandId::sortByName);
    EXPECT_EQ(treeOrder(), TreeOrder::name);
}

}  // namespace numalink
