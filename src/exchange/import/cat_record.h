// One pass over a text exchange file: where the reader stands, and the header of the record it is in.
// Only the files of this reader, and the choice of readers, include it.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "exchange/import/import_readers.h"

namespace numalink {

inline constexpr std::string_view catRecordStart = "%Header Record";

// In the order in which a line is compared with the keys.
enum class CatKey {
    format,
    communicationSwitch,
    dataType,
    capacity,
    fileName,
    groupName,
    password,
    option1,
    option2,
    option3,
    option4,
    dataName,
    height,
    width,
    startPosition,
    direction,
    byteDirection,
    bitWeight,
    colors,
    sheets,
    variableName,
    variableType,
    variableLength,
    rows,
    columns,
    typeNumber,
    optionName,
    count
};

struct CatReader {
    std::string_view file;
    std::size_t at = 0;      // never beyond the file's end
    std::size_t record = 0;  // from 1
    std::array<std::string, static_cast<std::size_t>(CatKey::count)> values{};
    const ItemSink *sink = nullptr;
    ImportReport *report = nullptr;

    const std::string &value(CatKey key) const { return values[static_cast<std::size_t>(key)]; }
    std::uint32_t number(CatKey key) const;  // its leading digits, blanks ahead aside, else 0
};

inline std::string_view restOf(const CatReader &reader) { return reader.file.substr(reader.at); }
std::string_view lineOf(const CatReader &reader);  // up to its CR or the file's end
bool nextLine(CatReader &reader);                  // false, with nothing moved, when no CR lies ahead
bool atEndMark(const CatReader &reader);           // "%end" with nothing but a line end behind it
bool atRecordStart(const CatReader &reader);       // at the head of a line that starts a record
bool isBlank(std::string_view line);
std::string excerpt(std::string_view text);  // its first 50 bytes for a message

// These end the reading: each leaves a message and gives false.
bool catFormatError(CatReader &reader);
bool catUnreadable(CatReader &reader);

// Each reads the lines behind "%Data Record" up to "%End" and delivers the item. False ends the reading.
bool readCatText(CatReader &reader, ItemKind itemKind);
bool readCatPicture(CatReader &reader);
bool readCatValues(CatReader &reader, ItemKind itemKind);
bool skipCatData(CatReader &reader);
bool catTooLarge(CatReader &reader, const std::string &name);  // tells it, and skips what is left of the data

}  // namespace numalink
