// The data lines of the text exchange format: program words, sheets of pixels, values.
#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <span>

#include "calculator/charset.h"
#include "calculator/frames.h"
#include "calculator/number_text.h"
#include "exchange/import/cat_record.h"
#include "platform/letter_case.h"
#include "text/lenient_text.h"
#include "text/program_bytes.h"
#include "text/token_table.h"
#include "text/view_runs.h"

namespace numalink {

namespace {

constexpr std::size_t valueFieldsEnd = 29;
constexpr std::size_t pictureFieldsEnd = 36;
constexpr std::size_t placesTold = 5;
constexpr std::size_t bytesOfLine = 16;  // of a picture's sheet

// Starts a head frame: what matrices, lists and pictures have in common. Its checksum's place is 0xFF, as the whole
// rest.
struct HeadNumbers {
    std::uint32_t first;   // rows or height
    std::uint32_t second;  // columns or width
};

Bytes startHead(const CatReader &reader, HeadNumbers numbers, const std::string &name, std::size_t fieldsEnd) {
    Bytes head(headFrameSize, 0xFF);
    std::fill_n(head.begin(), fieldsEnd, std::uint8_t{0});
    std::fill_n(head.begin() + frameNameOffset, frameNameSize, std::uint8_t{0xFF});
    const auto put = [&](std::size_t offset, std::string_view text, std::size_t most) {
        std::ranges::copy(text.substr(0, most), head.begin() + static_cast<std::ptrdiff_t>(offset));
    };
    put(0, ":", 1);
    put(1, reader.value(CatKey::format), 3);
    head[4] = static_cast<std::uint8_t>(reader.number(CatKey::communicationSwitch));
    put(5, reader.value(CatKey::dataType), 2);
    writeBig16(head, frameRowsOffset, numbers.first);
    writeBig16(head, frameColumnsOffset, numbers.second);
    put(frameNameOffset, name, frameNameSize);
    put(frameGroupOffset, reader.value(CatKey::groupName), frameNameSize);
    return head;
}

// The first characters of a value, or what every calculator writes there when the file lacks the key.
void putMark(Bytes &head, std::size_t offset, const std::string &value, std::string_view usual) {
    const std::string_view text = value.size() < usual.size() ? usual : std::string_view(value).substr(0, usual.size());
    std::ranges::copy(text, head.begin() + static_cast<std::ptrdiff_t>(offset));
}

bool sizesDiffer(CatReader &reader, const std::string &name) {
    addMessage(*reader.report, Text::importSizesDiffer, {utf8FromCalculator(name)});
    return true;
}

bool fitsHead(std::uint32_t number) { return number > 0 && number <= std::numeric_limits<std::uint16_t>::max(); }

// Takes back what the last token is, if that is exactly this one byte: never the second byte of a pair.
void takeBackToken(Bytes &data, std::uint8_t byte) {
    std::size_t last = 0;
    for (std::size_t at = 1; at < data.size(); at += isTokenPrefix(data[at]) ? 2 : 1) last = at;
    if (last > 0 && last + 1 == data.size() && data[last] == byte) data.pop_back();
}

std::uint8_t hexDigit(char code) {
    if (code >= '1' && code <= '9') return static_cast<std::uint8_t>(code - '0');
    if (code >= 'A' && code <= 'F') return static_cast<std::uint8_t>(code - 'A' + 10);
    if (code >= 'a' && code <= 'f') return static_cast<std::uint8_t>(code - 'a' + 10);
    return 0;
}

std::uint8_t hexPair(std::string_view text) {
    return static_cast<std::uint8_t>(hexDigit(text[0]) << 4 | hexDigit(text[1]));
}

std::uint8_t numberBehind(std::string_view line, std::string_view key) {
    std::uint32_t number = 0;
    std::from_chars(line.data() + key.size(), line.data() + line.size(), number);
    return static_cast<std::uint8_t>(number);
}

// The planes of a picture while they are read. Once a line is out of its place the picture is lost.
struct Planes {
    std::uint64_t pixels;    // bytes of a plane
    std::uint64_t expected;  // bytes of all planes, with what stands around their pixels
    Bytes data{};
    bool bad = false;

    std::uint64_t placeInPlane() const { return data.size() % (pixels + 6); }
};

void addPlaneLine(Planes &planes, std::string_view line) {
    constexpr std::string_view sheet = "Sheet:";
    constexpr std::string_view color = "Color:";
    constexpr std::uint64_t sheetPlace = 0;
    constexpr std::uint64_t colorPlace = 3;
    constexpr std::uint64_t pixelPlace = 5;
    const std::uint64_t place = planes.placeInPlane();
    if (startsWithoutCase(line, sheet)) {
        planes.bad = place != sheetPlace || planes.data.size() >= planes.expected;
        for (const int byte : {int{':'}, 0, int{numberBehind(line, sheet)}})
            planes.data.push_back(static_cast<std::uint8_t>(byte));
    } else if (startsWithoutCase(line, color)) {
        planes.bad = place != colorPlace;
        for (const int byte : {0, int{numberBehind(line, color)}})
            planes.data.push_back(static_cast<std::uint8_t>(byte));
    } else if (!isBlank(line)) {
        const std::uint64_t left = place < pixelPlace ? 0 : planes.pixels + pixelPlace - place;
        const std::size_t count = static_cast<std::size_t>(std::min<std::uint64_t>(bytesOfLine, left));
        planes.bad = count == 0 || line.size() < 2 * count;
        for (std::size_t i = 0; i < count && !planes.bad; i++) planes.data.push_back(hexPair(line.substr(2 * i, 2)));
        if (planes.placeInPlane() == planes.pixels + pixelPlace) planes.data.push_back(0);
    }
}

Bytes pictureHead(const CatReader &reader, const std::string &name) {
    Bytes head =
        startHead(reader, {reader.number(CatKey::height), reader.number(CatKey::width)}, name, pictureFieldsEnd);
    putMark(head, frameStartOffset, reader.value(CatKey::startPosition), "DR");
    putMark(head, frameDirectionOffset, reader.value(CatKey::direction), "U");
    putMark(head, frameByteDirectionOffset, reader.value(CatKey::byteDirection), "W");
    putMark(head, frameBitWeightOffset, reader.value(CatKey::bitWeight), "F");
    writeBig16(head, frameColorsOffset, reader.number(CatKey::colors));
    writeBig16(head, frameSheetsOffset, reader.number(CatKey::sheets));
    return head;
}

struct PlacedValue {
    std::uint32_t row = 0;
    std::uint32_t column = 0;
    std::optional<double> value{};
};

// The next run of characters other than blanks; text moves behind it.
std::string_view takeWord(std::string_view &text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(word.size());
    return word;
}

std::uint32_t placeNumber(std::string_view word) {
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc{} && end == word.data() + word.size() ? number : 0;
}

PlacedValue parseValueLine(std::string_view line) {
    std::string_view text = line.substr(std::min(line.find(':'), line.size()));
    if (text.starts_with(':')) text.remove_prefix(1);
    PlacedValue placed{.row = placeNumber(takeWord(text)), .column = placeNumber(takeWord(text))};
    placed.value = parseValueText(text);
    return placed;
}

// The frames of a matrix or list in row order, all 0 at first, and what was wrong with the lines.
struct ValueTable {
    std::uint32_t rows;
    std::uint32_t columns;
    Bytes data{};
    std::vector<bool> given{};
    std::size_t refused = 0;
    std::string refusedPlaces{};
};

std::size_t indexOf(const ValueTable &table, std::uint32_t row, std::uint32_t column) {
    return std::size_t{row - 1} * table.columns + (column - 1);
}

bool putValue(ValueTable &table, std::uint32_t row, std::uint32_t column, double value) {
    const auto frame =
        std::span(table.data).subspan(indexOf(table, row, column) * valueFrameSize).first<valueFrameSize>();
    if (!encodeValue(frame, row, column, value)) return false;
    frameChecksum(frame);
    return true;
}

void clearTable(ValueTable &table) {
    const std::size_t count = std::size_t{table.rows} * table.columns;
    table.data.resize(count * valueFrameSize);
    table.given.resize(count);
    for (std::uint32_t row = 1; row <= table.rows; row++) {
        for (std::uint32_t column = 1; column <= table.columns; column++) putValue(table, row, column, 0);
    }
}

void refuse(ValueTable &table, std::string_view line, const PlacedValue &placed) {
    if (table.refused++ >= placesTold) return;
    if (!table.refusedPlaces.empty()) table.refusedPlaces += "; ";
    const bool hasPlace = placed.row > 0 && placed.column > 0;
    table.refusedPlaces +=
        hasPlace ? std::to_string(placed.row) + ", " + std::to_string(placed.column) : "\"" + excerpt(line) + "\"";
}

void addValueLine(ValueTable &table, std::string_view line) {
    if (isBlank(line)) return;
    const PlacedValue placed = parseValueLine(line);
    const bool inside =
        placed.row >= 1 && placed.row <= table.rows && placed.column >= 1 && placed.column <= table.columns;
    if (inside) table.given[indexOf(table, placed.row, placed.column)] = true;
    if (!inside || !placed.value || !putValue(table, placed.row, placed.column, *placed.value))
        refuse(table, line, placed);
}

void tellValues(CatReader &reader, const ValueTable &table, const std::string &name) {
    const std::string shown = utf8FromCalculator(name);
    if (table.refused > 0) {
        const std::string places = table.refusedPlaces + (table.refused > placesTold ? " ..." : "");
        addMessage(*reader.report, Text::importValuesRefused, {shown, std::to_string(table.refused), places});
    }
    const auto missing = std::ranges::count(table.given, false);
    if (missing == 0) return;
    const auto first = static_cast<std::size_t>(std::ranges::find(table.given, false) - table.given.begin());
    addMessage(*reader.report, Text::importValuesMissing,
               {shown, std::to_string(missing), std::to_string(first / table.columns + 1),
                std::to_string(first % table.columns + 1)});
}

// The words of a record's program, up to its end mark.
struct WordWalk {
    Bytes data{};
    std::vector<std::string> unknown{};  // what reads as a word and is none, each once
    Quoting quoting{};
    std::size_t lastWord = 0;  // where the word just read began
};

// A backslash ahead of a letter belongs to a word; but writers part with it what would read as a longer word, or as a
// line of the file's own.
void noteUnknownWord(WordWalk &walk, const CatReader &reader) {
    constexpr std::size_t wordsNoted = 5;
    constexpr std::size_t lettersNoted = 20;
    const std::string_view rest = restOf(reader);
    const auto isLetter = [](char code) { return (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z'); };
    if (rest.size() < 2 || rest[0] != '\\' || !isLetter(rest[1]) || asciiToToken(rest)) return;
    const std::size_t own = reader.at - walk.lastWord;
    std::string joined(reader.file.substr(walk.lastWord, own));
    joined += rest.substr(1, tokenTextSize);
    const TokenRecord *longer = own <= tokenTextSize ? asciiToToken(joined) : nullptr;
    if (longer && std::string_view(longer->asciiText).size() > own) return;
    if (walk.data.size() == 1 &&
        (startsWithoutCase(rest.substr(1), "Password:") || startsWithoutCase(rest.substr(1), "BaseN:")))
        return;
    std::size_t end = 1;
    while (end < std::min(rest.size(), lettersNoted) && (isLetter(rest[end]) || (rest[end] >= '0' && rest[end] <= '9')))
        end++;
    const std::string word(rest.substr(0, end));
    if (walk.unknown.size() < wordsNoted && std::ranges::find(walk.unknown, word) == walk.unknown.end())
        walk.unknown.push_back(word);
}

// False where nothing can be read.
bool readNextWord(WordWalk &walk, CatReader &reader) {
    const std::size_t before = walk.data.size();
    noteUnknownWord(walk, reader);
    std::size_t used = readWord(reader.file, reader.at, walk.data);
    if (used == 0) used = readLenientCharacter(restOf(reader), walk.quoting, walk.data);
    if (used == 0) return false;
    if (walk.data.size() > before) walk.quoting.follow(walk.data[before]);
    walk.lastWord = reader.at;
    reader.at += used;
    return true;
}

void tellUnknownWords(CatReader &reader, const WordWalk &walk) {
    std::string words;
    for (const std::string &word : walk.unknown) words += (words.empty() ? "" : ", ") + word;
    if (!words.empty())
        addMessage(*reader.report, Text::importUnknownWords,
                   {utf8FromCalculator(reader.value(CatKey::fileName)), words});
}

}  // namespace

bool readCatText(CatReader &reader, ItemKind itemKind) {
    if (reader.number(CatKey::capacity) == 0) return catFormatError(reader);
    while (startsWithoutCase(restOf(reader), "Password:") || startsWithoutCase(restOf(reader), "BaseN:")) {
        if (!nextLine(reader)) return catFormatError(reader);
    }
    WordWalk walk{.data = {':'}};
    walk.lastWord = reader.at;
    while (!atEndMark(reader)) {
        if (reader.at == reader.file.size() || atRecordStart(reader)) return catFormatError(reader);
        if (!readNextWord(walk, reader)) return catUnreadable(reader);
        if (walk.data.size() > itemDataLimit) return catTooLarge(reader, reader.value(CatKey::fileName));
    }
    tellUnknownWords(reader, walk);
    Bytes &data = walk.data;
    takeBackToken(data, 0x0D);
    takeBackToken(data, 0x00);
    data.insert(data.end(), {0xFF, 0});
    frameChecksum(data);
    const std::string &name = reader.value(CatKey::fileName);
    const ProgramInfo info{.imageLength = static_cast<std::uint32_t>(data.size()),
                           .name = name,
                           .password = reader.value(CatKey::password)};
    return deliver({itemKind, name, encodeProgramInfo(info), std::move(data)}, *reader.sink, *reader.report);
}

bool readCatPicture(CatReader &reader) {
    const std::string name = reader.value(CatKey::dataName);
    bool fits = true;
    for (const CatKey key : {CatKey::height, CatKey::width, CatKey::colors, CatKey::sheets})
        fits = fits && fitsHead(reader.number(key));
    const Bytes head = pictureHead(reader, name);
    Planes planes{.pixels = picturePlaneLength(head) - planeExtra,
                  .expected = picturePlaneCount(head) * picturePlaneLength(head)};
    planes.bad = !fits || planes.pixels == 0;
    for (; !atEndMark(reader);) {
        if (!planes.bad) addPlaneLine(planes, lineOf(reader));
        if (planes.data.size() > itemDataLimit) return catTooLarge(reader, name);
        if (atRecordStart(reader) || !nextLine(reader)) return catFormatError(reader);
    }
    if (planes.bad || planes.data.size() != planes.expected) return sizesDiffer(reader, name);
    return deliver({kind::picture, name, head, std::move(planes.data)}, *reader.sink, *reader.report);
}

bool readCatValues(CatReader &reader, ItemKind itemKind) {
    const std::string name = reader.value(CatKey::variableName);
    ValueTable table{.rows = reader.number(CatKey::rows), .columns = reader.number(CatKey::columns)};
    const bool fits = fitsHead(table.rows) && fitsHead(table.columns);
    if (!fits) return skipCatData(reader) && sizesDiffer(reader, name);
    if (std::uint64_t{table.rows} * table.columns * valueFrameSize > itemDataLimit) return catTooLarge(reader, name);
    clearTable(table);
    while (!atEndMark(reader)) {
        addValueLine(table, lineOf(reader));
        if (atRecordStart(reader) || !nextLine(reader)) return catFormatError(reader);
    }
    tellValues(reader, table, name);
    Bytes head = startHead(reader, {table.rows, table.columns}, name, valueFieldsEnd);
    putMark(head, frameTypeOffset, reader.value(CatKey::variableType), "R");
    constexpr std::uint8_t usualLength = 10;
    const bool hasLength = !reader.value(CatKey::variableLength).empty();
    head[frameVariableLengthOffset] =
        hasLength ? static_cast<std::uint8_t>(reader.number(CatKey::variableLength)) : usualLength;
    return deliver({itemKind, name, std::move(head), std::move(table.data)}, *reader.sink, *reader.report);
}

}  // namespace numalink
