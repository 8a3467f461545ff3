// Several items of the tree at once: selecting them by mouse and keyboard, and what is done to them with one question.
#include <cstdio>

#include "link/transmit_queue.h"
#include "shell/shell_fixture.h"
#include "shell/tree/tree_order.h"
#include "store/undo/undo.h"

namespace numalink {

struct SeveralItems : StartedShell {
    void SetUp() override {
        StartedShell::SetUp();
        games = add(kind::folder, "Z");
        for (const char *name : {"A", "B", "C", "D", "E"}) ids.push_back(addProgram(name, name));
        inside = addProgram("B", "other", games);
        show(ids[0]);
    }
    void click(ItemId id, Qt::KeyboardModifiers with) {
        QTest::mouseClick(treeView->viewport(), Qt::LeftButton, with, centreOf(id));
    }
    static void press(Qt::Key key, Qt::KeyboardModifiers with = {}) { QTest::keyClick(treeView, key, with); }

    // The names of what is selected, and behind them the one on view.
    static std::string selected() {
        std::string names;
        for (const ItemId id : selectedItemIds()) names += storeReadEntry(id)->name;
        const auto viewed = storeReadEntry(viewItemId);
        return names + ":" + (viewed ? viewed->name : "");
    }

    ItemId games = noItem, inside = noItem;
    std::vector<ItemId> ids;
};

TEST_F(SeveralItems, AreSelectedByMouse) {
    click(ids[2], Qt::ControlModifier);
    EXPECT_EQ(selected(), "AC:C");
    click(ids[4], Qt::ShiftModifier);
    EXPECT_EQ(selected(), "CDE:E");
    click(ids[0], Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(selected(), "ABCDE:A");
    click(ids[0], Qt::ControlModifier);
    EXPECT_EQ(selected(), "BCDE:E") << "the one on view goes from the selection: another one is shown";
    refreshTree();
    EXPECT_EQ(selected(), "BCDE:E");
    for (const ItemId id : {ids[1], ids[2], ids[3], ids[4]}) click(id, Qt::ControlModifier);
    EXPECT_EQ(selected().size(), 3u) << "the last one stays";
    click(inside, Qt::ControlModifier);
    EXPECT_EQ(selectedItemIds().size(), 2u);
    click(ids[3], {});
    click(inside, Qt::ControlModifier);
    select(ids[3]);
    EXPECT_EQ(selected(), "D:D") << "a plain click ends it";
    EXPECT_EQ(selectedItemIds().size(), 1u);
    click(ids[2], Qt::ControlModifier);
    typeKeys(QStringLiteral("e"));
    EXPECT_EQ(selected(), "E:E");
}

TEST_F(SeveralItems, AreSelectedByKeyboardAlone) {
    press(Qt::Key_Down, Qt::ShiftModifier);
    press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(selected(), "ABC:C");
    press(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(selected(), "AB:B") << "a range shrinks, too";
    press(Qt::Key_Escape);
    EXPECT_EQ(selected(), "B:B");
    EXPECT_EQ(itemField->toolTip(), textOf(Text::size, {"3"}));
    press(Qt::Key_Space, Qt::ControlModifier);
    press(Qt::Key_Down, Qt::ControlModifier);
    press(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(selected(), "BD:D") << "what isn't kept is passed over";
    press(Qt::Key_Space, Qt::ControlModifier);
    press(Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(selected(), "BCD:C");
    press(Qt::Key_Up);
    EXPECT_EQ(selected(), "B:B");
    press(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(selected(), "C:C") << "what was kept ahead of a plain step is forgotten";
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(selected(), "ABCDEZB:C");
    EXPECT_EQ(itemField->toolTip(), textOf(Text::itemsSelected, {"7"}));
    EXPECT_EQ(selectedOutermost().size(), 6u) << "what lies in a selected folder goes with it";
    treeEntryOf(games)->setExpanded(false);
    EXPECT_EQ(selected(), "ABCDEZ:C") << "what can't be seen doesn't count";
    const QAccessibleInterface *access = QAccessible::queryAccessibleInterface(treeView);
    int told = 0;
    for (int i = 0; i < access->childCount(); i++) told += access->child(i)->state().selected ? 1 : 0;
    EXPECT_EQ(told, 6) << "to a screen reader";
}

TEST_F(SeveralItems, CommandsAreForAllOfThemOrGreyed) {
    const auto states = [] {
        std::string letters;
        for (const auto &[id, letter] : {std::pair(CommandId::remove, 'd'), std::pair(CommandId::move, 'm'),
                                         std::pair(CommandId::transmit, 't'), std::pair(CommandId::compareItems, 'c'),
                                         std::pair(CommandId::rename, 'r'), std::pair(CommandId::emulate, 'e')})
            if (commandEnabled(id)) letters += letter;
        return letters;
    };
    EXPECT_EQ(states(), "dmtcre");
    click(ids[1], Qt::ControlModifier);
    EXPECT_EQ(states(), "dmtc");
    click(ids[2], Qt::ControlModifier);
    EXPECT_EQ(states(), "dmt") << "two are compared, three not";
    EXPECT_EQ(handleCommand(CommandId::rename), 0);
    click(games, Qt::ControlModifier);
    EXPECT_EQ(states(), "dt") << "folders aren't moved";
    press(Qt::Key_Escape);
    EXPECT_EQ(states(), "dtr");
}

TEST_F(SeveralItems, AreDeletedByOneQuestionAndComeBackInOneStep) {
    click(games, Qt::ControlModifier);
    click(inside, Qt::ControlModifier);
    click(ids[1], Qt::ControlModifier);
    press(Qt::Key_Delete);
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_NE(shown[0].find(wording(Text::confirmDeleteSeveral, {"3"})), std::string::npos) << shown[0];
    EXPECT_NE(shown[0].find(wording(Text::foldersHold, {"1"})), std::string::npos);
    EXPECT_EQ(selected(), "ABZB:B") << "declined: all as before";
    programEdit->setPlainText(QStringLiteral("9"));  // of one that goes
    answer("Return");
    press(Qt::Key_Delete);
    EXPECT_FALSE(storeReadEntry(inside) || storeReadEntry(ids[0]) || storeReadEntry(ids[1]));
    EXPECT_EQ(selected(), "E:E") << "behind the last of them stands nothing, ahead of it E";
    Q_EMIT menuAt(MenuPosition::edit)->aboutToShow();
    EXPECT_EQ(commandAction(CommandId::undo)->text(), textOf(Text::undoDeletion, {"A ..."}));
    handleCommand(CommandId::undo);
    EXPECT_TRUE(storeReadEntry(inside) && storeReadEntry(ids[0]) && storeReadEntry(ids[1]));
}

TEST_F(SeveralItems, AreMovedWithOneListForTheNamesThatAreTaken) {
    click(ids[1], Qt::ControlModifier);
    drag(ids[0], centreOf(games));
    ASSERT_EQ(shown, std::vector<std::string>{wording(Text::arrivalsMoveTitle)});
    EXPECT_EQ(storeReadEntry(ids[0])->parent, rootId) << "cancelled";
    EXPECT_EQ(selected(), "AB:B");
    answer("Return");
    drag(ids[0], centreOf(games));
    EXPECT_EQ(storeReadEntry(ids[0])->parent, games);
    EXPECT_EQ(storeReadEntry(ids[1])->name, "B 2") << "both are kept";
    EXPECT_EQ(selectedItemIds().size(), 2u);
    handleCommand(CommandId::undo);
    EXPECT_EQ(storeReadEntry(ids[0])->parent, rootId);
    EXPECT_EQ(storeReadEntry(ids[1])->name, "B");
    click(ids[2], {});
    click(ids[3], Qt::ControlModifier);
    answer("Return");
    QTest::keyClick(mainWindow, Qt::Key_M, Qt::ControlModifier);
    EXPECT_EQ(shown.back(), wording(Text::moveTitle));
    EXPECT_EQ(storeReadEntry(ids[2])->parent, games);
    EXPECT_EQ(storeReadEntry(ids[3])->parent, games);
    EXPECT_EQ(selected(), "CD:D");
}

TEST_F(SeveralItems, AreQueuedAndExportedTogether) {
    click(ids[2], Qt::ShiftModifier);
    QTest::keyClick(mainWindow, Qt::Key_F6);
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].rfind(wording(Text::confirmTransmitSeveral, {"3"}), 0), 0u) << shown[0];
    EXPECT_EQ(transmitQueueCount(), 0u);
    QTest::keyClick(mainWindow, Qt::Key_F8);
    EXPECT_EQ(transmitQueueIds(), (std::vector<ItemId>{ids[0], ids[1], ids[2]}));
    transmitQueueClear();
    click(games, Qt::ControlModifier);
    whileOpen = [&] {
        const auto *chosen = QApplication::activeModalWidget()->findChild<QListWidget *>(QStringLiteral("chosenItems"));
        EXPECT_EQ(chosen->count(), 4) << "a folder's items, too";
    };
    handleCommand(CommandId::save);
    EXPECT_EQ(whileOpen, nullptr);
}

TEST_F(SeveralItems, TheOrderOfTheTreeIsKeptAndUnknownTimesAreTold) {
    handleCommand(CommandId::sortByTime);
    EXPECT_NE(itemField->toolTip(), textOf(Text::timesUnknown, {"6"}));
    endProgram();
    ASSERT_EQ(std::remove((folder.path + "storage.dat-versions").c_str()), 0);
    ASSERT_TRUE(startProgram());
    EXPECT_EQ(treeOrder(), TreeOrder::time);
    handleCommand(CommandId::sortByTime);
    EXPECT_EQ(itemField->toolTip(), textOf(Text::timesUnknown, {"6"}));
    settingsSetValue(setting::treeOrder, "no such order");
    EXPECT_EQ(treeOrder(), TreeOrder::name);
}

}  // namespace numalink
