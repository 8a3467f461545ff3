// The library as its callers see it, and the bytes that it leaves on the disk.
#include <gmock/gmock.h>

#include "calculator/program_info.h"
#include "store/store_support.h"
#include "telling/language_table.h"

namespace numalink {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(Store, ANewFileIsOneHeadAndASecondStartHoldsTheTempFolderAlone) {
    ASSERT_TRUE(storeOpen());
    EXPECT_TRUE(storeListItems().empty());
    storeClose();
    Bytes expected(8032);
    std::ranges::copy(std::string_view("MAINHEADER    "), expected.begin());
    writeLittle32(expected, 16, 1000);
    writeLittle32(expected, 24, 8032);
    writeLittle32(expected, 8028, 2);
    EXPECT_EQ(file(), expected);

    ASSERT_TRUE(storeOpen());
    storeClose();
    EXPECT_EQ(file().size(), 8124U);
    EXPECT_EQ(readLittle32(file(), 20), 1U);
    EXPECT_EQ(readLittle32(file(), 28), 8032U);
    EXPECT_EQ(readLittle32(file(), 8028), 3U);
    Bytes record(92);
    std::ranges::copy(std::string_view("ITEMHEADER    "), record.begin());
    std::ranges::copy(std::string_view("temp"), record.begin() + 15);
    writeLittle32(record, 76, 1002);
    writeLittle32(record, 84, 2);
    writeLittle32(record, 88, 1);
    EXPECT_EQ(Bytes(file().begin() + 8032, file().end()), record);
    EXPECT_THAT(uiRecord.lines, IsEmpty());
}

TEST_F(OpenStore, AnAddReplacesOnlyTheSameKindAndNameUnderTheSameParent) {
    const ItemId folder = add("F", kind::folder);
    const ItemId old = add("ABC", kind::program, folder, {1}, {1, 1, 1});
    const ItemId matrix = add("Mat A", kind::matrix, folder, {2}, {2});
    const ItemId elsewhere = add("abc", kind::program, rootId);
    std::string renamed;
    const ItemId replacing = storeAddItem(item("abc", kind::program, folder, {3}, {3}), &renamed);
    EXPECT_EQ(renamed, "abc");
    EXPECT_FALSE(storeReadEntry(old));
    EXPECT_TRUE(storeReadEntry(elsewhere));
    EXPECT_EQ(storeListItems().size(), 4U);
    EXPECT_EQ(read(matrix).data, Bytes{2}) << "behind the gap of the record that went";
    EXPECT_EQ(read(replacing).data, Bytes{3});

    EXPECT_NE(storeAddItem(item("ABC", kind::list, folder), &renamed), noItem);
    EXPECT_EQ(renamed, "ABC 2") << "another kind isn't replaced";
    EXPECT_NE(storeAddItem(item("f", kind::folder, rootId), &renamed), noItem);
    EXPECT_EQ(renamed, "f 2") << "nor is a folder";
    const std::pair<NameTaken, const char *> names[] = {{NameTaken::nextFreeName, "abc 3"},
                                                        {NameTaken::keepBoth, "abc"}};
    for (const auto &[whenTaken, name] : names) {
        EXPECT_NE(storeAddItem(item("abc", kind::program, folder, {}, {}, whenTaken), &renamed), noItem);
        EXPECT_EQ(renamed, name);
    }
    EXPECT_TRUE(storeReadEntry(replacing));
    checkFile();
}

TEST_F(OpenStore, ARenamedProgramCarriesItsNameInItsHeadToo) {
    ProgramInfo info;
    info.name = "PROGRAMX";
    info.password = "PASS";
    NewItem program = item("PROGRAMX", kind::program, rootId, encodeProgramInfo(info), {':', 0xFF});
    ASSERT_NE(storeAddItem(program), noItem);
    program.whenTaken = NameTaken::nextFreeName;
    const ItemId second = storeAddItem(program);
    EXPECT_EQ(read(second).name, "PROGRA 2");
    EXPECT_EQ(decodeProgramInfo(read(second).head)->name, "PROGRA 2");
    EXPECT_EQ(decodeProgramInfo(read(second).head)->password, "PASS");
    EXPECT_EQ(storeFreeName(std::string(60, 'x'), rootId, kind::matrix), std::string(52, 'x'));
}

TEST_F(OpenStore, StoringAnEditedItemReplacesItsOwnRecordAlone) {
    const ItemId first = add("A", kind::program, rootId, {1}, {1});
    const ItemId second = add("B", kind::program, rootId, {2}, {2});
    ASSERT_TRUE(storeRename(second, "A"));
    ASSERT_TRUE(storeWriteItem(first, item("A", kind::program, rootId, {9}, {9, 9})));
    EXPECT_EQ(read(first).data, (Bytes{9, 9}));
    EXPECT_EQ(read(second).data, Bytes{2});
    EXPECT_EQ(storeFindSlot(first), 1) << "appended behind the other";
    EXPECT_EQ(storeFindItem("a", rootId), first) << "the lowest id, not the first slot";
    const ItemId next = storeNextId();
    const Bytes before = file();
    EXPECT_FALSE(storeWriteItem(99, item("A", kind::program)));
    EXPECT_EQ(file(), before);
    EXPECT_EQ(storeNextId(), next);
    checkFile();
}

TEST_F(OpenStore, OperationsOnAnAbsentIdWriteNothing) {
    add("A", kind::program);
    const std::size_t written = simulatedDisk.steps.size();
    for (const ItemId id : {ItemId{0}, rootId, ItemId{77}, noItem}) {
        StoredItem untouched;
        untouched.name = "kept";
        EXPECT_FALSE(storeReadItem(id, untouched));
        EXPECT_EQ(untouched.name, "kept");
        EXPECT_FALSE(storeRename(id, "B"));
        EXPECT_FALSE(storeMove(id, rootId));
        EXPECT_FALSE(storeSetFlags(id, 1));
        EXPECT_FALSE(storeRewriteHead(id, {}));
        EXPECT_FALSE(storeDelete(id));
        EXPECT_EQ(storeFindSlot(id), -1);
        EXPECT_EQ(storeGetFlags(id), 0U);
    }
    EXPECT_EQ(simulatedDisk.steps.size(), written);
    EXPECT_THAT(uiRecord.lines, IsEmpty());
    EXPECT_EQ(add("B", kind::program, 77), noItem);
    EXPECT_EQ(simulatedDisk.steps.size(), written);
    EXPECT_THAT(uiRecord.lines, ElementsAre("box 166 / 2"));
}

TEST_F(OpenStore, InPlaceChangesAlterTheirFieldAlone) {
    const ItemId folder = add("F", kind::folder);
    const ItemId inner = add("G", kind::folder, folder);
    const ItemId program = add("A long old name", kind::program, inner, {1, 2}, {3});
    ASSERT_TRUE(storeRename(program, std::string(60, 'n')));
    EXPECT_EQ(read(program).name, std::string(52, 'n'));
    ASSERT_TRUE(storeRename(program, "short"));
    const Bytes nameField(file().end() - 3 - 77, file().end() - 3 - 24);
    EXPECT_EQ(nameField[5], 0);
    EXPECT_EQ(std::ranges::count(nameField, 0), 48) << "nothing of the old names stays";
    ASSERT_TRUE(storeRewriteHead(program, Bytes{8, 9}));
    EXPECT_FALSE(storeRewriteHead(program, Bytes{8, 9, 10}));
    ASSERT_TRUE(storeMove(program, folder));
    EXPECT_EQ(read(program).parent, folder);
    EXPECT_EQ(read(program).head, (Bytes{8, 9}));
    EXPECT_EQ(read(program).data, Bytes{3});
    for (const ItemId into : {folder, inner, program, ItemId{77}}) EXPECT_FALSE(storeMove(folder, into)) << into;
    EXPECT_EQ(uiRecord.boxes.size(), 4U);
    EXPECT_EQ(storeReadEntry(folder)->parent, rootId);
    checkFile();
}

TEST_F(OpenStore, DeletingAFolderEmptiesItAtAnyDepthAndTheEndOfTheRunClosesTheGaps) {
    const ItemId folder = add("F", kind::folder);
    const ItemId stays = add("S", kind::program, rootId, {7}, Bytes(100, 7));
    const ItemId inner = add("G", kind::folder, folder);
    add("A", kind::program, inner, {1}, Bytes(50, 1));
    const ItemId also = add("T", kind::list, rootId, {8}, Bytes(10, 8));
    add("B", kind::program, folder, {}, {});
    ASSERT_TRUE(storeDelete(folder));
    EXPECT_EQ(storeListItems().size(), 2U);
    EXPECT_EQ(read(stays).data, Bytes(100, 7));
    EXPECT_EQ(read(also).data, Bytes(10, 8));
    EXPECT_EQ(readLittle32(file(), 20), 2U) << "the head is written after a delete too";
    checkFile();
    const std::vector<StoredItem> left = allItems();
    const Bytes sound = file();
    setGapLimits({.step = 200, .all = 1});
    storeClose();
    EXPECT_EQ(readLittle32(file(), 28 + 4), readLittle32(sound, 28 + 4)) << "only the first record has moved";
    setGapLimits({.step = 200});
    ASSERT_TRUE(restart(Bytes(file())));
    EXPECT_THAT(uiRecord.lines, IsEmpty()) << "in order";
    ASSERT_TRUE(storeDelete(storeTempFolder()));
    EXPECT_TRUE(allItems() == left);
    storeClose();
    EXPECT_EQ(readLittle32(file(), 24), 8032U + 2 * 92 + 101 + 11) << "moved together";
    EXPECT_EQ(file().size(), readLittle32(file(), 24)) << "cut at the end";
    ASSERT_TRUE(restart(Bytes(file())) && storeDelete(storeTempFolder()));
    EXPECT_TRUE(allItems() == left);
}

TEST_F(OpenStore, WhatWentComesBackUnderItsOwnIdWhereThatIsFree) {
    const ItemId folder = add("F", kind::folder);
    add("A", kind::program, folder, {1}, {2, 3});
    EXPECT_EQ(Bytes(file().end() - 3, file().end()), (Bytes{1, 2, 3})) << "head, then data";
    const std::vector<StoredItem> gone = allItems();
    ASSERT_TRUE(storeDelete(folder));
    EXPECT_FALSE(storePutBack({gone[1]})) << "its folder isn't there";
    ASSERT_TRUE(storePutBack(gone));
    EXPECT_FALSE(storePutBack(gone)) << "the ids are in use";
    EXPECT_TRUE(allItems() == gone);
}

TEST_F(OpenStore, PathsNameFoldersOnlyAndNeverTheTempFolder) {
    EXPECT_EQ(storeResolvePath("", true), rootId);
    EXPECT_EQ(storeResolvePath("/", true), rootId);
    EXPECT_EQ(storeResolvePath("/A/B/", false), noItem);
    const ItemId inner = storeResolvePath("/A/B", true);
    EXPECT_EQ(storeResolvePath("/a/b/", false), inner);
    EXPECT_EQ(storeGetFlags(inner), 1U);
    add("P", kind::program, inner);
    EXPECT_EQ(storeResolvePath("/A/B/P/", false), noItem);
    const ItemId temp = storeTempFolder();
    EXPECT_EQ(storeReadEntry(temp)->kind, kind::temporaryFolder);
    EXPECT_EQ(storeTempFolder(), temp);
    EXPECT_EQ(storeResolvePath("/temp/", false), noItem);
    EXPECT_FALSE(storeItemExists("temp", rootId));
    const ItemId own = storeResolvePath("/temp/", true);
    ASSERT_NE(own, temp);
    EXPECT_EQ(storeReadEntry(own)->name, "temp");
    add("kept", kind::program, own);
    for (int i = 0; i < 2; i++) storeAddItem(item("X", kind::program, temp, {}, {}, NameTaken::keepBoth));
    EXPECT_EQ(storeListChildren(temp).size(), 2U);
    ASSERT_TRUE(storeResetTemp());
    EXPECT_FALSE(storeReadEntry(temp));
    EXPECT_TRUE(storeListChildren(temp).empty());
    EXPECT_TRUE(storeItemExists("KEPT", own));
    EXPECT_THAT(uiRecord.lines, IsEmpty());
    checkFile();
}

TEST_F(OpenStore, StandardFoldersAreFoundByKindAndNeverReplace) {
    languageLoad("English", "English");
    const ItemId taken = add(wording(Text::programsFolder), kind::folder);
    const ItemId programs = storeStandardFolder(1001);
    EXPECT_TRUE(storeReadEntry(taken));
    EXPECT_EQ(storeReadEntry(programs)->name, wording(Text::programsFolder) + " 2");
    EXPECT_EQ(storeReadEntry(programs)->kind, 1001U);
    EXPECT_EQ(storeGetFlags(programs), 1U);
    ASSERT_TRUE(storeRename(programs, "Mine"));
    EXPECT_EQ(storeStandardFolder(1001), programs);
    for (const ItemKind other : {kind::temporaryFolder, kind::folder, ItemKind{1012}, kind::program})
        EXPECT_EQ(storeStandardFolder(other), noItem);
}

TEST_F(OpenStore, ItemsArePlacedUnderOtherNamesOverOthersInOneChange) {
    const ItemId folder = add("F", kind::folder);
    const Bytes head = encodeProgramInfo({.imageLength = 1, .name = "A", .password = {}});
    const ItemId old = storeAddItem(item("A", kind::program, folder, {1}, Bytes(300, 2)));
    const ItemId moved = storeAddItem(item("A", kind::program, rootId, head, {4}));
    const ItemId renamed = storeAddItem(item("B", kind::program, rootId, head, {5}));
    const std::vector<ItemId> over = {old, old}, itself = {moved}, folders = {folder};
    EXPECT_FALSE(storePlaceItems({{moved, folder, {}}, {99, folder, {}}}, over));
    EXPECT_FALSE(storePlaceItems({{moved, 99, {}}}, over));
    EXPECT_FALSE(storePlaceItems({{folder, rootId, {}}}, {}));
    EXPECT_FALSE(storePlaceItems({{moved, folder, {}}}, itself));
    EXPECT_FALSE(storePlaceItems({{moved, folder, {}}}, folders));
    EXPECT_EQ(storeListChildren(folder).size(), 1U) << "all or nothing";
    ASSERT_TRUE(storePlaceItems({{moved, folder, {}}, {renamed, folder, "TOO LONG 2"}}, over));
    checkFile();
    const Bytes placed = file();
    ASSERT_TRUE(restart(placed));
    EXPECT_EQ(storeFindItem("A", folder), moved);
    EXPECT_EQ(read(renamed).name, "TOO LONG 2");
    EXPECT_EQ(decodeProgramInfo(read(renamed).head)->name, "TOO LONG");
    EXPECT_EQ(read(moved).head, head);
    EXPECT_FALSE(storeReadEntry(old));
}

TEST_F(OpenStore, ManyItemsComeAndMoveInOneChange) {
    const ItemId folder = add("F", kind::folder);
    const std::vector<ItemId> ids =
        storeAddItems({item("A", kind::program, folder, {1}, {2}), item("a", kind::list, folder, {}, {3, 4})});
    ASSERT_THAT(ids, ElementsAre(folder + 1, folder + 2));
    EXPECT_EQ(read(ids[1]).data, (Bytes{3, 4}));
    EXPECT_FALSE(storeMoveItems({{ids[0], rootId}, {99, rootId}}));
    EXPECT_FALSE(storeMoveItems({{ids[0], rootId}, {folder, rootId}}));
    EXPECT_EQ(storeListChildren(folder).size(), 2U) << "all or none";
    EXPECT_TRUE(storeMoveItems({{ids[0], rootId}, {ids[1], rootId}}));
    EXPECT_EQ(storeListChildren(rootId).size(), 3U);
    checkFile();
    const Bytes moved = file();
    ASSERT_TRUE(restart(moved));
    EXPECT_EQ(read(ids[0]).parent, rootId);
}

TEST_F(OpenStore, AFullTableRefusesButStillReplaces) {
    std::vector<NewItem> many;
    while (many.size() <= storeSlotCount)
        many.push_back(item(std::string("P").append(std::to_string(many.size())), kind::program, rootId, {}, {1}));
    EXPECT_THAT(storeAddItems(many), IsEmpty()) << "one too many: none of them";
    EXPECT_THAT(uiRecord.lines, ElementsAre("box 166 / 2"));
    EXPECT_TRUE(storeListItems().empty());
    many.pop_back();
    EXPECT_EQ(storeAddItems(many).size(), storeSlotCount);
    uiRecord.lines.clear();
    EXPECT_EQ(add("one more", kind::program), noItem);
    EXPECT_THAT(uiRecord.lines, ElementsAre("box 166 / 2"));
    const ItemId replacing = add("P0", kind::program, rootId, {}, {2});
    EXPECT_EQ(read(replacing).data, Bytes{2});
    EXPECT_TRUE(storeWriteItem(replacing, item("P0", kind::program, rootId, {}, {3})));
    EXPECT_EQ(storeListItems().size(), storeSlotCount);
    checkFile();
}

}  // namespace
}  // namespace numalink
