// What may wait for a calculator, and what is refused by name.
#include <gtest/gtest.h>

#include "link/link_scene.h"
#include "link/notices.h"
#include "link/outgoing_image.h"
#include "support/ui_recorder.h"
#include "telling/language_table.h"

namespace numalink {

namespace {

struct Queue : testing::Test {
    Queue() {
        languageLoad("English", "English");
        LinkScene::prepare(false, false);
    }

    ItemId add(const std::string &name, ItemKind itemKind, Bytes head, Bytes data, ItemId parent = rootId) {
        return storeAddItem({.name = name,
                             .parent = parent,
                             .kind = itemKind,
                             .head = head,
                             .data = data,
                             .whenTaken = NameTaken::nextFreeName});
    }
    ItemId addProgram(const std::string &name, ItemId parent = rootId) {
        return add(name, kind::program, encodeProgramInfo({.imageLength = 3, .name = "P", .password = {}}),
                   {':', 0xFF, 0}, parent);
    }
    ItemId addFolder(const std::string &name, ItemId parent) { return add(name, kind::folder, {}, {}, parent); }

    const LinkScene scene;
    const RecordedUi recorded;
};

TEST_F(Queue, takesAllThatAFolderHoldsButWhatCannotGo) {
    const ItemId outer = addFolder("outer", rootId);
    const ItemId first = addProgram("A", outer);
    const ItemId inner = addFolder("inner", outer);
    const ItemId second = addProgram("B", inner);
    const ItemId screen = add("screen", kind::monochromeScreen, Bytes(40), {':', 0x3A}, outer);
    EXPECT_FALSE(queueItem(screen));
    EXPECT_TRUE(queueItem(outer));
    EXPECT_EQ(transmitQueueIds(), (std::vector<ItemId>{first, second}));
    EXPECT_EQ(uiRecord.lines, std::vector<std::string>(2, "box 108 / 2 screen"));
    EXPECT_TRUE(transmitCanBegin());
}

TEST_F(Queue, endsInACircleOfFoldersAndTellsAFewRefusalsOnly) {
    const ItemId outer = addFolder("outer", rootId);
    const ItemId inner = addFolder("inner", outer);
    const ItemId program = addProgram("A", inner);
    for (int i = 0; i < 11; i++) add("S" + std::to_string(i), kind::monochromeScreen, Bytes(40), {':', 0x3A}, inner);
    storeClose();
    std::string file = scene.folder.read("storage.dat");
    constexpr std::size_t parentBehindName = 73;  // in the head of a record
    file[file.find("outer") + parentBehindName] = static_cast<char>(inner);
    scene.folder.write("storage.dat", file);
    ASSERT_TRUE(storeOpen());
    ASSERT_EQ(storeReadEntry(outer)->parent, inner);
    uiRecord.lines.clear();
    EXPECT_TRUE(queueItem(outer));
    EXPECT_EQ(transmitQueueIds(), std::vector<ItemId>{program});
    ASSERT_EQ(uiRecord.lines.size(), 9u);
    EXPECT_EQ(uiRecord.lines.back(), "box 108 / 2 3");
}

TEST_F(Queue, refusesTheHundredAndFirstOnce) {
    const ItemId all = addFolder("all", rootId);
    for (int i = 0; i < 103; i++) addProgram("P" + std::to_string(i), all);
    EXPECT_FALSE(queueItem(all));
    EXPECT_EQ(transmitQueueCount(), 100u);
    EXPECT_EQ(uiRecord.lines, (std::vector<std::string>{"box 172 / 2 P100"}));
}

TEST_F(Queue, wordsOfWhatWaitsAreOverWithTheEndOfTheConversation) {
    queueAndTell(addProgram("A"));
    EXPECT_EQ(uiRecord.lines.back(), "status 1: " + waitingText());
    EXPECT_EQ(linkNoticeState(), NoticeState::standing);
    linkResult(Text::algebraSent);
    EXPECT_EQ(linkNoticeState(), NoticeState::none) << "else the idle words would soon take the result's place";
}

TEST(PictureSlots, comeFromTheNameAlone) {
    EXPECT_EQ(slotOfPictureName("PICTURE 3"), 3);
    EXPECT_EQ(slotOfPictureName("picture6"), 6);
    for (const char *name : {"Picture7", "Pict1", "Picture", "Picture  1", "Picture12"})
        EXPECT_EQ(slotOfPictureName(name), std::nullopt) << name;
}

}  // namespace

}  // namespace numalink
