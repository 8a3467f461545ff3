// A file's way into the library: told apart, parked, asked about, moved. Bitmaps into pictures: the raster step, the
// planes, and files that are whole, broken or huge.
#include "exchange/import/import.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <ctime>

#include "calculator/program_info.h"
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

// The items of a folder: a program with its first byte, which tells where it came from.
std::string contentOf(ItemId folder) {
    std::string all;
    for (const ItemEntry &entry : storeListChildren(folder)) {
        StoredItem item;
        EXPECT_TRUE(storeReadItem(entry.id, item));
        const auto info = decodeProgramInfo(item.head);
        if (isTextKind(item.kind) && info) {
            EXPECT_EQ(info->name, item.name);
        }
        all += item.name + (isTextKind(item.kind) ? "=" + std::string(1, static_cast<char>(item.data[1])) : "") + ", ";
    }
    return all;
}

TEST_F(Import, NamesThatAreTakenAreListedOnceAndAllOfItIsOneStep) {
    uiRecord.importAction = ImportAction::oneFolder;
    uiRecord.importFolder = "games";
    importText("a.cat", catProgram("ONE", "A") + catProgram("TWO", "A"));
    EXPECT_TRUE(uiRecord.arrivals.empty()) << "what is all new isn't in the way";
    const ItemId folder = storeFindItem("games", rootId);
    storeAddItem({.name = "LIST", .parent = folder, .kind = kind::folder, .head = {}, .data = {}});
    const struct {
        std::optional<ArrivalChoice> choice;  // none: as preset
        bool accepted = false;
        const char *content = "";
    } rows[] = {{ArrivalChoice::replace, false, "ONE=A, TWO=A, LIST, "},
                {ArrivalChoice::skip, true, "ONE=A, TWO=A, LIST, THREE=B, LIST, "},
                {ArrivalChoice::keepBoth, true, "ONE=A, TWO=A, LIST, one 2=B, two 2=A, THREE=B, LIST, "},
                {std::nullopt, true, "ONE=A, TWO=A, LIST, one 2=B, THREE=B, LIST, "},
                {ArrivalChoice::replace, true, "LIST, one=B, two=A, THREE=B, LIST, "}};
    for (const auto &row : rows) {
        uiRecord.arrivalChoice = row.choice;
        uiRecord.arrivalsAccepted = row.accepted;
        uiRecord.arrivals.clear();
        importText("b.cat", catProgram("one", "B") + catProgram("two", "A") + catProgram("THREE", "B") +
                                catValues("LT", "LIST", 1, 1, "Value : 1 1 2\r\n"));
        EXPECT_EQ(contentOf(folder), row.content);
        ASSERT_EQ(uiRecord.arrivals.size(), 4u);
        std::vector<ArrivalState> states;
        for (const ArrivalRow &arrival : uiRecord.arrivals) states.push_back(arrival.state);
        EXPECT_THAT(states,
                    ElementsAre(ArrivalState::differs, ArrivalState::same, ArrivalState::isNew, ArrivalState::isNew))
            << "those of other kinds are let be";
        EXPECT_EQ(uiRecord.arrivals[0].freeName, "one 2");
        EXPECT_EQ(uiRecord.arrivals[0].where, "games");
        TakenBack done;
        if (!row.accepted) continue;
        EXPECT_EQ(storeUndoOffer()->name, "b");
        ASSERT_TRUE(storeUndo(done));
        EXPECT_EQ(contentOf(folder), "ONE=A, TWO=A, LIST, ");
    }
    TakenBack done;
    ASSERT_TRUE(storeUndo(done));
    EXPECT_TRUE(storeReadEntry(folder)) << "something of the user's lies in it";
}

TEST_F(Import, ManyFilesAreAskedAboutOnceAndListedTogether) {
    std::vector<FileToImport> files;
    for (int i = 0; i < 500; i++) {
        const std::string name = "P" + std::to_string(i);
        scratch.write(name + ".cat", i == 7 ? "%Header Record\r\nFo" : catProgram(name, "B"));
        files.push_back({scratch.path + name + ".cat", name});
    }
    files.push_back(files[3]);  // the same file twice
    scratch.write("other.cat", catProgram("P4", "C") + catProgram("P3", "B") + catProgram("P3", "D"));
    files.push_back({scratch.path + "other.cat", "other"});
    files.push_back({scratch.path + "missing.cat", "missing"});
    int asked = 0;
    uiRecord.arrivalChoice.reset();
    uiRecord.answerImport = [&](ImportQuestion &question) {
        asked++;
        EXPECT_EQ(question.filesLeft, 502u);
        question.action = ImportAction::oneFolder;
        question.folderName = "all";
        question.forAll = true;
    };
    importFiles(files);
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(uiRecord.boxes.empty());
    ASSERT_EQ(uiRecord.notes.size(), 2u);
    EXPECT_THAT(uiRecord.notes[0], HasSubstr("P7: "));
    EXPECT_THAT(uiRecord.notes[1], HasSubstr("missing: "));
    ASSERT_EQ(uiRecord.arrivals.size(), 503u);
    EXPECT_EQ(uiRecord.arrivals[499].state, ArrivalState::twice);
    const ItemId folder = storeFindItem("all", rootId);
    const std::vector<std::string> names = namesIn(folder);
    EXPECT_EQ(names.size(), 501u) << "of the same only one";
    EXPECT_EQ(uiRecord.arrivals.back().freeName, "P3 4");
    EXPECT_EQ(std::ranges::count(names, "P3"), 1);
    const std::string all = contentOf(folder);
    for (const char *one : {"P4=B, ", "P4 2=C, ", "P3 4=D, "}) EXPECT_THAT(all, HasSubstr(one));
    TakenBack done;
    ASSERT_TRUE(storeUndo(done));
    EXPECT_EQ(done.step.name, "P0 ...");
    EXPECT_EQ(storeFindItem("all", rootId), noItem) << "all files are one step";
}

TEST_F(Import, WhatIsThereAlreadyStaysTheSameWhateverElseComes) {
    uiRecord.importAction = ImportAction::standardFolders;
    importText("a.cat", catProgram("ONE", "A"));
    scratch.write("b.cat", catProgram("ONE", "B"));
    uiRecord.arrivalChoice.reset();
    importFiles({{scratch.path + "b.cat", "b"}, {scratch.path + "a.cat", "a"}, {scratch.path + "b.cat", "b"}});
    std::vector<ArrivalState> states;
    for (const ArrivalRow &arrival : uiRecord.arrivals) states.push_back(arrival.state);
    EXPECT_THAT(states, ElementsAre(ArrivalState::differs, ArrivalState::same, ArrivalState::twice));
    EXPECT_EQ(contentOf(storeStandardFolder(1001)), "ONE=A, ONE 2=B, ");
}

TEST_F(Import, AnAnswerForAllCancelsAllAndAFullLibraryTellsWhatWasLeft) {
    std::vector<FileToImport> files;
    for (const std::string name : {"A", "B", "C", "D"}) {
        scratch.write(name + ".cat", catProgram(name));
        files.push_back({scratch.path + name + ".cat", name});
    }
    int asked = 0;
    uiRecord.answerImport = [&](ImportQuestion &question) {
        question.action = asked++ == 0 ? ImportAction::standardFolders : ImportAction::none;
        question.forAll = asked == 2;
    };
    importFiles(files);
    EXPECT_EQ(asked, 2);
    EXPECT_THAT(namesIn(storeStandardFolder(1001)), ElementsAre("A")) << "what was answered ahead of it comes in";
    storeResetTemp();
    ASSERT_FALSE(storeAddItems(std::vector<NewItem>(storeSlotCount - storeListItems().size() - 2,
                                                    {.name = "X", .head = {}, .data = {}}))
                     .empty());
    uiRecord.answerImport = [](ImportQuestion &question) { question.forAll = true; };
    uiRecord.arrivals.clear();
    importFiles(files);
    ASSERT_EQ(uiRecord.arrivals.size(), 2u);
    ASSERT_EQ(uiRecord.notes.size(), 2u);
    EXPECT_EQ(uiRecord.notes[0], "C: " + wording(Text::storeFull));
    EXPECT_EQ(uiRecord.notes[1], wording(Text::importFilesLeft, {"1"}));
}

TEST_F(Import, ManyThatTakeThePlaceOfOthersNeedNoMoreRoomThanOneFile) {
    const ItemId programs = storeStandardFolder(1001);
    std::vector<FileToImport> files;
    for (const std::string name : {"A", "B", "C", "D"}) {
        scratch.write(name + ".cat", catProgram(name, "new"));
        files.push_back({scratch.path + name + ".cat", name});
        storeAddItem({.name = name, .parent = programs, .kind = kind::program, .head = {}, .data = {':', 'o'}});
    }
    storeTempFolder();
    ASSERT_FALSE(storeAddItems(std::vector<NewItem>(storeSlotCount - storeListItems().size() - 1,
                                                    {.name = "X", .head = {}, .data = {}}))
                     .empty());
    uiRecord.importAction = ImportAction::standardFolders;
    uiRecord.arrivalChoice = ArrivalChoice::replace;
    importFiles(files);
    EXPECT_TRUE(uiRecord.boxes.empty());
    EXPECT_EQ(contentOf(programs), "A=n, B=n, C=n, D=n, ");
    TakenBack done;
    while (storeUndo(done)) continue;
    const std::string before = contentOf(programs);
    uiRecord.answerImport = [](ImportQuestion &question) { question.forAll = true; };
    uiRecord.arrivals.clear();
    ImportWays ways;
    ways.goesOn = [](std::size_t read, std::size_t) { return read < 3; };
    importFiles(files, ways);
    EXPECT_EQ(uiRecord.arrivals.size(), 2u) << "two had come in already";
    EXPECT_EQ(contentOf(programs), before) << "of what was cancelled nothing stays";
}

TEST_F(Import, ACancelledOneLeavesNothingAndSendsNothing) {
    std::vector<FileToImport> files;
    for (const std::string name : {"A", "B", "C", "D"}) {
        scratch.write(name + ".cat", catProgram(name));
        files.push_back({scratch.path + name + ".cat", name});
    }
    for (const ImportAction action : {ImportAction::oneFolder, ImportAction::transmit}) {
        uiRecord.answerImport = [&](ImportQuestion &question) {
            question.action = action;
            question.forAll = true;
        };
        std::vector<std::size_t> told;
        int pauses = 0;
        ImportWays ways;
        ways.goesOn = [&](std::size_t done, std::size_t all) {
            told.push_back(done);
            return all == 4 && done < 3;
        };
        ways.pauses = [&] { pauses++; };
        importFiles(files, ways);
        EXPECT_THAT(told, ElementsAre(1, 2, 3)) << "the first one had a question";
        EXPECT_EQ(pauses, 1);
        EXPECT_TRUE(namesIn(storeTempFolder()).empty());
        EXPECT_EQ(storeFindItem("A", rootId), noItem);
        EXPECT_TRUE(transmitQueueIds().empty());
        EXPECT_EQ(uiRecord.lines.back(), "status 2: " + wording(Text::importCancelled));
    }
}

TEST_F(Import, WhatChangesWhileTheListIsOpenIsSeen) {
    uiRecord.importAction = ImportAction::standardFolders;
    importText("a.cat", catProgram("ONE", "A"));
    const ItemId programs = storeStandardFolder(1001);
    const auto addHere = [&](const std::string &name) {
        return storeAddItem({.name = name, .parent = programs, .kind = kind::program, .head = {}, .data = {':', 'X'}});
    };
    uiRecord.arrivalChoice = ArrivalChoice::replace;
    uiRecord.whileListed = [&] {
        storeDelete(storeFindItem("ONE", programs));
        addHere("TWO");  // as a calculator would send it
        ASSERT_TRUE(storeDelete(uiRecord.arrivals[2].id));
    };
    importText("b.cat", catProgram("ONE", "B") + catProgram("TWO", "B") + catProgram("THREE", "B"));
    const std::vector<std::string> names = namesIn(programs);
    EXPECT_THAT(names, testing::UnorderedElementsAre("ONE", "TWO", "TWO 2")) << "nothing unseen is replaced";
    ASSERT_EQ(uiRecord.boxes.size(), 1u);
    EXPECT_EQ(uiRecord.boxes[0].bodyText, Text::importGone);
    EXPECT_THAT(uiRecord.lines, testing::Contains("status 2: " + wording(Text::importKeptBeside, {"1"})))
        << "what wasn't there any more wasn't replaced";
}

TEST_F(Import, WhatIsToBeSentWaitsWhileOthersComeIn) {
    scratch.write("a.cat", catProgram("ONE"));
    scratch.write("b.cat", catProgram("TWO"));
    int asked = 0;
    uiRecord.answerImport = [&](ImportQuestion &question) {
        question.action = asked++ == 0 ? ImportAction::transmit : ImportAction::standardFolders;
    };
    importFiles({{scratch.path + "a.cat", "a"}, {scratch.path + "b.cat", "b"}});
    EXPECT_THAT(namesIn(storeStandardFolder(1001)), ElementsAre("TWO"));
    EXPECT_THAT(namesIn(storeTempFolder()), ElementsAre("ONE"));
    EXPECT_EQ(transmitQueueIds().size(), 1u);
    transmitQueueClear();
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
