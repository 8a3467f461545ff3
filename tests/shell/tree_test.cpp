// The tree: what stands where, renaming, moving and deleting, and undo.
#include "shell/shell_fixture.h"
#include "shell/tree/item_moves.h"
#include "shell/tree/label_edit.h"
#include "shell/tree/tree_mouse.h"
#include "shell/tree/tree_rules.h"
#include "store/undo/undo.h"

namespace numalink {

struct Tree : StartedShell {
    QStringList rootNames() const {
        QStringList names;
        for (int i = 0; i < treeView->topLevelItemCount(); i++) names << treeView->topLevelItem(i)->text(0);
        return names;
    }
};

TEST_F(Tree, StraysAndCirclesStandAtTheRoot) {
    const auto entry = [](ItemId id, ItemId parent, ItemKind itemKind, const char *name) {
        return ItemEntry{.id = id, .parent = parent, .kind = itemKind, .name = name};
    };
    const std::vector<ItemEntry> items = {
        entry(2, 99, kind::program, "lost"),  entry(3, 4, kind::folder, "b"),
        entry(4, 3, kind::folder, "a"),       entry(5, 2, kind::list, "under no folder"),
        entry(6, 4, kind::list, "in circle"), entry(7, 1, kind::temporaryFolder, "temp"),
        entry(8, 7, kind::list, "hidden")};
    const TreeContent content = treeContent(items);
    EXPECT_EQ(content.strays, 3);
    ASSERT_EQ(content.entries.size(), 5u);
    std::string order;
    for (const TreeEntry &shownEntry : content.entries)
        order += shownEntry.name + "<" + std::to_string(shownEntry.shownUnder) + " ";
    EXPECT_EQ(order, "b<1 a<3 in circle<4 lost<1 under no folder<1 ");
}

TEST_F(Tree, RefreshKeepsSelectionExpansionAndView) {
    const ItemId shut = add(kind::folder, "shut");
    const ItemId inside = addProgram("IN", "A", shut);
    show(inside);
    treeEntryOf(shut)->setExpanded(false);
    storeRename(shut, "zzz");
    add(kind::matrix, "new");
    refreshTree();
    EXPECT_FALSE(treeEntryOf(shut)->isExpanded());
    EXPECT_EQ(selectedItemId(), inside);
    EXPECT_EQ(viewItemId, inside);
    storeDelete(shut);
    refreshTree();
    EXPECT_EQ(selectedItemId(), noItem);
    EXPECT_FALSE(programEdit->isVisible());
}

TEST_F(Tree, RefreshMovesAsLittleAsItMust) {
    EXPECT_EQ(longestRising({3, 0, 1, 2}), (std::vector<bool>{false, true, true, true}));
    EXPECT_EQ(longestRising({2, 1, 0}), (std::vector<bool>{false, false, true}));
    std::vector<ItemId> ids;
    for (char name = 'A'; name <= 'Z'; name++) ids.push_back(add(kind::matrix, std::string(1, name)));
    show(ids[20]);
    treeView->verticalScrollBar()->setValue(3);
    storeRename(ids[0], "zz");
    storeRename(ids[20], "0");
    refreshTree();
    EXPECT_EQ(rootNames().join(QString()), QStringLiteral("0BCDEFGHIJKLMNOPQRSTVWXYZzz"));
    EXPECT_EQ(treeView->verticalScrollBar()->value(), 3);
    EXPECT_EQ(selectedItemId(), ids[20]);
    for (std::size_t i = 0; i < ids.size(); i++) storeRename(ids[i], std::string(1, static_cast<char>('Z' - i)));
    refreshTree();
    EXPECT_EQ(rootNames().join(QString()), QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZ"));
    EXPECT_EQ(selectedItemId(), ids[20]);
}

TEST_F(Tree, ARenamedItemStaysInSight) {
    for (char name = 'A'; name <= 'Z'; name++)
        for (const char *digit : {"1", "2"}) add(kind::matrix, name + std::string(digit));
    const ItemId renamed = storeFindItem("B1", rootId);
    show(renamed);
    treeView->setFocus();
    QTest::keyClick(treeView, Qt::Key_F2);
    typeKeys(QStringLiteral("zz"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(storeReadEntry(renamed)->name, "zz");
    EXPECT_TRUE(treeView->viewport()->rect().contains(centreOf(renamed)));
}

TEST_F(Tree, NothingSelectsWithoutOpening) {
    const ItemId outer = add(kind::folder, "outer");
    const ItemId first = addProgram("ONE", "A", outer);
    const ItemId second = addProgram("TWO", "B", outer);
    show(first);
    const QPoint place = centreOf(second);
    QTest::mouseClick(treeView->viewport(), Qt::LeftButton, {}, QPoint(2, place.y()));
    QTest::mouseClick(treeView->viewport(), Qt::LeftButton, {}, place - QPoint(20, 0));
    QTest::mouseClick(treeView->viewport(), Qt::MiddleButton, {}, place);
    QTest::keyClick(treeView, Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(selectedItemId(), first);
    EXPECT_EQ(viewItemId, first);
    QTest::keyClick(treeView, Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(selectedItemId(), second);
    EXPECT_EQ(viewItemId, second);
    QApplication::setKeyboardInputInterval(5000);
    QTest::keyClicks(treeView, QStringLiteral("on"));
    QApplication::setKeyboardInputInterval(400);
    EXPECT_EQ(viewItemId, first) << "the first that begins with both letters, not with the last";
    QTest::keyClick(treeView, Qt::Key_PageUp);
    EXPECT_EQ(selectedItemId(), outer);
    QTest::keyClick(treeView, Qt::Key_PageDown);
    EXPECT_EQ(viewItemId, second);
    QTest::mouseClick(treeView->viewport(), Qt::LeftButton, {}, centreOf(outer) - QPoint(20, 0));
    EXPECT_FALSE(treeEntryOf(outer)->isExpanded());
    EXPECT_EQ(selectedItemId(), second);
}

TEST_F(Tree, CommandsEndTheEditOfALabelFirst) {
    handleCommand(CommandId::newFolder);
    const ItemId renamed = storeFindItem(calculatorName(wording(Text::newItemName)), rootId);
    labelEditor()->setText(QStringLiteral("Typed"));
    handleCommand(CommandId::newProgram);
    EXPECT_EQ(storeReadEntry(renamed)->name, "Typed");
    ASSERT_NE(labelEditor(), nullptr);
    EXPECT_EQ(storeReadEntry(selectedItemId())->kind, kind::program);
    const ItemId program = selectedItemId();
    labelEditor()->setText(QStringLiteral("NINECHARS"));
    handleCommand(CommandId::newFolder);
    EXPECT_EQ(shown, std::vector<std::string>{wording(Text::programNameTooLong)});
    EXPECT_EQ(labelEditor()->text(), QStringLiteral("NINECHARS"));
    QTest::keyClick(labelEditor(), Qt::Key_Up);
    QTest::keyClick(labelEditor(), Qt::Key_Delete, Qt::AltModifier);
    EXPECT_EQ(selectedItemId(), program);
    EXPECT_EQ(shown.size(), 1u);
    labelEditor()->setText(QStringLiteral("LAST"));
    shutDownAtOnce();
    running = false;
    EXPECT_TRUE(storeOpen());
    EXPECT_EQ(storeReadEntry(program)->name, "LAST");
    storeClose();
    tearDown();
}

TEST_F(Tree, PostponedRefreshComesWhenTheDialogIsGone) {
    QMenu menu;
    menu.popup(QPoint(0, 0));
    const ItemId item = add(kind::matrix, "later");
    refreshTree();
    EXPECT_EQ(treeEntryOf(item), nullptr);
    menu.close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return treeEntryOf(item) != nullptr; }));
}

TEST_F(Tree, AReleaseThatGotLostStartsNoDrag) {
    const ItemId item = addProgram("ABC", "A");
    refreshTree();
    QTest::mousePress(treeView->viewport(), Qt::LeftButton, {}, centreOf(item));
    for (const int away : {30, 60}) {
        const QPointF place(centreOf(item) + QPoint(away, 0));
        QMouseEvent move(QEvent::MouseMove, place, place, Qt::NoButton, Qt::NoButton, {});
        QApplication::sendEvent(treeView->viewport(), &move);
    }
    EXPECT_FALSE(dragRunning());
}

TEST_F(Tree, SelectionSetsTheCommandsAndShowsTheProgram) {
    const ItemId program = addProgram("PROG", "A\x0DX\xDD");
    const ItemId picture = add(kind::picture, "PIC");
    refreshTree();
    EXPECT_FALSE(commandEnabled(CommandId::rename));
    EXPECT_TRUE(commandEnabled(CommandId::newProgram));
    EXPECT_EQ(handleCommand(CommandId::deleteKey) + handleCommand(CommandId::openView), 0) << "nothing is selected";
    select(program);
    EXPECT_TRUE(commandEnabled(CommandId::rename));
    EXPECT_TRUE(commandEnabled(CommandId::remove));
    EXPECT_TRUE(programEdit->isVisible());
    EXPECT_EQ(programEdit->toPlainText().left(3), QStringLiteral("A\nX"));
    EXPECT_EQ(itemField->text(), textOf(Text::size, {"6"}));
    QTest::keyClick(treeView, Qt::Key_Up);
    EXPECT_EQ(selectedItemId(), picture);
    EXPECT_FALSE(programEdit->isVisible());
}

TEST_F(Tree, NewItemsTakeFreeNamesAndTheirLabelsOpen) {
    handleCommand(CommandId::newFolder);
    ASSERT_NE(labelEditor(), nullptr);
    const QString name = labelEditor()->text();
    typeKeys(QStringLiteral("Games"));
    QTest::keyClick(labelEditor(), Qt::Key_Return);
    handleCommand(CommandId::newFolder);
    QTest::keyClick(labelEditor(), Qt::Key_Escape);
    handleCommand(CommandId::newFolder);
    QTest::keyClick(labelEditor(), Qt::Key_Escape);
    EXPECT_EQ(rootNames(), QStringList({QStringLiteral("Games"), name, name + QStringLiteral(" 2")}));
    const ItemId games = storeFindItem("games", rootId);
    select(games);
    handleCommand(CommandId::newProgram);
    ASSERT_NE(labelEditor(), nullptr);
    typeKeys(QStringLiteral("SNAKE"));
    QTest::keyClick(labelEditor(), Qt::Key_Return);
    StoredItem program;
    ASSERT_TRUE(storeReadItem(storeFindItem("SNAKE", games), program));
    EXPECT_EQ(program.data, (Bytes{':', 0xFF}));
    EXPECT_EQ(decodeProgramInfo(program.head)->name, "SNAKE");
    EXPECT_EQ(selectedItemId(), program.id);
    EXPECT_EQ(rootNames().size(), 3) << "the standard folder is made only to be used";
}

TEST_F(Tree, TheKeyboardStaysWhereItWasPut) {
    QApplication::setDoubleClickInterval(50);  // also the pause ahead of a label edit
    const auto hasFocus = [](const QWidget *widget) { return QApplication::focusWidget() == widget; };
    const auto clickText = [] { QTest::mouseClick(programEdit->viewport(), Qt::LeftButton, {}, QPoint(20, 20)); };
    QTest::keyClick(mainWindow, Qt::Key_N, Qt::ControlModifier);
    const ItemId program = selectedItemId();
    QTest::qWait(50);  // the window of the symbols may be the active one for a moment
    mainWindow->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([] { return labelEditor()->hasFocus(); }));
    typeKeys(QStringLiteral("ABC"));
    QTest::keyClick(labelEditor(), Qt::Key_Return);
    EXPECT_TRUE(hasFocus(programEdit)) << "a new program is written next";
    QTest::keyClick(programEdit, Qt::Key_Escape);
    EXPECT_TRUE(hasFocus(treeView));
    QTest::keyClick(mainWindow, Qt::Key_F2);
    typeKeys(QStringLiteral("ABCD"));
    clickText();
    EXPECT_TRUE(QTest::qWaitFor([] { return labelEditor() == nullptr; }));
    typeKeys(QStringLiteral("7"));
    EXPECT_EQ(storeReadEntry(program)->name, "ABCD");
    EXPECT_EQ(programEdit->toPlainText(), QStringLiteral("7"));
    select(program);
    QTest::qWait(350);
    EXPECT_EQ(labelEditor(), nullptr) << "the click only came back";
    EXPECT_TRUE(hasFocus(treeView));
    select(program);
    QTest::keyClick(treeView, Qt::Key_Right);
    QTest::qWait(350);
    EXPECT_EQ(labelEditor(), nullptr) << "the key meant the entry";
    select(program);
    EXPECT_TRUE(QTest::qWaitFor([] { return labelEditor() != nullptr; }));
    QTest::keyClick(labelEditor(), Qt::Key_Escape);
    QTest::keyClick(treeView, Qt::Key_Return);
    EXPECT_TRUE(hasFocus(programEdit));
    EXPECT_EQ(treeEntryOf(program)->data(0, Qt::AccessibleTextRole).toString(),
              QStringLiteral("ABCD, ") + textOf(Text::kindProgram));
    QApplication::setDoubleClickInterval(400);
}

TEST_F(Tree, RefusedNamesAreToldAndStayInTheEditor) {
    const ItemId program = addProgram("ABC", "A");
    add(kind::folder, "taken");
    const ItemId functions = add(kind::functionMemory, "F");
    refreshTree();
    const struct {
        const char *typed;
        std::string told;
    } cases[] = {{"NINECHARS", wording(Text::programNameTooLong)},
                 {"TAKEN", wording(Text::nameTaken)},
                 {"", wording(Text::nameEmpty)},
                 {"\xE2\x82\xAC", wording(Text::nameHasForeignCharacter)}};
    select(program);
    QTest::keyClick(mainWindow, Qt::Key_F2);
    for (const auto &[typed, told] : cases) {
        ASSERT_NE(labelEditor(), nullptr);
        labelEditor()->setText(QString::fromUtf8(typed));
        QTest::keyClick(labelEditor(), Qt::Key_Return);
        EXPECT_EQ(shown.back(), told);
        EXPECT_EQ(labelEditor()->text(), QString::fromUtf8(typed));
    }
    labelEditor()->setText(QStringLiteral("TAKEN"));
    const std::size_t told = shown.size();
    QTest::mouseClick(programEdit->viewport(), Qt::LeftButton);
    handleCommand(CommandId::newFolder);
    EXPECT_EQ(shown.size(), told + 1) << "one box, though both the lost focus and the command end the edit";
    mainWindow->close();
    EXPECT_EQ(shown.size(), told + 2) << "the program doesn't end over a name that isn't taken";
    labelEditor()->setText(QStringLiteral("EIGHTCHR"));
    QTest::keyClick(labelEditor(), Qt::Key_Return);
    EXPECT_EQ(labelEditor(), nullptr);
    EXPECT_EQ(storeReadEntry(program)->name, "EIGHTCHR");
    select(functions);
    QTest::keyClick(mainWindow, Qt::Key_F2);
    ASSERT_NE(labelEditor(), nullptr);
    labelEditor()->setText(QStringLiteral("NINECHARS"));
    QTest::keyClick(labelEditor(), Qt::Key_Return);
    EXPECT_EQ(storeReadEntry(functions)->name, "NINECHARS");
}

TEST_F(Tree, DragsFollowTheRulesByKind) {
    EXPECT_TRUE(canDrop(kind::program, 1000) && canDrop(kind::program, 1001) && canDrop(kind::algebraBlock, 1011) &&
                canDrop(kind::graphFunction, 1004) && canDrop(kind::unknown, 1004));
    EXPECT_FALSE(canDrop(kind::program, 1005) || canDrop(kind::folder, 1000) || canDrop(1001, 1000));
    const ItemId folderId = add(kind::folder, "target");
    const ItemId matrices = storeStandardFolder(1005);
    const ItemId matrix = add(kind::matrix, "M", matrices);
    const ItemId program = addProgram("PROG", "A");
    show(folderId);
    drag(program, centreOf(matrix));
    EXPECT_EQ(storeReadEntry(program)->parent, rootId);
    EXPECT_EQ(viewItemId, noItem);
    drag(program, {treeView->viewport()->width() - 3, centreOf(folderId).y()});
    EXPECT_EQ(storeReadEntry(program)->parent, rootId) << "beside the folder's name lies nothing";
    drag(program, centreOf(folderId));
    EXPECT_EQ(storeReadEntry(program)->parent, folderId);
    EXPECT_FALSE(dragRunning());
    EXPECT_EQ(selectedItemId(), program);
}

TEST_F(Tree, MoveOntoATakenNameAsksFirst) {
    const ItemId target = add(kind::folder, "target");
    addProgram("PROG", "old", target);
    const ItemId moved = addProgram("prog", "new");
    refreshTree();
    drag(moved, centreOf(target));
    EXPECT_EQ(storeReadEntry(moved)->parent, rootId);
    answer("Return");
    drag(moved, centreOf(target));
    EXPECT_EQ(storeListChildren(target).size(), 2u) << "Enter keeps both";
    EXPECT_EQ(storeReadEntry(moved)->name, "prog 2");
    EXPECT_EQ(itemField->text(), textOf(Text::itemStoredAs, {"prog", "prog 2"}));
    commandAction(CommandId::undo)->trigger();
    EXPECT_EQ(storeReadEntry(moved)->name, "prog");
    const ItemId another = add(kind::folder, "Target");
    const ItemId inner = add(kind::folder, "TARGET", another);
    answer("Return");
    moveDropped(inner, rootId);
    EXPECT_EQ(storeReadEntry(inner)->name, "TARGET 2");
    commandAction(CommandId::undo)->trigger();
    EXPECT_EQ(storeReadEntry(inner)->parent, another);
    EXPECT_EQ(storeReadEntry(inner)->name, "TARGET");
    answer(wording(Text::replace));
    drag(moved, centreOf(target));
    ASSERT_EQ(storeListChildren(target).size(), 1u);
    EXPECT_EQ(storeListChildren(target)[0].id, moved);
    EXPECT_EQ(shown.size(), 4u);
    menuAt(MenuPosition::edit)->aboutToShow();
    auto *undoAction = commandAction(CommandId::undo);
    EXPECT_EQ(undoAction->text(), textOf(Text::undoMove, {"prog"}));
    undoAction->trigger();
    EXPECT_EQ(storeReadEntry(moved)->parent, rootId);
    EXPECT_TRUE(storeItemExists("PROG", target)) << "both are as before";
    EXPECT_EQ(selectedItemId(), moved);
}

TEST_F(Tree, DeleteAsksAndOnlyInTheTree) {
    const ItemId outer = add(kind::folder, "outer");
    addProgram("IN", "A", outer);
    const ItemId program = addProgram("PROG", "A");
    show(outer);
    QTest::keyClick(treeView, Qt::Key_Delete);
    EXPECT_TRUE(storeReadEntry(outer));
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_NE(shown[0].find("outer"), std::string::npos) << shown[0];
    EXPECT_NE(shown[0].find(wording(Text::folderHolds, {"1"})), std::string::npos);
    answer("Return");
    QTest::keyClick(treeView, Qt::Key_Delete);
    EXPECT_FALSE(storeReadEntry(outer));
    EXPECT_EQ(storeFindItem("IN", outer), noItem);
    EXPECT_EQ(selectedItemId(), program);
    mainWindow->activateWindow();  // a closed box may leave none active without a window manager
    EXPECT_TRUE(QTest::qWaitFor([] { return treeView->hasFocus(); }));
}

TEST_F(Tree, HidesAndShowsWithItsColumn) {
    QTest::mouseClick(treeToggleButton, Qt::LeftButton);
    EXPECT_FALSE(treeView->isVisible());
    EXPECT_EQ(containerWindow->width(), clientArea->width() - 12);
    EXPECT_TRUE(commandAction(CommandId::hideTree)->isChecked());
    QTest::keyClick(mainWindow, Qt::Key_F11);
    EXPECT_TRUE(treeView->isVisible());
}

TEST_F(Tree, WhatWasDeletedComesBackByUndoAndTheEditorKeepsItsOwn) {
    const ItemId games = add(kind::folder, "Games");
    const ItemId program = addProgram("ABC", "A", games);
    show(games);
    answer("Return");
    QTest::keyClick(treeView, Qt::Key_Delete);
    ASSERT_FALSE(storeReadEntry(program));
    treeView->setFocus();
    QTest::keyClick(mainWindow, Qt::Key_Z, Qt::ControlModifier);
    ASSERT_TRUE(storeReadEntry(program));
    EXPECT_EQ(selectedItemId(), games);
    select(program);
    programEdit->setFocus();
    typeKeys(QStringLiteral("BCD"));
    QTest::keyClick(programEdit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(storeReadEntry(program)) << "typing is undone, not the library";
    EXPECT_FALSE(programEdit->toPlainText().startsWith(QStringLiteral("BCD")));
    std::vector<ItemId> received;
    {
        const UndoGroup group;  // as a conversation with a calculator
        for (const char *name : {"ABC", "XY"}) received.push_back(addProgram(name, "B", games));
        for (const char *name : {"ABC", "XY"}) received.push_back(addProgram(name, "C", games));
    }
    refreshTree();
    select(games);
    menuAt(MenuPosition::edit)->aboutToShow();
    QAction *undoAction = commandAction(CommandId::undo);
    EXPECT_EQ(undoAction->text(), textOf(Text::undoReplacement, {"XY"}));
    undoAction->trigger();
    EXPECT_TRUE(storeReadEntry(program)) << "all of it in one step";
    for (const ItemId id : received) EXPECT_EQ(storeReadEntry(id).has_value(), id == received[1]);
    EXPECT_EQ(selectedItemId(), received[1]);
}

}  // namespace numalink
