#include "platform/picture_file.h"

#include <QColor>
#include <QIODevice>
#include <QImage>
#include <QImageReader>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

namespace numalink {

namespace {

// Formats by their first bytes. Drawings such as SVG aren't among them: they would be run rather than decoded.
constexpr std::array<std::string_view, 12> knownMarks = {
    "BM", "\x89PNG\r\n\x1A\n", "\xFF\xD8\xFF", "GIF8", "P1\n", "P2\n", "P3\n", "P4\n", "P5\n", "P6\n", "II*", "RIFF"};

constexpr int decodedLimit = 256;  // MiB: 8 bytes for each dot of the largest picture
static_assert(pictureDotLimit * 8 <= std::uint64_t{decodedLimit} << 20);

std::string_view asText(ByteView bytes) { return {reinterpret_cast<const char *>(bytes.data()), bytes.size()}; }

// A file for a decoder: tells how far it has come, and keeps whether it asked for more than there is. No QBuffer, which
// some decoders look into behind one's back.
class FileInMemory : public QIODevice {
public:
    FileInMemory(ByteView bytes, const std::function<void(std::size_t)> &read) : file(bytes), told(read) {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    qint64 size() const override { return static_cast<qint64>(file.size()); }
    bool seek(qint64 place) override {
        if (place < 0 || place > size() || !QIODevice::seek(place)) return false;
        at = static_cast<std::size_t>(place);
        return true;
    }

    bool cameShort = false;
    bool cameEmpty = false;

protected:
    qint64 readData(char *data, qint64 limit) override {
        const std::size_t count = std::min(file.size() - at, static_cast<std::size_t>(std::max<qint64>(limit, 0)));
        std::ranges::copy(file.subspan(at, count), data);
        at += count;
        cameShort = cameShort || static_cast<qint64>(count) < limit;
        cameEmpty = cameEmpty || (limit > 0 && count == 0);
        if (told) told(at);
        return static_cast<qint64>(count);
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    const ByteView file;
    const std::function<void(std::size_t)> &told;
    std::size_t at = 0;
};

std::uint64_t littleAt(ByteView file, std::size_t place, std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t i = count; i > 0; i--) value = value << 8 | file[place + i - 1];
    return value;
}

// Dots of a side of a BMP, from the 16 bits of the oldest form or 32 with a sign.
std::uint64_t bmpSide(ByteView file, std::size_t place, bool oldest) {
    if (oldest) return littleAt(file, place, 2);
    const auto side = static_cast<std::int32_t>(littleAt(file, place, 4));
    return static_cast<std::uint64_t>(std::abs(std::int64_t{side}));
}

// Told apart here: the decoder calls sizes beyond its own limit no picture at all.
bool isTooLargeBmp(ByteView file) {
    constexpr std::size_t headEnd = 26;
    constexpr std::size_t sizesPlace = 18;
    if (!asText(file).starts_with("BM") || file.size() < headEnd) return false;
    const bool oldest = littleAt(file, 14, 4) == 12;
    const std::uint64_t width = bmpSide(file, sizesPlace, oldest);
    return width * bmpSide(file, sizesPlace + (oldest ? 2 : 4), oldest) > pictureDotLimit;
}

bool isTooLarge(const QSize &size) {
    return size.isValid() &&
           static_cast<std::uint64_t>(size.width()) * static_cast<std::uint64_t>(size.height()) > pictureDotLimit;
}

// Decoders of these make a picture of half a file. The first reads by exact lengths, the others by whole blocks.
bool endsEarly(const QByteArray &format, const FileInMemory &device) {
    if (format == "bmp") return device.cameShort;
    return (format == "jpeg" || format == "gif") && device.cameEmpty;
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

PictureResult readScaledPicture(ByteView file, Surface &scaled, const std::function<void(std::size_t)> &read) {
    if (isTooLargeBmp(file)) return PictureResult::tooLarge;
    FileInMemory device(file, read);
    QImageReader reader(&device);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    QImageReader::setAllocationLimit(decodedLimit);
    const QByteArray format = reader.format();
    if (format == "svg" || format == "svgz") return PictureResult::unreadable;
    if (isTooLarge(reader.size())) return PictureResult::tooLarge;
    device.cameShort = device.cameEmpty = false;  // so far the format was only guessed at
    const QImage image = reader.read();
    if (image.isNull() || endsEarly(format, device)) return PictureResult::unreadable;
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
