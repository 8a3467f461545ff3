// Moving pictures: the frames of a run of displays, and both files read again by the library that reads pictures.
#include "exchange/moving_picture.h"

#include <gif_lib.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "calculator/item_bundle.h"

namespace numalink {
namespace {

Surface displayOf(std::mt19937 &chance) {
    Surface surface(128, 64);
    for (int i = 0; i < 30; i++)
        putDot(surface, static_cast<int>(chance() % 128), static_cast<int>(chance() % 64), movieColors[chance() % 5]);
    return surface;
}

void drawOver(Surface &surface, const MovieFrame &frame) {
    for (int y = 0; y < frame.height; y++) {
        for (int x = 0; x < frame.width; x++) {
            const std::uint8_t place = frame.dots[static_cast<std::size_t>(y) * static_cast<std::size_t>(frame.width) +
                                                  static_cast<std::size_t>(x)];
            if (place != movieUnchanged) putDot(surface, frame.x + x, frame.y + y, movieColors[place]);
        }
    }
}

TEST(MovingPicture, FramesMakeEachDisplayAgainAndKeepItsTime) {
    std::mt19937 chance(1);
    MovieRecorder recorder;
    std::vector<Surface> shown;
    for (int i = 0; i < 200; i++) {
        shown.push_back(displayOf(chance));
        recorder.show(shown.back(), static_cast<std::uint64_t>(i) * 33);
    }
    const MovingPicture picture = recorder.finish(200 * 33);
    ASSERT_EQ(picture.frames.size(), shown.size());
    Surface made(128, 64, 0);
    std::uint64_t hundredths = 0;
    for (std::size_t i = 0; i < shown.size(); i++) {
        drawOver(made, picture.frames[i]);
        ASSERT_EQ(made.dots, shown[i].dots) << i;
        EXPECT_GE(picture.frames[i].hundredths, 2u);
        hundredths += picture.frames[i].hundredths;
    }
    EXPECT_EQ(hundredths, 660u) << "rounding doesn't add up";
}

TEST(MovingPicture, WhatIsShownTooShortlyGivesItsPlaceAndWhatIsTheSameLasts) {
    std::mt19937 chance(2);
    const Surface first = displayOf(chance), second = displayOf(chance), third = displayOf(chance);
    MovieRecorder recorder;
    recorder.show(first, 0);
    recorder.show(second, 100);
    recorder.show(third, 110);
    recorder.show(third, 500);
    const MovingPicture picture = recorder.finish(501);
    ASSERT_EQ(picture.frames.size(), 2u);
    Surface made(128, 64);
    drawOver(made, picture.frames[0]);
    drawOver(made, picture.frames[1]);
    EXPECT_EQ(made.dots, third.dots);
    EXPECT_EQ(picture.frames[1].hundredths, 42u);
    EXPECT_FALSE(gifFile(MovieRecorder().finish(0), 1)) << "nothing was shown";
    EXPECT_FALSE(gifFile(picture, 9));
    EXPECT_FALSE(apngFile(picture, 0));
}

TEST(MovingPicture, TooManyFramesAreLeftOutButNotTheirTime) {
    MovieRecorder recorder;
    constexpr std::size_t count = movieFrameLimit + 10;
    for (std::size_t i = 0; i < count; i++)
        recorder.show(Surface(1, 1, i % 2 == 0 ? lcdColor::black : lcdColor::blue), i * movieFrameShortest);
    const MovingPicture picture = recorder.finish(count * movieFrameShortest);
    EXPECT_TRUE(picture.isFull);
    ASSERT_EQ(picture.frames.size(), movieFrameLimit);
    EXPECT_EQ(picture.frames.back().hundredths, 11 * movieFrameShortest / 10);
}

TEST(MovingPicture, GifsHoldTheFrames) {
    std::mt19937 chance(3);
    MovieRecorder recorder;
    for (int i = 0; i < 20; i++) recorder.show(displayOf(chance), static_cast<std::uint64_t>(i) * 50);
    const MovingPicture picture = recorder.finish(1000);
    const auto bytes = gifFile(picture, 3);
    ASSERT_TRUE(bytes);
    ByteView rest = *bytes;
    int fault = 0;
    GifFileType *const file = DGifOpen(
        &rest,
        [](GifFileType *from, GifByteType *target, int count) {
            auto &left = *static_cast<ByteView *>(from->UserData);
            const std::size_t taken = std::min(left.size(), static_cast<std::size_t>(count));
            std::memcpy(target, left.data(), taken);
            left = left.subspan(taken);
            return static_cast<int>(taken);
        },
        &fault);
    ASSERT_NE(file, nullptr);
    ASSERT_EQ(DGifSlurp(file), GIF_OK);
    EXPECT_EQ(file->SWidth, 384);
    ASSERT_EQ(file->ImageCount, 20);
    for (int i = 0; i < file->ImageCount; i++) {
        const MovieFrame &frame = picture.frames[static_cast<std::size_t>(i)];
        const SavedImage &image = file->SavedImages[i];
        const std::vector<std::uint8_t> dots = zoomedDots(frame, 3);
        EXPECT_EQ(image.ImageDesc.Left, frame.x * 3);
        EXPECT_EQ(image.ImageDesc.Top, frame.y * 3);
        ASSERT_EQ(image.ImageDesc.Width * image.ImageDesc.Height, static_cast<int>(dots.size()));
        EXPECT_EQ(std::memcmp(image.RasterBits, dots.data(), dots.size()), 0);
        GraphicsControlBlock control;
        ASSERT_EQ(DGifSavedExtensionToGCB(file, i, &control), GIF_OK);
        EXPECT_EQ(control.DelayTime, 5);
        EXPECT_EQ(control.TransparentColor, movieUnchanged);
    }
    DGifCloseFile(file, &fault);
}

// A picture of many colours has a palette for all of them, and still one place that leaves dots as they were.
TEST(MovingPicture, MoreColorsThanTheDisplaysComeBackAsTheyWere) {
    const std::vector<Color> more = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    MovieRecorder recorder(more);
    Surface surface(16, 1);
    recorder.show(surface, 0);
    for (int x = 0; x < 12; x++) putDot(surface, x, 0, more[static_cast<std::size_t>(x)]);
    recorder.show(surface, 100);
    const MovingPicture picture = recorder.finish(200);
    ASSERT_EQ(picture.colors.size(), movieColorLimit) << "the last two have no room";
    const std::uint8_t first = std::size(movieColors);
    std::vector<std::uint8_t> wanted;
    for (std::uint8_t i = 0; i < 10; i++) wanted.push_back(static_cast<std::uint8_t>(first + i));
    wanted.insert(wanted.end(), {0, 0});
    EXPECT_EQ(picture.frames.at(1).dots, wanted);
    const auto gif = gifFile(picture, 1);
    ASSERT_TRUE(gif);
    EXPECT_EQ((*gif)[10] & 7, 3) << "a palette of 16";
    for (std::size_t i = 0; i < 10; i++)
        EXPECT_EQ((*gif)[13 + 3 * (first + i) + 2], more[i]) << "blue is the last of three";
    const auto png = apngFile(picture, 1);
    ASSERT_TRUE(png);
    const std::string bytes(png->begin(), png->end());
    const std::size_t opacity = bytes.find("tRNS") + 4;
    EXPECT_EQ(bytes[opacity + movieUnchangedOfMany], '\0');
    EXPECT_EQ(bytes.substr(opacity, movieUnchangedOfMany), std::string(movieUnchangedOfMany, '\xFF'));
}

TEST(MovingPicture, AGifGrowsWithItsFramesAndAPngCanBeGivenUp) {
    std::mt19937 chance(5);
    MovieRecorder recorder;
    for (int i = 0; i < 8; i++) recorder.show(displayOf(chance), static_cast<std::uint64_t>(i) * 50);
    const MovingPicture picture = recorder.finish(1000);
    GifWriter writer(picture, 2);
    std::size_t before = writer.size();
    for (const MovieFrame &frame : picture.frames) {
        writer.add(frame);
        EXPECT_GT(writer.size(), before);
        before = writer.size();
    }
    EXPECT_EQ(writer.finish(), gifFile(picture, 2));
    EXPECT_FALSE(writer.finish()) << "once";
    std::vector<std::size_t> asked;
    const auto given = apngFile(picture, 1, [&](std::size_t frame) {
        asked.push_back(frame);
        return frame < 3;
    });
    EXPECT_FALSE(given);
    EXPECT_EQ(asked, (std::vector<std::size_t>{0, 1, 2, 3}));
}

// Chunks follow each other with sound checksums, and the frames' numbers rise by one.
TEST(MovingPicture, PngsHoldTheirChunks) {
    std::mt19937 chance(4);
    MovieRecorder recorder;
    for (int i = 0; i < 5; i++) recorder.show(displayOf(chance), static_cast<std::uint64_t>(i) * 50);
    const auto bytes = apngFile(recorder.finish(1000), 1);
    ASSERT_TRUE(bytes);
    const auto number = [&](std::size_t at) {
        return static_cast<std::size_t>(readBig16(*bytes, at)) << 16 | readBig16(*bytes, at + 2);
    };
    std::string types;
    std::size_t next = 0, at = 8;
    while (at < bytes->size()) {
        const std::size_t size = number(at);
        const std::string type(bytes->begin() + static_cast<std::ptrdiff_t>(at) + 4,
                               bytes->begin() + static_cast<std::ptrdiff_t>(at) + 8);
        types += type + " ";
        ASSERT_EQ(number(at + 8 + size), checksum32(ByteView(*bytes).subspan(at + 4, size + 4)));
        const bool isNumbered = type == "fcTL" || type == "fdAT";
        EXPECT_EQ(isNumbered ? number(at + 8) : next, next);
        if (isNumbered) next++;
        at += size + 12;
    }
    EXPECT_EQ(types, "IHDR acTL PLTE tRNS fcTL IDAT fcTL fdAT fcTL fdAT fcTL fdAT fcTL fdAT IEND ");
}

}  // namespace
}  // namespace numalink
