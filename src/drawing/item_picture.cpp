#include "drawing/item_picture.h"

#include <algorithm>

#include "calculator/frames.h"
#include "calculator/number_text.h"
#include "drawing/backup_picture.h"
#include "drawing/dot_fonts.h"
#include "drawing/matrix_picture.h"
#include "drawing/plane_picture.h"

namespace numalink {

namespace {

constexpr std::uint8_t lastColorCode = 4;
constexpr int screenWidth = 128, screenHeight = 64;
constexpr int pictureLimit = 1024;                 // dots of a picture's side
constexpr int valueWidth = 22 * largeCharAdvance;  // the longest value below a table

int headNumber(ByteView head, std::size_t offset) {
    return head.size() < frameDimensionsEnd ? 0 : readBig16(head, offset);
}

int planesOf(ItemKind itemKind) { return itemKind == kind::colorScreen ? 3 : 1; }

PictureFault matrixFault(ByteView head, ByteView data) {
    const int rows = headNumber(head, frameRowsOffset);
    const int columns = headNumber(head, frameColumnsOffset);
    if (rows > matrixPictureLimit || columns > matrixPictureLimit) return PictureFault::tooLarge;
    const auto wanted = static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns) * valueFrameSize;
    return data.size() < wanted ? PictureFault::endsEarly : PictureFault::none;
}

PictureFault planesFault(ByteView head, ByteView data) {
    const auto [width, height] = pictureSize(head);
    if (width > pictureLimit || height > pictureLimit) return PictureFault::tooLarge;
    if (head.size() < frameColorsOffset + 2) return PictureFault::endsEarly;
    const std::size_t planes = readBig16(head, frameColorsOffset);
    const std::size_t size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) / 8;
    for (std::size_t plane = 0; plane < planes; plane++) {
        const std::size_t start = plane * (size + planeExtra);
        if (start + planeColorOffset + 1 + size > data.size()) return PictureFault::endsEarly;
        const std::uint8_t code = data[start + planeColorOffset];
        if (code == 0 || code > lastColorCode) return PictureFault::unknownColor;
    }
    return PictureFault::none;
}

Surface pictureSurface(ByteView head, ByteView data, int width, int height) {
    Surface surface(std::min(width, pictureLimit), std::min(height, pictureLimit));
    drawPicture(surface, head, data);
    return surface;
}

}  // namespace

MatrixValues matrixValuesOf(ByteView head, ByteView data) {
    MatrixValues matrix{std::min(headNumber(head, frameRowsOffset), matrixPictureLimit),
                        std::min(headNumber(head, frameColumnsOffset), matrixPictureLimit),
                        {}};
    const auto rows = static_cast<std::size_t>(matrix.rows);
    const auto columns = static_cast<std::size_t>(matrix.columns);
    matrix.values.resize(rows * columns);
    for (; data.size() >= valueFrameSize; data = data.subspan(valueFrameSize)) {
        const std::size_t row = readBig16(data, valueRowOffset);
        const std::size_t column = readBig16(data, valueColumnOffset);
        if (row == 0 || column == 0 || row > rows || column > columns) continue;
        matrix.values[(row - 1) * columns + column - 1] = decodeValue(data.first<valueFrameSize>());
    }
    return matrix;
}

PictureFault pictureFault(ItemKind itemKind, ByteView head, ByteView data) {
    if (isValuesKind(itemKind)) return matrixFault(head, data);
    if (itemKind == kind::picture) return planesFault(head, data);
    if (!isScreenKind(itemKind)) return PictureFault::none;
    const int planes = planesOf(itemKind);
    const std::size_t wanted =
        static_cast<std::size_t>(planes - 1) * screenPlaneStep + screenPlaneSize + (planes == 3 ? 2 : 1);
    return data.size() < wanted ? PictureFault::endsEarly : PictureFault::none;
}

PictureSize matrixSize(const MatrixValues &matrix) {
    return {std::max(matrixPictureWidth(matrix.columns), valueWidth), matrixPictureHeight(matrix.rows)};
}

Surface matrixPart(const MatrixValues &matrix, PickedCell picked, int left, int top, PictureSize size) {
    const MatrixPicture picture{matrix.columns, matrix.rows, matrix.values, picked.row, picked.column, left, top};
    const PictureSize whole = matrixSize(matrix);
    Surface surface(size.width, size.height);
    drawMatrix(surface, picture);
    drawPickedValue(surface, picture, whole.width, whole.height);
    return surface;
}

Surface itemSurface(ItemKind itemKind, ByteView head, ByteView data) {
    if (isValuesKind(itemKind)) {
        const MatrixValues matrix = matrixValuesOf(head, data);
        return matrixPart(matrix, {}, 0, 0, matrixSize(matrix));
    }
    if (itemKind == kind::backup) return drawBackup(head, data);
    if (isScreenKind(itemKind)) return screenSurface(itemKind, head, data);
    if (itemKind != kind::picture) return {};
    const auto [width, height] = pictureSize(head);
    return pictureSurface(head, data, width, height);
}

Surface screenSurface(ItemKind itemKind, ByteView head, ByteView data) {
    if (itemKind == kind::picture) return pictureSurface(head, data, screenWidth, screenHeight);
    Surface surface(screenWidth, screenHeight);
    drawScreenCopy(surface, data, planesOf(itemKind));
    return surface;
}

}  // namespace numalink
