// A file's way into the library: told apart, parked, asked about, moved.
#include "exchange/import.h"
#include "link/transmit_queue.h"

#include <gmock/gmock.h>

#include "calculator/frames.h"
#include "exchange/reader_calls.h"
#include "platform/file_port.h"
#include "settings/own_texts.h"
#include "settings/settings_store.h"
#include "support/cat_records.h"

namespace numalink {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct Import : LibraryExchange {
    void importText(const std::string &name, const std::string &content) {
        scratch.write(name, content);
        importFile(scratch.path + name, importBaseName(name));
    }
    static std::vector<std::string> namesIn(ItemId folder) {
        std::vector<std::string> names;
        for (const ItemEntry &entry : storeListChildren(folder)) names.push_back(entry.name);
        return names;
    }
};

TEST_F(Import, OneItemGoesToTheFolderOfItsKindAndSeveralToOneNamedAsTheFile) {
    uiRecord.importAction = ImportAction::standardFolders;
    importText("one.cat", catProgram("ONE"));
    EXPECT_EQ(uiRecord.lastQuestion.action, ImportAction::standardFolders);
    EXPECT_THAT(namesIn(storeStandardFolder(1001)), ElementsAre("ONE"));
    EXPECT_TRUE(namesIn(storeTempFolder()).empty());
    uiRecord.importAction = ImportAction::oneFolder;
    importText("My games.v2.cat", catProgram("ONE") + catProgram("one") + catProgram(""));
    EXPECT_EQ(uiRecord.lastQuestion.action, ImportAction::oneFolder);
    EXPECT_THAT(uiRecord.lastQuestion.itemNames, ElementsAre("ONE", "one", "My games"));
    EXPECT_THAT(namesIn(storeResolvePath("/My games.v2/", false)), ElementsAre("ONE", "one", "My games"));
    EXPECT_TRUE(uiRecord.boxes.empty());
}

TEST_F(Import, ManyItemsWaitForTheDiskAsLittleAsOne) {
    ASSERT_TRUE(storeResetTemp()) << "the next one is then a second one, as ever after";
    static int syncs = 0;
    filePort.sync = [](int file) {
        syncs++;
        return systemFilePort.sync(file);
    };
    uiRecord.importAction = ImportAction::oneFolder;
    importText("one.cat", catProgram("ONE"));
    const int ofOne = std::exchange(syncs, 0);
    std::string many;
    for (int i = 0; i < 50; i++) many += catProgram(std::to_string(i));
    importText("many.cat", many);
    filePort = systemFilePort;
    EXPECT_EQ(syncs, ofOne);
    EXPECT_EQ(namesIn(storeResolvePath("/many/", false)).size(), 50u);
}

TEST_F(Import, AFullLibraryTakesAllOrNothing) {
    ASSERT_FALSE(
        storeAddItems(std::vector<NewItem>(storeSlotCount - 2, {.name = "A", .head = {}, .data = {}})).empty());
    importText("two.cat", catProgram("ONE") + catProgram("TWO"));
    EXPECT_TRUE(namesIn(storeTempFolder()).empty());
    ASSERT_EQ(uiRecord.boxes.size(), 1u);
    EXPECT_EQ(uiRecord.boxes[0].bodyNumber, ownTextNumber(OwnText::storeFull));
    EXPECT_TRUE(uiRecord.lastQuestion.itemNames.empty()) << "there is nothing to ask about";
}

TEST_F(Import, AFolderOfTheUserIsNeverTheParkingPlace) {
    uiRecord.importAction = ImportAction::oneFolder;
    uiRecord.importFolder = "temp";
    importText("a.cat", catProgram("ONE"));
    uiRecord.importFolder = "  ";
    importText("b.cat", catProgram("TWO"));
    const ItemId folder = storeResolvePath("/temp/", false);
    ASSERT_NE(folder, noItem);
    EXPECT_NE(folder, storeTempFolder());
    EXPECT_THAT(namesIn(folder), ElementsAre("ONE"));
    EXPECT_NE(storeFindItem("TWO", rootId), noItem) << "a folder name of nothing is the top level";
}

TEST_F(Import, CancelledItemsGoWithTheNextImport) {
    importText("a.cat", catProgram("ONE"));
    EXPECT_THAT(namesIn(storeTempFolder()), ElementsAre("ONE"));
    importText("b.cat", catProgram("TWO"));
    EXPECT_THAT(namesIn(storeTempFolder()), ElementsAre("TWO"));
    uiRecord.leaveAllowed = false;
    importText("c.cat", catProgram("THREE"));
    EXPECT_THAT(namesIn(storeTempFolder()), ElementsAre("TWO")) << "the view would not be left";
}

TEST_F(Import, TransmittingQueuesWhatWasRead) {
    uiRecord.importAction = ImportAction::transmit;
    settingsSetValue(setting::linkType, "algebra");  // takes no lists
    importText("a.cat", catValues("LT", "LIST", 1, 1, "Value : 1 1 2\r\n") + catProgram("ONE"));
    settingsSetValue(setting::linkType, "cfx");
    EXPECT_EQ(uiRecord.boxes.size(), 1u);
    EXPECT_EQ(transmitQueueIds().size(), 1u);
    EXPECT_THAT(namesIn(storeTempFolder()), ElementsAre("LIST", "ONE"));
    transmitQueueClear();
}

TEST_F(Import, FilesThatAreNone) {
    importFile(scratch.path + "no such file.cat", "x");
    importFile(scratch.path, "x");
    importText("empty.cat", "");
    importText("picture.bmp", "BM and more");
    importText("Ü b.cas", std::string(":END") + std::string(46, '\xFF'));
    std::vector<int> numbers;
    for (const Box &box : uiRecord.boxes) numbers.push_back(box.bodyNumber);
    EXPECT_THAT(numbers, ElementsAre(93, 93, 99, 175, 165));
    EXPECT_THAT(uiRecord.boxes[0].body, HasSubstr("no such file.cat: there is no such file"));
    EXPECT_THAT(uiRecord.boxes[1].body, HasSubstr("is a folder"));
    EXPECT_THAT(uiRecord.boxes[2].body, HasSubstr("empty.cat is empty"));
    EXPECT_THAT(uiRecord.boxes[4].body, HasSubstr("Ü b"));
}

TEST_F(Import, AfterAnErrorTheRestIsAskedAbout) {
    uiRecord.importAction = ImportAction::standardFolders;
    importText("a.cat", "\xEF\xBB\xBF" + catProgram("ONE") + catProgram("FAR TOO LONG"));
    ASSERT_EQ(uiRecord.boxes.size(), 1u);
    EXPECT_EQ(uiRecord.boxes[0].bodyNumber, 100);
    EXPECT_THAT(namesIn(storeStandardFolder(1001)), ElementsAre("ONE"));
}

TEST_F(Import, ASpoiltFileDoesNotDrownTheUser) {
    std::string file;
    for (int i = 0; i < 50; i++) file += catValues("MT", "A", 0, 1, "");
    importText("a.cat", file);
    EXPECT_EQ(uiRecord.boxes.size(), 9u);
    EXPECT_THAT(uiRecord.boxes.back().body, HasSubstr("42"));
}

}  // namespace
}  // namespace numalink
