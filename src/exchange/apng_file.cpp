// Moving pictures as PNG files with frames. What doesn't know of these shows
// the first one.
#include <zlib.h>

#include <algorithm>
#include <string_view>

#include "calculator/item_bundle.h"
#include "exchange/moving_picture.h"

namespace numalink {

namespace {

constexpr std::uint8_t signature[] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
constexpr int bitsPerDot = 4, dotsPerByte = 2;
constexpr std::uint8_t paletteColors = 3;  // the sort of picture
constexpr std::uint8_t keepsFrame = 0, blendsOver = 1;

void add32(Bytes &bytes, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}
void add32(Bytes &bytes, int value) { add32(bytes, static_cast<std::uint32_t>(value)); }
void add16(Bytes &bytes, std::uint32_t value) {
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    bytes.push_back(static_cast<std::uint8_t>(value));
}

void addChunk(Bytes &file, std::string_view type, const Bytes &content) {
    add32(file, static_cast<std::uint32_t>(content.size()));
    const std::size_t summed = file.size();
    file.insert(file.end(), type.begin(), type.end());
    file.insert(file.end(), content.begin(), content.end());
    add32(file, checksum32(ByteView(file).subspan(summed)));
}

// Rows of packed dots, each behind a byte that says it is as it stands.
Bytes packedRows(const MovieFrame &frame, int zoom) {
    const std::vector<std::uint8_t> dots = zoomedDots(frame, zoom);
    const auto width = static_cast<std::size_t>(frame.width) * static_cast<std::size_t>(zoom);
    Bytes rows;
    for (std::size_t row = 0; row < dots.size(); row += width) {
        rows.push_back(0);
        for (std::size_t x = 0; x < width; x += dotsPerByte) {
            const std::uint8_t second = x + 1 < width ? dots[row + x + 1] : 0;
            rows.push_back(static_cast<std::uint8_t>(dots[row + x] << bitsPerDot | second));
        }
    }
    return rows;
}

bool deflated(const Bytes &bytes, Bytes &target) {
    uLongf size = compressBound(static_cast<uLong>(bytes.size()));
    const std::size_t start = target.size();
    target.resize(start + size);
    if (compress2(target.data() + start, &size, bytes.data(), static_cast<uLong>(bytes.size()), Z_BEST_COMPRESSION) !=
        Z_OK)
        return false;
    target.resize(start + size);
    return true;
}

void addHead(Bytes &file, const MovingPicture &picture, int zoom) {
    file.assign(std::begin(signature), std::end(signature));
    Bytes head, palette, opacity, frames;
    add32(head, picture.width * zoom);
    add32(head, picture.height * zoom);
    for (const std::uint8_t value :
         {std::uint8_t{bitsPerDot}, paletteColors, std::uint8_t{0}, std::uint8_t{0}, std::uint8_t{0}})
        head.push_back(value);
    const std::size_t places = std::size_t{picture.unchanged} + 1;
    palette.resize(places * 3);
    for (std::size_t i = 0; i < picture.colors.size(); i++) {
        for (std::size_t part = 0; part < 3; part++)
            palette[i * 3 + part] = static_cast<std::uint8_t>(picture.colors[i] >> (16 - 8 * part));
    }
    opacity.assign(places, 0xFF);
    opacity[picture.unchanged] = 0;
    add32(frames, static_cast<std::uint32_t>(picture.frames.size()));
    add32(frames, 0);  // for ever
    addChunk(file, "IHDR", head);
    addChunk(file, "acTL", frames);
    addChunk(file, "PLTE", palette);
    addChunk(file, "tRNS", opacity);
}

void addControl(Bytes &file, const MovieFrame &frame, int zoom, std::uint32_t number) {
    Bytes control;
    add32(control, number);
    for (const int value : {frame.width, frame.height, frame.x, frame.y}) add32(control, value * zoom);
    add16(control, std::min<std::uint32_t>(frame.hundredths, 0xFFFF));
    add16(control, 100);
    control.push_back(keepsFrame);
    control.push_back(blendsOver);
    addChunk(file, "fcTL", control);
}

}  // namespace

std::optional<Bytes> apngFile(const MovingPicture &picture, int zoom,
                              const std::function<bool(std::size_t frame)> &goesOn) {
    if (picture.frames.empty() || zoom < 1 || zoom > movieZoomLimit) return std::nullopt;
    Bytes file;
    addHead(file, picture, zoom);
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < picture.frames.size(); i++) {
        if (!goesOn(i)) return std::nullopt;
        const MovieFrame &frame = picture.frames[i];
        addControl(file, frame, zoom, number++);
        const bool isFirst = i == 0;
        Bytes content;
        if (!isFirst) add32(content, number++);
        if (!deflated(packedRows(frame, zoom), content)) return std::nullopt;
        addChunk(file, isFirst ? "IDAT" : "fdAT", content);
    }
    addChunk(file, "IEND", {});
    return file;
}

}  // namespace numalink
