// A file's way into the library: told apart, parked, asked about, moved. Bitmaps into pictures: the raster step, the
// planes, and files that are whole, broken or huge.
#include "exchange/import/import.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <ctime>

#include "drawing/plane_picture.h"
#include "exchange/import/bitmap_import.h"
#include "exchange/reader_calls.h"
#include "link/transmit_queue.h"
#include "platform/file_port.h"
#include "platform/picture_file.h"
#include "settings/settings_store.h"
#include "store/undo/undo.h"
#include "support/cat_records.h"
#include "telling/texts.h"

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
    EXPECT_EQ(uiRecord.boxes[0].bodyText, Text::storeFull);
    EXPECT_TRUE(uiRecord.lastQuestion.itemNames.empty()) << "there is nothing to ask about";
}

TEST_F(Import, WhatCouldNotBeMovedStaysWhereItWaits) {
    static int failures = 1;
    storeStandardFolder(1001);
    uiRecord.importAction = ImportAction::standardFolders;
    filePort.writeAt = [](int file, std::uint64_t offset, const void *bytes, std::size_t count) {
        const bool isMove = !uiRecord.lastQuestion.itemNames.empty();  // it was asked where to
        return isMove && failures-- > 0 ? 0 : systemFilePort.writeAt(file, offset, bytes, count);
    };
    importText("a.cat", catProgram("ONE"));
    filePort = systemFilePort;
    EXPECT_EQ(uiRecord.boxes.size(), 1u);
    EXPECT_THAT(namesIn(storeTempFolder()), ElementsAre("ONE"));
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
    importText("b.cat", catProgram("TWO"));
    EXPECT_THAT(uiRecord.lastQuestion.itemNames, ElementsAre("TWO"));
    EXPECT_THAT(namesIn(storeTempFolder()), ElementsAre("ONE", "TWO")) << "what isn't queued goes";
    EXPECT_EQ(transmitQueueIds().size(), 2u);
    EXPECT_TRUE(storeReadEntry(transmitQueueIds()[0]));
    transmitQueueDrop();
    uiRecord.importAction = ImportAction::standardFolders;
    importText("c.cat", catProgram("THREE"));
    EXPECT_THAT(namesIn(storeStandardFolder(1001)), ElementsAre("THREE"));
    EXPECT_EQ(transmitQueueAgain(), 2u) << "dropped by a failure, and still there";
    transmitQueueClear();
}

TEST_F(Import, NamesThatAreTakenAreAskedAboutOnceAndAllOfItIsOneStep) {
    uiRecord.importAction = ImportAction::oneFolder;
    uiRecord.importFolder = "games";
    importText("a.cat", catProgram("ONE", "A") + catProgram("TWO", "A"));
    const ItemId folder = storeFindItem("games", rootId);
    storeAddItem({.name = "LIST", .parent = folder, .kind = kind::folder, .head = {}, .data = {}});
    const auto content = [&] {
        std::string all;
        for (const ItemEntry &entry : storeListChildren(folder)) {
            StoredItem item;
            EXPECT_TRUE(storeReadItem(entry.id, item));
            all += item.name + (isTextKind(item.kind) ? std::string(1, static_cast<char>(item.data[1])) : "") + " ";
        }
        return all;
    };
    const struct {
        ImportTaken answer;
        const char *content;
    } rows[] = {{ImportTaken::cancel, "ONEA TWOA LIST "},
                {ImportTaken::keepBoth, "ONEA TWOA LIST oneB THREEB LIST "},
                {ImportTaken::skip, "ONEA TWOA LIST THREEB LIST "},
                {ImportTaken::replace, "TWOA LIST oneB THREEB LIST "}};
    for (const auto &row : rows) {
        uiRecord.importTaken = row.answer;
        uiRecord.lines.clear();
        importText("b.cat", catProgram("one", "B") + catProgram("THREE", "B") +
                                catValues("LT", "LIST", 1, 1, "Value : 1 1 2\r\n"));
        EXPECT_EQ(content(), row.content);
        EXPECT_EQ(std::ranges::count(uiRecord.lines, "taken 1: one"), 1) << "those of other kinds are let be";
        TakenBack done;
        if (row.answer == ImportTaken::cancel) continue;
        EXPECT_EQ(storeUndoOffer()->name, "b");
        ASSERT_TRUE(storeUndo(done));
        EXPECT_EQ(content(), "ONEA TWOA LIST ");
    }
    TakenBack done;
    ASSERT_TRUE(storeUndo(done));
    EXPECT_TRUE(storeReadEntry(folder)) << "something of the user's lies in it";
}

TEST_F(Import, ASpoiltFileDoesNotDrownTheUser) {
    std::string file;
    for (int i = 0; i < 50; i++) file += catValues("MT", "A", 0, 1, "");
    importText("a.cat", file);
    EXPECT_EQ(uiRecord.boxes.size(), 9u);
    EXPECT_THAT(uiRecord.boxes.back().body, HasSubstr("42"));
}

// Every hue in turn, brightness rising and falling.
Surface manyColors() {
    Surface picture(calculatorPictureWidth, calculatorPictureHeight);
    for (std::size_t i = 0; i < picture.dots.size(); i++) picture.dots[i] = static_cast<Color>(i * 0x030507) & 0xFFFFFF;
    return picture;
}

// The expected colours come from the raster step as it was worked out apart from the program.
TEST(Raster, GivesEachDotOneOfFourColorsAndOwesTheRestToTheNext) {
    const struct {
        RasterType type;
        std::string_view first;  // dots, by place in colours
        std::vector<std::ptrdiff_t> counts;
    } cases[] = {{RasterType::sharp,
                  "111111111111122222222222220000000000011111100000"
                  "000222222200000000000000003333333333311111111100",
                  {3310, 1612, 1627, 1643}},
                 {RasterType::image,
                  "111121112312121321210210220020000200201130131013"
                  "013001032302322023200202023333033303311010100100",
                  {2953, 1464, 2082, 1693}}};
    const std::vector<Color> colors = {0xBEDCC8, 0x009600, 0x0000C8, 0xFF6400};
    for (const auto &[type, first, counts] : cases) {
        const Surface raster = rasterPicture(manyColors(), type);
        for (std::size_t i = 0; i < first.size(); i++)
            EXPECT_EQ(raster.dots[i], colors[static_cast<std::size_t>(first[i] - '0')]) << i;
        for (std::size_t i = 0; i < colors.size(); i++)
            EXPECT_EQ(std::ranges::count(raster.dots, colors[i]), counts[i]) << i;
    }
}

TEST(PictureItem, HasItsCornersInPlaceAndIsDrawnAsItsRaster) {
    Surface raster(calculatorPictureWidth, calculatorPictureHeight);
    putDot(raster, 0, 0, 0xFF6400);
    putDot(raster, 127, 63, 0x009600);
    putDot(raster, 126, 63, 0x1010D0);  // near enough to blue
    const Bytes data = pictureItem(raster, "PIC").data;
    ASSERT_EQ(data.size(), 4120u);
    EXPECT_THAT((std::vector<int>{data[5 + 1023], data[1030 + 5], data[2060 + 5], data[3090 + 4]}),
                ElementsAre(0x80, 2, 1, 4));
    raster = rasterPicture(manyColors(), RasterType::image);
    const ImportedItem item = pictureItem(raster, "PIC");
    Surface drawn(calculatorPictureWidth, calculatorPictureHeight, lcdColor::background);
    drawPicture(drawn, item.head, item.data);
    EXPECT_EQ(drawn.dots, raster.dots);
}

// Of 2 by 2 dots with 24 bits: red and green over blue and white; rows stand from the bottom.
const std::string bmp = std::string("BM\x46\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\2\0\0\0\1\0\x18\0", 30) +
                        std::string(24, '\0') + std::string("\xFF\0\0\xFF\xFF\xFF\0\0\0\0\xFF\0\xFF\0\0\0", 16);

ByteView viewOf(const std::string &text) { return {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()}; }

TEST(PictureFile, IsScaledToTheNearestDot) {
    Surface scaled(4, 4);
    for (const std::string &file : {bmp, "P6\n2 2\n255\n" + std::string("\xFF\0\0\0\xFF\0\0\0\xFF\xFF\xFF\xFF", 12)}) {
        ASSERT_EQ(readScaledPicture(viewOf(file), scaled), PictureResult::done);
        EXPECT_THAT(
            (std::vector<Color>{dotAt(scaled, 1, 1), dotAt(scaled, 2, 0), dotAt(scaled, 0, 3), dotAt(scaled, 3, 2)}),
            ElementsAre(0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF));
    }
}

TEST(PictureFile, BrokenAndHugeFilesEndWithAResult) {
    Surface scaled(4, 4);
    for (std::size_t length = 0; length < bmp.size(); length++)
        EXPECT_EQ(readScaledPicture(viewOf(bmp.substr(0, length)), scaled), PictureResult::unreadable) << length;
    std::string huge = bmp;
    for (const std::string &sides : {std::string("\0\0\1\0\0\0\1\0", 8), std::string("\0\x40\0\0\0\xC0\xFF\xFF", 8),
                                     std::string("\0\0\0\x80\0\0\0\x80", 8)}) {
        huge.replace(18, 8, sides);
        EXPECT_EQ(readScaledPicture(viewOf(huge), scaled), PictureResult::tooLarge);
    }
    EXPECT_TRUE(isPictureFile(viewOf(huge)));
    EXPECT_FALSE(isPictureFile(viewOf(std::string("<svg"))));
}

TEST_F(Import, BitmapsAreAskedForAndParkedOrRefused) {
    importText("Logo.bmp", bmp);
    EXPECT_THAT(uiRecord.lines, ElementsAre("bitmap Logo")) << "refused: no question where to";
    uiRecord.bitmapAccepted = true;
    uiRecord.bitmapType = RasterType::sharp;
    uiRecord.importAction = ImportAction::standardFolders;
    importText("Logo.bmp", bmp);
    EXPECT_EQ(uiRecord.lastQuestion.itemNames, std::vector<std::string>{"Logo"});
    const std::vector<ItemEntry> pictures = storeListChildren(storeStandardFolder(1007));
    ASSERT_EQ(pictures.size(), 1u);
    StoredItem stored;
    ASSERT_TRUE(storeReadItem(pictures[0].id, stored));
    EXPECT_EQ(stored.data, pictureItem(uiRecord.lastBitmap.sharp, "Logo").data);
    EXPECT_TRUE(uiRecord.boxes.empty());
    importText("broken.bmp", "BM and nothing else");
    EXPECT_EQ(uiRecord.boxes.size(), 1u);
}

TEST_F(Exchange, FilesTakeTimeInStepWithTheirSize) {
    std::string file = "%Header Record\r\nData Type:PG\r\nCapacity:9\r\nFile Name:BIG\r\n%Data Record\r\n";
    for (int i = 0; i < 800000; i++) file += "%no\n";
    file += "%End\r\n%Header Record\r\nData Type:PG\r\nCapacity:9\r\nFile Name:LINE\r\n%Data Record\r\n";
    const std::clock_t start = std::clock();
    const ReadResult read = readWith(readCat, file + std::string(60000, '"') + "\r\n%End\r\n");
    EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 15);
    ASSERT_EQ(read.taken.size(), 1u);
    EXPECT_EQ(read.taken[0].data.size(), 60003u);
    ASSERT_EQ(read.messages.size(), 1u);
}

}  // namespace
}  // namespace numalink
