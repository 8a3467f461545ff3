#include "platform/picture_file.h"

#include <QBuffer>
#include <QColor>
#include <QImage>
#include <QImageReader>
#include <algorithm>
#include <array>
#include <string_view>

namespace numalink {

namespace {

// Formats by their first bytes. Drawings such as SVG aren't among them: they would be run rather than decoded.
constexpr std::array<std::string_view, 12> knownMarks = {
    "BM", "\x89PNG\r\n\x1A\n", "\xFF\xD8\xFF", "GIF8", "P1\n", "P2\n", "P3\n", "P4\n", "P5\n", "P6\n", "II*", "RIFF"};

std::string_view asText(ByteView bytes) { return {reinterpret_cast<const char *>(bytes.data()), bytes.size()}; }

bool isTooLarge(const QSize &size) {
    return size.isValid() &&
           static_cast<std::uint64_t>(size.width()) * static_cast<std::uint64_t>(size.height()) > pictureDotLimit;
}

// 0 to 255 of a colour component over white.
Color overWhite(int component, int alpha) {
    return static_cast<Color>((component * alpha + 255 * (255 - alpha) + 127) / 255);
}

Color colorOf(QRgb dot) {
    const int alpha = qAlpha(dot);
    return overWhite(qRed(dot), alpha) << 16 | overWhite(qGreen(dot), alpha) << 8 | overWhite(qBlue(dot), alpha);
}

// The dot of a side of sourceSize that lies under the middle of dot place of a side of targetSize.
int nearest(int place, int sourceSize, int targetSize) {
    return static_cast<int>((2 * std::int64_t{place} + 1) * sourceSize / (2 * std::int64_t{targetSize}));
}

}  // namespace

bool isPictureFile(ByteView file) {
    return std::ranges::any_of(knownMarks, [&](std::string_view mark) { return asText(file).starts_with(mark); });
}

PictureResult readScaledPicture(ByteView file, Surface &scaled) {
    QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char *>(file.data()), static_cast<qsizetype>(file.size()));
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    if (reader.format() == "svg" || reader.format() == "svgz") return PictureResult::unreadable;
    if (isTooLarge(reader.size())) return PictureResult::tooLarge;
    const QImage image = reader.read();
    if (image.isNull()) return PictureResult::unreadable;
    for (int y = 0; y < scaled.height; y++) {
        for (int x = 0; x < scaled.width; x++) {
            const QRgb dot =
                image.pixel(nearest(x, image.width(), scaled.width), nearest(y, image.height(), scaled.height));
            putDot(scaled, x, y, colorOf(dot));
        }
    }
    return PictureResult::done;
}

}  // namespace numalink
