// Files dropped on the window, the questions that come of them, and where their items go.
#include "shell/shell_fixture.h"
#include "support/cat_records.h"

namespace numalink {

struct ImportByWindow : StartedShell {
    void dropFiles(const std::vector<std::string> &names) {
        sendDrop(names);
        EXPECT_TRUE(shown.empty()) << "a dialog opened inside the drop";
        QTest::qWait(150);
    }

    void sendDrop(const std::vector<std::string> &names) {
        QMimeData data;
        QList<QUrl> urls;
        for (const std::string &name : names) urls << QUrl::fromLocalFile(toQt(folder.path + name));
        data.setUrls(urls);
        const QPoint place(200, 200);
        QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(mainWindow, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(mainWindow, &drop);
    }
};

TEST_F(ImportByWindow, DroppedFilesGoWhereEachQuestionSays) {
    folder.write("one.cat", catProgram("ONE"));
    folder.write("Two Games.CAT", catProgram("TWO") + catProgram("THREE"));
    folder.write("no\xC3\xBCmlaut.cat", "%Header Record\r\nFo");
    const ItemId onView = addProgram("VIEW", "A");
    show(onView);
    answer("Return");
    answer("Return");
    dropFiles({"one.cat", "Two Games.CAT", "no\xC3\xBCmlaut.cat"});
    ASSERT_EQ(shown.size(), 3u);
    EXPECT_EQ(shown[0], wording(Text::importTitle));
    EXPECT_EQ(shown[1], wording(Text::importTitle));
    EXPECT_EQ(shown[2].rfind(wording(Text::importHeaderUnknown), 0), 0u) << shown[2];
    EXPECT_EQ(storeListChildren(storeStandardFolder(1001)).size(), 1u);
    const ItemId games = storeFindItem("Two Games", rootId);
    ASSERT_EQ(storeListChildren(games).size(), 2u);
    EXPECT_NE(treeEntryOf(storeFindItem("THREE", games)), nullptr);
    const ItemId arrived = storeListChildren(storeStandardFolder(1001))[0].id;
    EXPECT_EQ(viewItemId, arrived) << "the first of what came in is looked at";
    EXPECT_TRUE(treeView->viewport()->rect().contains(centreOf(arrived)) && commandEnabled(CommandId::find));
    show(onView);
    shown.clear();
    answer("Return");
    answer("Return");
    dropFiles({"Two Games.CAT"});
    EXPECT_EQ(shown.size(), 2u) << "one list for both names";
    EXPECT_EQ(shown.back(), wording(Text::arrivalsTitle));
    EXPECT_EQ(storeListChildren(games).size(), 2u) << "what is the same is left out";
    EXPECT_TRUE(viewItemId == onView && programEdit->isVisible() && commandEnabled(CommandId::find));
}

TEST_F(ImportByWindow, OneAnswerIsForAllFilesAndTheListDecidesForEach) {
    const ItemId programs = storeStandardFolder(1001);
    for (const char *name : {"ONE", "TWO"}) addProgram(name, "old", programs);
    for (const std::string name : {"ONE", "TWO", "THREE"}) folder.write(name + ".cat", catProgram(name, "new"));
    folder.write("damaged.cat", "%Header Record\r\nFo");
    const auto choose = [] {
        QWidget *dialog = QApplication::activeModalWidget();
        auto *list = dialog->findChild<QTreeWidget *>();
        EXPECT_EQ(list->topLevelItemCount(), 3);
        EXPECT_EQ(list->selectedItems().size(), 2) << "those that ask, so that one button is for all";
        EXPECT_TRUE(dialog->findChild<QPlainTextEdit *>()->toPlainText().startsWith(QLatin1String("damaged: ")));
        const auto push = [&](Text text) {
            for (auto *button : dialog->findChildren<QPushButton *>())
                if (button->text() == textOf(text)) button->click();
        };
        push(Text::arrivalsReplace);
        list->setCurrentItem(list->topLevelItem(1));
        push(Text::arrivalsSkip);
        EXPECT_EQ(list->topLevelItem(0)->text(3), textOf(Text::choiceReplace));
        EXPECT_EQ(list->topLevelItem(1)->text(3), textOf(Text::choiceSkip));
    };
    whileOpen = [&] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        auto *forAll = dialog->findChild<QCheckBox *>();
        EXPECT_EQ(forAll->text(), textOf(Text::importForAll, {"3"}));
        forAll->click();
        whileOpen = choose;
        dialog->accept();
    };
    answer("Return");
    dropFiles({"ONE.cat", "TWO.cat", "THREE.cat", "damaged.cat"});
    EXPECT_EQ(shown, std::vector<std::string>{wording(Text::arrivalsTitle)});
    StoredItem one, two;
    ASSERT_TRUE(storeReadItem(storeFindItem("ONE", programs), one));
    ASSERT_TRUE(storeReadItem(storeFindItem("TWO", programs), two));
    EXPECT_NE(one.data[1], 'o');
    EXPECT_EQ(two.data[1], 'o');
    EXPECT_NE(storeFindItem("THREE", programs), noItem);
    EXPECT_EQ(storeListChildren(programs).size(), 3u);
}

TEST_F(ImportByWindow, TheFolderNameCanBeTypedAndCancelLeavesNothing) {
    folder.write("pair.cat", catProgram("A") + catProgram("B"));
    answer(toQt(wording(Text::importStandardFolders)).remove(QLatin1Char('&')).toStdString());
    answer("Return");
    dropFiles({"pair.cat"});
    EXPECT_EQ(storeListChildren(storeStandardFolder(1001)).size(), 2u);
    shown.clear();
    dropFiles({"pair.cat"});
    EXPECT_EQ(storeListChildren(storeStandardFolder(1001)).size(), 2u);
    EXPECT_EQ(storeFindItem("pair", rootId), noItem);
}

TEST_F(ImportByWindow, FilesDroppedWhileADialogIsOpenWaitForIt) {
    folder.write("one.cat", catProgram("ONE"));
    folder.write("two.cat", catProgram("TWO"));
    answer("Return");
    answer("Return");
    whileOpen = [this] { sendDrop({"two.cat"}); };
    dropFiles({"one.cat"});
    EXPECT_TRUE(QTest::qWaitFor([] { return storeListChildren(storeStandardFolder(1001)).size() == 2; }));
    EXPECT_EQ(shown.size(), 2u);
}

}  // namespace numalink
