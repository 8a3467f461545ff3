// Moving pictures as GIF files.
#include <gif_lib.h>

#include <algorithm>
#include <memory>

#include "exchange/moving_picture.h"

namespace numalink {

namespace {

constexpr int colorBits = 3;
constexpr std::uint32_t longestDelay = 0xFFFF;  // hundredths of a second

int append(GifFileType *file, const GifByteType *bytes, int count) {
    auto *const target = static_cast<Bytes *>(file->UserData);
    target->insert(target->end(), bytes, bytes + count);
    return count;
}

using ColorMap = std::unique_ptr<ColorMapObject, decltype(&GifFreeMapObject)>;

ColorMap colorMap() {
    ColorMap map(GifMakeMapObject(1 << colorBits, nullptr), GifFreeMapObject);
    if (map == nullptr) return map;
    for (std::size_t i = 0; i < std::size(movieColors); i++) {
        const Color color = movieColors[i];
        map->Colors[i] = {static_cast<GifByteType>(color >> 16), static_cast<GifByteType>(color >> 8),
                          static_cast<GifByteType>(color)};
    }
    return map;
}

bool putEndlessLoop(GifFileType *file) {
    constexpr GifByteType forEver[] = {1, 0, 0};
    return EGifPutExtensionLeader(file, APPLICATION_EXT_FUNC_CODE) == GIF_OK &&
           EGifPutExtensionBlock(file, 11, "NETSCAPE2.0") == GIF_OK &&
           EGifPutExtensionBlock(file, sizeof forEver, forEver) == GIF_OK && EGifPutExtensionTrailer(file) == GIF_OK;
}

bool putFrame(GifFileType *file, const MovieFrame &frame, int zoom) {
    const GraphicsControlBlock control{.DisposalMode = DISPOSE_DO_NOT,
                                       .UserInputFlag = false,
                                       .DelayTime = static_cast<int>(std::min(frame.hundredths, longestDelay)),
                                       .TransparentColor = movieUnchanged};
    GifByteType extension[4];
    EGifGCBToExtension(&control, extension);
    if (EGifPutExtension(file, GRAPHICS_EXT_FUNC_CODE, sizeof extension, extension) != GIF_OK) return false;
    const int width = frame.width * zoom, height = frame.height * zoom;
    if (EGifPutImageDesc(file, frame.x * zoom, frame.y * zoom, width, height, false, nullptr) != GIF_OK) return false;
    std::vector<std::uint8_t> dots = zoomedDots(frame, zoom);
    for (int y = 0; y < height; y++) {
        if (EGifPutLine(file, dots.data() + static_cast<std::ptrdiff_t>(y) * width, width) != GIF_OK) return false;
    }
    return true;
}

bool putAll(GifFileType *file, const MovingPicture &picture, int zoom) {
    const ColorMap map = colorMap();
    EGifSetGifVersion(file, true);
    if (map == nullptr ||
        EGifPutScreenDesc(file, picture.width * zoom, picture.height * zoom, colorBits, 0, map.get()) != GIF_OK)
        return false;
    return putEndlessLoop(file) &&
           std::ranges::all_of(picture.frames, [=](const MovieFrame &frame) { return putFrame(file, frame, zoom); });
}

}  // namespace

std::optional<Bytes> gifFile(const MovingPicture &picture, int zoom) {
    if (picture.frames.empty() || zoom < 1 || zoom > movieZoomLimit) return std::nullopt;
    Bytes bytes;
    int fault = 0;
    GifFileType *const file = EGifOpen(&bytes, append, &fault);
    if (file == nullptr) return std::nullopt;
    const bool isWhole = putAll(file, picture, zoom);
    if (EGifCloseFile(file, &fault) != GIF_OK || !isWhole) return std::nullopt;
    return bytes;
}

}  // namespace numalink
