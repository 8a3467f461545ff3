// The text exchange format: lines, headers, and the way from record to record.
#include <algorithm>
#include <charconv>

#include "calculator/charset.h"
#include "exchange/import/cat_record.h"
#include "platform/letter_case.h"
#include "telling/texts.h"

namespace numalink {

namespace {

constexpr std::string_view keyTexts[] = {
    "Format:",        "Communication SW:", "Data Type:",       "Capacity:", "File Name:",
    "Group Name:",    "Password:",         "Option1:",         "Option2:",  "Option3:",
    "Option4:",       "Data Name:",        "Height:",          "Width:",    "Start Position:",
    "Direction:",     "Byte Direction:",   "Bit Weight:",      "Colors:",   "Sheets:",
    "Variable Name:", "Variable Type:",    "Variable Length:", "Rows:",     "Columns:",
    "Type Number:",   "Option Name:",
};
static_assert(std::size(keyTexts) == static_cast<std::size_t>(CatKey::count));

constexpr std::string_view dataStart = "%Data Record";
constexpr std::string_view endMark = "%End";
constexpr std::size_t valueLimit = 9;
constexpr std::size_t excerptSize = 50;

struct TypeRow {
    std::string_view format;  // empty: any
    std::string_view dataType;
    ItemKind itemKind;
};

// A later hit replaces an earlier one.
constexpr TypeRow typeRows[] = {
    {"", "PG", kind::program},   {"TXT", "FM", kind::functionMemory}, {"IMG", "PC", kind::picture},
    {"VAL", "MT", kind::matrix}, {"VAL", "LT", kind::list},
};

ItemKind kindOfRecord(const CatReader &reader) {
    ItemKind itemKind = kind::none;
    for (const TypeRow &row : typeRows) {
        const bool formatFits = row.format.empty() || reader.value(CatKey::format) == row.format;
        if (formatFits && reader.value(CatKey::dataType) == row.dataType) itemKind = row.itemKind;
    }
    return itemKind;
}

bool hasHighBytes(std::string_view text) {
    return std::ranges::any_of(text, [](char byte) { return static_cast<std::uint8_t>(byte) >= 0x80; });
}

// Values are calculator codes. One that reads as UTF-8 without a rest comes from an editor that saved it so.
std::string valueText(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    if (hasHighBytes(text)) {
        int missing = 0;
        std::string converted = calculatorFromUtf8(text, &missing);
        if (missing == 0) return converted;
    }
    return std::string(text);
}

// False when the value is too long or its line has no end.
bool takeValue(CatReader &reader, std::size_t key) {
    const std::string_view text = lineOf(reader).substr(keyTexts[key].size());
    constexpr std::size_t longestInUtf8 = valueLimit * 4;
    if (text.size() > longestInUtf8) return false;
    reader.values[key] = valueText(text);
    return reader.values[key].size() <= valueLimit && restOf(reader).size() > lineOf(reader).size();
}

bool readData(CatReader &reader) {
    if (!nextLine(reader)) return catFormatError(reader);
    const ItemKind itemKind = kindOfRecord(reader);
    if (isTextKind(itemKind)) return readCatText(reader, itemKind);
    if (itemKind == kind::picture) return readCatPicture(reader);
    if (itemKind != kind::none) return readCatValues(reader, itemKind);
    reader.report->unknownRecords++;
    return skipCatData(reader);
}

bool unknownLine(CatReader &reader) {
    addMessage(*reader.report, Text::importHeaderUnknown, {}, " : " + excerpt(restOf(reader)));
    return false;
}

// From the line of the record's start to its "%End". False ends the reading.
bool readRecord(CatReader &reader) {
    reader.values.fill({});
    reader.record++;
    reader.report->place = reader.at;
    while (nextLine(reader)) {
        const std::string_view line = lineOf(reader);
        const auto key =
            std::ranges::find_if(keyTexts, [&](std::string_view each) { return startsWithoutCase(line, each); });
        if (key != std::end(keyTexts)) {
            if (!takeValue(reader, static_cast<std::size_t>(key - keyTexts))) return catFormatError(reader);
        } else if (startsWithoutCase(line, dataStart)) {
            return readData(reader);
        } else if (!line.starts_with("//") && !isBlank(line)) {
            return unknownLine(reader);
        }
    }
    return catFormatError(reader);
}

// The mark with nothing but a line end behind it.
bool isMarkAt(const CatReader &reader, std::string_view mark) {
    const std::string_view rest = restOf(reader);
    if (!startsWithoutCase(rest, mark)) return false;
    return rest.size() == mark.size() || rest[mark.size()] == '\r' || rest[mark.size()] == '\n';
}

// A line feed of its own is a line end as well: it gets its CR, so that all lines end in CR LF from here on. The second
// LF of CR LF LF belongs to that line end.
bool isLoneFeed(std::string_view file, std::size_t place) {
    if (file[place] != '\n' || (place > 0 && file[place - 1] == '\r')) return false;
    return place < 2 || file[place - 1] != '\n' || file[place - 2] != '\r';
}

std::string withReturns(std::string_view file) {
    std::string text;
    text.reserve(file.size() + file.size() / 16);
    for (std::size_t place = 0; place < file.size(); place++) {
        if (isLoneFeed(file, place)) text += '\r';
        text += file[place];
    }
    return text;
}

// Steps to the line of the next record's start. False at the end of the file.
bool findRecord(CatReader &reader) {
    std::size_t skipped = 0;
    std::string first;
    bool found = false;
    do {
        const std::string_view line = lineOf(reader);
        found = startsWithoutCase(line, catRecordStart);
        if (!found && !isBlank(line) && skipped++ == 0) first = excerpt(line);
    } while (!found && nextLine(reader));
    if (skipped > 0) addMessage(*reader.report, Text::importLinesSkipped, {std::to_string(skipped), first});
    return found;
}

}  // namespace

std::uint32_t CatReader::number(CatKey key) const {
    std::string_view text = value(key);
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    std::uint32_t result = 0;
    std::from_chars(text.data(), text.data() + text.size(), result);
    return result;
}

std::string_view lineOf(const CatReader &reader) {
    const std::string_view rest = restOf(reader);
    return rest.substr(0, rest.find('\r'));
}

// A line ends in CR LF; a second CR ahead of the LF, or a second LF, belongs to the same line end.
bool nextLine(CatReader &reader) {
    std::size_t place = reader.file.find('\r', reader.at);
    if (place == std::string_view::npos) return false;
    place++;
    const auto has = [&](std::size_t where, char code) {
        return where < reader.file.size() && reader.file[where] == code;
    };
    if (has(place, '\r') && has(place + 1, '\n')) place++;
    for (int i = 0; i < 2 && has(place, '\n'); i++) place++;
    reader.at = place;
    return true;
}

bool atEndMark(const CatReader &reader) { return isMarkAt(reader, endMark); }

// Inside of data it tells that the "%End" of this record is missing.
bool atRecordStart(const CatReader &reader) {
    if (reader.at >= reader.file.size()) return false;
    const bool lineHead = reader.at == 0 || reader.file[reader.at - 1] == '\n' || reader.file[reader.at - 1] == '\r';
    return lineHead && isMarkAt(reader, catRecordStart);
}

// The end mark of old text files counts as nothing.
bool isBlank(std::string_view line) {
    return line.find_first_not_of(std::string_view(" \t\n\x1A\0", 5)) == std::string_view::npos;
}

std::string excerpt(std::string_view text) { return utf8FromCalculator(text.substr(0, excerptSize)); }

bool catFormatError(CatReader &reader) {
    std::string name;
    for (const CatKey key : {CatKey::fileName, CatKey::dataName, CatKey::variableName}) {
        if (name.empty()) name = reader.value(key);
    }
    addMessage(*reader.report, Text::importFormatError, {},
               "\n" + wording(Text::importRecord, {std::to_string(reader.record), utf8FromCalculator(name)}));
    return false;
}

bool catUnreadable(CatReader &reader) {
    addMessage(*reader.report, Text::importTextUnreadable, {},
               " : " + excerpt(restOf(reader)) + "\n" + wording(Text::importTextStopped));
    return false;
}

bool skipCatData(CatReader &reader) {
    while (!atEndMark(reader)) {
        if (atRecordStart(reader) || !nextLine(reader)) return catFormatError(reader);
    }
    return true;
}

bool catTooLarge(CatReader &reader, const std::string &name) {
    addMessage(*reader.report, Text::importTooLarge, {utf8FromCalculator(name), std::to_string(itemDataLimit)});
    // The end mark of a text may stand behind other text of its line.
    for (; (reader.at = std::min(reader.file.find('%', reader.at), reader.file.size())) < reader.file.size();
         reader.at++) {
        if (atEndMark(reader)) return true;
        if (atRecordStart(reader)) break;
    }
    return catFormatError(reader);
}

void readCat(ByteView file, const ItemSink &sink, ImportReport &report) {
    const std::string text = withReturns({reinterpret_cast<const char *>(file.data()), file.size()});
    CatReader reader{.file = text, .sink = &sink, .report = &report};
    while (findRecord(reader) && readRecord(reader)) {
        if (!nextLine(reader)) return;
    }
}

}  // namespace numalink
