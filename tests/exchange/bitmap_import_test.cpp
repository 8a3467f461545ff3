// Bitmaps into pictures: the raster step against a second writing of it, the planes, and the forms of BMP files.
#include "exchange/bitmap_import.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "drawing/plane_picture.h"
#include "exchange/import.h"
#include "platform/picture_file.h"
#include "platform/thread_role.h"
#include "settings/language_table.h"
#include "store/item_store.h"
#include "support/scratch_folder.h"
#include "support/ui_recorder.h"

namespace numalink {
namespace {

using testing::ElementsAre;

// The raster step once more, a number at a time, as one would work it out by hand.
std::vector<int> rasterByHand(const std::vector<long> &picture, int mode) {
    const long colours[4][3] = {{190, 220, 200}, {0, 150, 0}, {0, 0, 200}, {255, 100, 0}};
    unsigned long long seed = 0;
    long owed[3] = {0, 0, 0};  // wanted less given
    std::vector<int> result;
    for (std::size_t i = 0; i < picture.size(); i += 3) {
        seed = (seed * 214013ull + 2531011ull) % 4294967296ull;
        const unsigned long long drawn = seed / 65536 % 32768;
        if (mode == 0 || drawn * 5 < 32767) owed[0] = owed[1] = owed[2] = 0;
        int best = 0;
        long bestAmiss = -1;
        for (int part = 0; part < 3; part++) owed[part] += picture[i + static_cast<std::size_t>(part)];
        for (int index = 0; index < 4; index++) {
            long amiss = 0;
            for (int part = 0; part < 3; part++) amiss += std::labs(owed[part] - colours[index][part]);
            if (bestAmiss < 0 || amiss < bestAmiss) {
                bestAmiss = amiss;
                best = index;
            }
        }
        for (int part = 0; part < 3; part++) owed[part] -= colours[best][part];
        result.push_back(best);
    }
    return result;
}

Surface randomPicture(unsigned seed) {
    std::mt19937 chance(seed);
    Surface picture(calculatorPictureWidth, calculatorPictureHeight, 0xFFFFFF);
    if (seed == 11) return picture;
    const Color mask = seed % 3 == 0 ? 0xFFFFFF : seed % 3 == 1 ? 0xC0C0C0 : 0xFF0000;
    for (std::size_t i = 0; i < picture.dots.size(); i++)
        picture.dots[i] =
            seed % 2 == 0 ? static_cast<Color>(chance() & mask) : static_cast<Color>(i * 31 + seed) & 0xFFFFFF;
    return picture;
}

TEST(Raster, AgreesWithASecondWritingOfIt) {
    const Color colours[4] = {0xBEDCC8, 0x009600, 0x0000C8, 0xFF6400};
    for (unsigned seed = 0; seed < 12; seed++) {
        const Surface picture = randomPicture(seed);
        std::vector<long> parts;
        for (const Color dot : picture.dots)
            for (const int shift : {16, 8, 0}) parts.push_back(static_cast<long>(dot >> shift & 0xFF));
        for (const int mode : {0, 1}) {
            const Surface raster = rasterPicture(picture, static_cast<RasterType>(mode));
            const std::vector<int> byHand = rasterByHand(parts, mode);
            for (std::size_t i = 0; i < byHand.size(); i++)
                ASSERT_EQ(raster.dots[i], colours[byHand[i]]) << "seed " << seed << ", mode " << mode << ", dot " << i;
        }
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
    raster = rasterPicture(randomPicture(1), RasterType::image);
    const ImportedItem item = pictureItem(raster, "PIC");
    Surface drawn(calculatorPictureWidth, calculatorPictureHeight, lcdColor::background);
    drawPicture(drawn, item.head, item.data);
    EXPECT_EQ(drawn.dots, raster.dots);
}

void put(std::string &text, std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; i++) text += static_cast<char>(value >> (8 * i));
}

struct BmpForm {
    const char *name;
    int bits;
    std::uint32_t compression;
    bool topDown;
    std::string rows;  // of the picture of 2 by 2: red, green over blue, white
};

constexpr Color bmpColors[4] = {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF};

std::string bmpFile(const BmpForm &form) {
    std::string palette;
    if (form.bits == 1) {
        put(palette, bmpColors[0], 4);
        put(palette, bmpColors[3], 4);
    } else if (form.bits <= 8) {
        for (const Color color : bmpColors) put(palette, color, 4);
    }
    std::string file = "BM";
    const auto offset = static_cast<std::uint32_t>(54 + palette.size());
    put(file, offset + static_cast<std::uint32_t>(form.rows.size()), 4);
    put(file, 0, 4);
    put(file, offset, 4);
    put(file, 40, 4);
    put(file, 2, 4);
    put(file, form.topDown ? 0xFFFFFFFEu : 2u, 4);
    put(file, 1, 2);
    put(file, static_cast<std::uint32_t>(form.bits), 2);
    put(file, form.compression, 4);
    put(file, static_cast<std::uint32_t>(form.rows.size()), 4);
    put(file, 0, 8);
    put(file, static_cast<std::uint32_t>(palette.size() / 4), 4);
    put(file, 0, 4);
    return file + palette + form.rows;
}

std::string bytes(std::initializer_list<int> values) {
    std::string text;
    for (const int value : values) text += static_cast<char>(value);
    return text;
}

std::vector<BmpForm> bmpForms() {
    return {
        {"1 bit", 1, 0, false, bytes({0x40, 0, 0, 0, 0x40, 0, 0, 0})},  // red and white alone
        {"4 bits", 4, 0, false, bytes({0x23, 0, 0, 0, 0x01, 0, 0, 0})},
        {"8 bits", 8, 0, false, bytes({2, 3, 0, 0, 0, 1, 0, 0})},
        {"8 bits from the top", 8, 0, true, bytes({0, 1, 0, 0, 2, 3, 0, 0})},
        {"8 bits, runs", 8, 1, false, bytes({1, 2, 1, 3, 0, 0, 1, 0, 1, 1, 0, 1})},
        {"4 bits, runs", 4, 2, false, bytes({2, 0x23, 0, 0, 2, 0x01, 0, 1})},
        {"16 bits", 16, 0, false, bytes({0x1F, 0, 0xFF, 0x7F, 0, 0x7C, 0xE0, 0x03})},
        {"24 bits", 24, 0, false, bytes({255, 0, 0, 255, 255, 255, 0, 0, 0, 0, 255, 0, 255, 0, 0, 0})},
        {"32 bits", 32, 0, false, bytes({255, 0, 0, 0, 255, 255, 255, 0, 0, 0, 255, 0, 0, 255, 0, 0})},
        {"32 bits from the top", 32, 0, true, bytes({0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0, 255, 255, 255, 0})},
    };
}

ByteView viewOf(const std::string &text) { return {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()}; }

TEST(PictureFile, EveryFormOfBmp) {
    for (const BmpForm &form : bmpForms()) {
        Surface scaled(4, 4);
        ASSERT_EQ(readScaledPicture(viewOf(bmpFile(form)), scaled), PictureResult::done) << form.name;
        const bool two = form.bits == 1;
        // Channels of 5 bits come back with their low bits 0.
        const Color kept = form.bits == 16 ? 0xF8F8F8 : 0xFFFFFF;
        EXPECT_THAT(
            (std::vector<Color>{dotAt(scaled, 1, 1), dotAt(scaled, 2, 0), dotAt(scaled, 0, 3), dotAt(scaled, 3, 2)}),
            ElementsAre(bmpColors[0] & kept, (two ? bmpColors[3] : bmpColors[1]) & kept,
                        (two ? bmpColors[0] : bmpColors[2]) & kept, bmpColors[3] & kept))
            << form.name;
    }
}

TEST(PictureFile, BrokenAndHugeFilesEndWithAResult) {
    Surface scaled(4, 4);
    const std::string good = bmpFile(bmpForms()[7]);
    for (std::size_t length = 0; length < good.size(); length++)
        EXPECT_EQ(readScaledPicture(viewOf(good.substr(0, length)), scaled), PictureResult::unreadable) << length;
    std::string huge = good;
    for (const auto &sides : {bytes({0, 0, 1, 0, 0, 0, 1, 0}), bytes({0, 64, 0, 0, 0, 192, 255, 255}),
                              bytes({0, 0, 0, 128, 0, 0, 0, 128})}) {
        huge.replace(18, 8, sides);
        EXPECT_EQ(readScaledPicture(viewOf(huge), scaled), PictureResult::tooLarge);
    }
    EXPECT_TRUE(isPictureFile(viewOf(huge)));
    EXPECT_FALSE(isPictureFile(viewOf(std::string("<svg"))));
}

TEST(BitmapImport, AskedForAndParkedOrRefused) {
    threadRole = ThreadRole::graphical;
    languageLoad("English", "English");
    const ScratchFolder scratch;
    const RecordedUi ui;
    ASSERT_TRUE(storeOpen());
    scratch.write("Logo.bmp", bmpFile(bmpForms()[7]));
    importFile(scratch.path + "Logo.bmp", "Logo");
    EXPECT_THAT(uiRecord.lines, ElementsAre("bitmap Logo")) << "refused: no question where to";
    uiRecord.bitmapAccepted = true;
    uiRecord.bitmapType = RasterType::sharp;
    uiRecord.importAction = ImportAction::standardFolders;
    importFile(scratch.path + "Logo.bmp", "Logo");
    EXPECT_EQ(uiRecord.lastQuestion.itemNames, std::vector<std::string>{"Logo"});
    const std::vector<ItemEntry> pictures = storeListChildren(storeStandardFolder(1007));
    ASSERT_EQ(pictures.size(), 1u);
    StoredItem stored;
    ASSERT_TRUE(storeReadItem(pictures[0].id, stored));
    EXPECT_EQ(stored.data, pictureItem(uiRecord.lastBitmap.sharp, "Logo").data);
    EXPECT_TRUE(uiRecord.boxes.empty());
    scratch.write("broken.bmp", "BM and nothing else");
    importFile(scratch.path + "broken.bmp", "broken");
    EXPECT_EQ(uiRecord.boxes.size(), 1u);
    storeClose();
}

}  // namespace
}  // namespace numalink
