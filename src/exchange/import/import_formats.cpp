#include "exchange/import/import_formats.h"

#include <algorithm>

#include "exchange/import/cat_record.h"
#include "exchange/page_parts.h"
#include "platform/letter_case.h"
#include "platform/picture_file.h"

namespace numalink {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string_view textOfFile(ByteView file) { return {reinterpret_cast<const char *>(file.data()), file.size()}; }

bool fitsCas(ByteView &file) { return textOfFile(file).starts_with(':'); }
bool fitsFxi(ByteView &file) { return textOfFile(file).starts_with("20"); }
bool fitsPage(ByteView &file) { return textOfFile(file).starts_with(pageStart); }
bool fitsPicture(ByteView &file) { return isPictureFile(file); }

bool fitsCat(ByteView &file) {
    const std::size_t mark = textOfFile(file).starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
    if (!startsWithoutCase(textOfFile(file).substr(mark), catRecordStart)) return false;
    file = file.subspan(mark);
    return true;
}

constexpr const char *casEndings[] = {"cas"}, *catEndings[] = {"cat"}, *fxiEndings[] = {"fxi"};
constexpr const char *pageEndings[] = {"html"};
constexpr const char *pictureEndings[] = {"bmp", "png", "jpg", "gif"};

constexpr ImportFormat formats[] = {
    {"cas", casEndings, fitsCas, readCas},
    {"cat", catEndings, fitsCat, readCat},
    {"fxi", fxiEndings, fitsFxi, readFxi},
    {"page", pageEndings, fitsPage, readPage},
    {"bitmap", pictureEndings, fitsPicture, nullptr},
};

}  // namespace

std::span<const ImportFormat> importFormats() { return formats; }

std::string importFormatNames() {
    std::string names;
    for (const ImportFormat &format : formats) names += (names.empty() ? "" : ", ") + std::string(format.name);
    return names;
}

const ImportFormat *importFormatOf(ByteView &file) {
    for (const ImportFormat &format : formats)
        if (format.fits(file)) return &format;
    return nullptr;
}

}  // namespace numalink
