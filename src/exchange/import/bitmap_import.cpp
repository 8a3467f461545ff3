// The raster step and the planes of a picture.
#include "exchange/import/bitmap_import.h"

#include <array>
#include <cstdlib>
#include <limits>
#include <string_view>

#include "calculator/charset.h"
#include "calculator/frames.h"
#include "exchange/shown_progress.h"
#include "platform/picture_file.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

struct Sums {
    std::array<int, 3> parts{};  // red, green, blue; at most 8192 dots of 255
};

constexpr std::array<Color, 4> palette = {lcdColor::background, lcdColor::green, lcdColor::blue, lcdColor::orange};
constexpr std::array<Color, 3> planeColors = {lcdColor::orange, lcdColor::blue, lcdColor::green};
constexpr int planeCount = 4;     // the last one stays empty
constexpr int nearDistance = 50;  // a dot this near to a plane's colour belongs to it
constexpr int bitsOfByte = 8;
constexpr std::size_t planeBytes = calculatorPictureWidth * calculatorPictureHeight / bitsOfByte;

using namespace std::string_view_literals;
constexpr std::string_view headStart =
    ":IMG\0PC\0\x40\0\x80Picture1\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"
    "DRUWF\0\4\0\1"sv;
static_assert(headStart.size() == 36);

// The sequence that old C libraries draw from, so that a picture comes out the same everywhere.
struct Chance {
    std::uint32_t state = 0;

    int draw() {  // 0 to 32767
        state = state * 214013u + 2531011u;
        return static_cast<int>(state >> 16 & 0x7FFFu);
    }
};

constexpr std::array<int, 3> partsOf(Color color) {
    return {static_cast<int>(color >> 16 & 0xFF), static_cast<int>(color >> 8 & 0xFF), static_cast<int>(color & 0xFF)};
}

void add(Sums &sums, Color color) {
    const auto parts = partsOf(color);
    for (std::size_t i = 0; i < parts.size(); i++) sums.parts[i] += parts[i];
}

int distance(const Sums &wanted, const Sums &given) {
    int sum = 0;
    for (std::size_t i = 0; i < wanted.parts.size(); i++) sum += std::abs(wanted.parts[i] - given.parts[i]);
    return sum;
}

// Of equally near colours the first.
Color nearestColor(const Sums &wanted, const Sums &given) {
    Color nearest = palette[0];
    int smallest = std::numeric_limits<int>::max();
    for (const Color color : palette) {
        Sums next = given;
        add(next, color);
        const int here = distance(wanted, next);
        if (here >= smallest) continue;
        smallest = here;
        nearest = color;
    }
    return nearest;
}

bool isNear(Color dot, Color color) {
    Sums a;
    Sums b;
    add(a, dot);
    add(b, color);
    return distance(a, b) < nearDistance;
}

// Bytes run upward from the bottom, then on to the next eight columns to the left; bit 0 is the rightmost dot.
std::uint8_t pixelByte(const Surface &raster, std::size_t place, Color color) {
    const int row = static_cast<int>(place) % calculatorPictureHeight;
    const int block = static_cast<int>(place) / calculatorPictureHeight;
    unsigned byte = 0;
    for (int bit = 0; bit < bitsOfByte; bit++) {
        const int x = calculatorPictureWidth - 1 - bitsOfByte * block - bit;
        if (isNear(dotAt(raster, x, calculatorPictureHeight - 1 - row), color)) byte |= 1u << bit;
    }
    return static_cast<std::uint8_t>(byte);
}

void appendPlane(Bytes &data, const Surface &raster, int plane) {
    const std::size_t start = data.size();
    data.insert(data.end(), {':', 0, 1, 0, static_cast<std::uint8_t>(plane)});
    const auto index = static_cast<std::size_t>(plane - 1);
    for (std::size_t i = 0; i < planeBytes; i++)
        data.push_back(index < planeColors.size() ? pixelByte(raster, i, planeColors[index]) : std::uint8_t{0});
    data.push_back(0);
    frameChecksum(std::span(data).subspan(start));
}

PictureResult decode(ByteView file, Surface &scaled) {
    ShownProgress progress(file.size());
    return readScaledPicture(file, scaled, [&](std::size_t done) { progress.step(done); });
}

void tellUnreadable(PictureResult result, const std::string &path) {
    if (result == PictureResult::tooLarge)
        tellUser(Text::bitmapTooLarge, {path, std::to_string(pictureDotLimit / 1'000'000)});
    else
        tellUser(Text::bitmapUnreadable, {path});
}

}  // namespace

Surface rasterPicture(const Surface &scaled, RasterType type) {
    Surface raster(scaled.width, scaled.height);
    Chance chance;
    Sums wanted;
    Sums given;
    for (int y = 0; y < scaled.height; y++) {
        for (int x = 0; x < scaled.width; x++) {
            const bool forgets = static_cast<int>(chance.draw() / 32767.0 * 5.0) == 0;
            if (forgets || type == RasterType::sharp) wanted = given = {};
            add(wanted, dotAt(scaled, x, y));
            const Color color = nearestColor(wanted, given);
            putDot(raster, x, y, color);
            add(given, color);
        }
    }
    return raster;
}

ImportedItem pictureItem(const Surface &raster, const std::string &name) {
    Bytes head(headStart.begin(), headStart.end());
    head.resize(headFrameSize, 0xFF);
    frameChecksum(head);
    ImportedItem item{.itemKind = kind::picture, .name = name, .head = std::move(head), .data = {}};
    item.data.reserve(planeCount * (planeBytes + 6));
    for (int plane = 1; plane <= planeCount; plane++) appendPlane(item.data, raster, plane);
    return item;
}

ItemId importBitmap(ByteView file, const std::string &path, const std::string &baseName) {
    BitmapQuestion question{.fileName = baseName,
                            .scaled = Surface(calculatorPictureWidth, calculatorPictureHeight),
                            .sharp = {},
                            .image = {}};
    const PictureResult result = decode(file, question.scaled);
    if (result != PictureResult::done) {
        tellUnreadable(result, path);
        return noItem;
    }
    question.sharp = rasterPicture(question.scaled, RasterType::sharp);
    question.image = rasterPicture(question.scaled, RasterType::image);
    userInterface.askBitmap(question);
    if (!question.accepted) return noItem;
    const std::string name = calculatorName(baseName);
    ImportedItem item =
        pictureItem(question.type == RasterType::image ? question.image : question.sharp, name.empty() ? "?" : name);
    return storeAddItem({.name = item.name,
                         .parent = storeTempFolder(),
                         .kind = item.itemKind,
                         .head = std::move(item.head),
                         .data = std::move(item.data),
                         .whenTaken = NameTaken::keepBoth});
}

}  // namespace numalink
