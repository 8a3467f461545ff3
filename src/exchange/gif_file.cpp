// Moving pictures as GIF files.
#include <gif_lib.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "exchange/moving_picture.h"

namespace numalink {

namespace {

constexpr std::uint32_t longestDelay = 0xFFFF;  // hundredths of a second

int append(GifFileType *file, const GifByteType *bytes, int count) {
    auto *const target = static_cast<Bytes *>(file->UserData);
    target->insert(target->end(), bytes, bytes + count);
    return count;
}

using ColorMap = std::unique_ptr<ColorMapObject, decltype(&GifFreeMapObject)>;

int colorBits(const MovingPicture &picture) { return picture.unchanged == movieUnchanged ? 3 : 4; }

ColorMap colorMap(const MovingPicture &picture) {
    ColorMap map(GifMakeMapObject(1 << colorBits(picture), nullptr), GifFreeMapObject);
    if (map == nullptr) return map;
    for (std::size_t i = 0; i < picture.colors.size(); i++) {
        const Color color = picture.colors[i];
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

bool putFrame(GifFileType *file, const MovieFrame &frame, int zoom, std::uint8_t unchanged) {
    const GraphicsControlBlock control{.DisposalMode = DISPOSE_DO_NOT,
                                       .UserInputFlag = false,
                                       .DelayTime = static_cast<int>(std::min(frame.hundredths, longestDelay)),
                                       .TransparentColor = unchanged};
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

bool putHead(GifFileType *file, const MovingPicture &picture, int zoom) {
    const ColorMap map = colorMap(picture);
    EGifSetGifVersion(file, true);
    return map != nullptr &&
           EGifPutScreenDesc(file, picture.width * zoom, picture.height * zoom, colorBits(picture), 0, map.get()) ==
               GIF_OK &&
           putEndlessLoop(file);
}

}  // namespace

struct GifWriter::File {
    Bytes bytes;
    GifFileType *gif = nullptr;
    int zoom = 1;
    std::uint8_t unchanged = movieUnchanged;
    bool isSound = false, hasFrames = false;
};

GifWriter::GifWriter(const MovingPicture &picture, int zoom) : file(std::make_unique<File>()) {
    int fault = 0;
    file->zoom = zoom;
    file->unchanged = picture.unchanged;
    if (zoom < 1 || zoom > movieZoomLimit) return;
    file->gif = EGifOpen(&file->bytes, append, &fault);
    file->isSound = file->gif != nullptr && putHead(file->gif, picture, zoom);
}

GifWriter::~GifWriter() { finish(); }

void GifWriter::add(const MovieFrame &frame) {
    file->isSound = file->isSound && putFrame(file->gif, frame, file->zoom, file->unchanged);
    file->hasFrames = true;
}

std::size_t GifWriter::size() const { return file->bytes.size(); }

std::optional<Bytes> GifWriter::finish() {
    GifFileType *const gif = std::exchange(file->gif, nullptr);
    int fault = 0;
    if (gif == nullptr || EGifCloseFile(gif, &fault) != GIF_OK || !file->isSound || !file->hasFrames)
        return std::nullopt;
    return std::move(file->bytes);
}

std::optional<Bytes> gifFile(const MovingPicture &picture, int zoom) {
    GifWriter writer(picture, zoom);
    for (const MovieFrame &frame : picture.frames) writer.add(frame);
    return writer.finish();
}

}  // namespace numalink
