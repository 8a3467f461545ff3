// Any bytes as a picture file: decoded or refused, and what comes of it is a whole picture item.
#include "exchange/import/bitmap_import.h"
#include "import_checks.h"
#include "platform/picture_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace numalink;
    const ByteView file(data, size);
    Surface scaled(calculatorPictureWidth, calculatorPictureHeight);
    if (!isPictureFile(file) || readScaledPicture(file, scaled) != PictureResult::done) return 0;
    for (const RasterType type : {RasterType::sharp, RasterType::image})
        checkItem(pictureItem(rasterPicture(scaled, type), "FUZZ"));
    return 0;
}
