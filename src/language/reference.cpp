#include "language/reference.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "calculator/program_info.h"
#include "telling/language_table.h"
#include "telling/texts.h"

namespace numalink {

namespace {

constexpr std::string_view tableRows[] = {
#include "language/reference_table.inc"
};
constexpr std::size_t rowCount = std::size(tableRows);
constexpr std::size_t columnCount = 16;

// The columns of a row, which the build has counted.
std::array<std::string_view, columnCount> columnsOf(std::string_view row) {
    row.remove_suffix(1);
    std::array<std::string_view, columnCount> columns;
    for (std::string_view &column : columns) {
        column = row.substr(0, row.find('\t'));
        row.remove_prefix(std::min(row.size(), column.size() + 1));
    }
    return columns;
}

ReferenceState stateOf(std::string_view text) {
    if (text == "differs") return ReferenceState::differs;
    return text == "nothing to do" ? ReferenceState::nothingToDo : ReferenceState::asOnCalculator;
}

ReferenceRow rowOf(std::string_view text) {
    const auto columns = columnsOf(text);
    ReferenceRow row;
    std::from_chars(columns[0].data(), columns[0].data() + columns[0].size(), row.code, 16);
    row.name = columns[1];
    row.topic = columns[2];
    row.syntax = columns[3];
    std::copy_n(columns.begin() + 4, row.meanings.size(), row.meanings.begin());
    row.example = columns[8];
    row.gives = columns[9];
    row.keys = columns[10];
    row.state = stateOf(columns[11]);
    std::copy_n(columns.begin() + 12, row.remarks.size(), row.remarks.begin());
    return row;
}

// English for one that the table doesn't have.
ReferenceLanguage currentLanguage() {
    const int current = languageCurrent();
    const std::string_view language = current < 0 ? std::string_view() : languageRecord(current).name;
    if (language == "Nederlands") return ReferenceLanguage::dutch;
    if (language == "Deutsch") return ReferenceLanguage::german;
    return language ==
                   "Fran\xC3\xA7"
                   "ais"
               ? ReferenceLanguage::french
               : ReferenceLanguage::english;
}

}  // namespace

TokenCode tokenCodeOf(ByteView bytes) {
    const bool isPair = bytes.size() > 1 && isTokenPrefix(bytes[0]);
    return static_cast<TokenCode>(isPair ? bytes[0] << 8 | bytes[1] : bytes[0]);
}

Bytes bytesOfToken(TokenCode code) {
    const auto low = static_cast<std::uint8_t>(code);
    return code > 0xFF ? Bytes{static_cast<std::uint8_t>(code >> 8), low} : Bytes{low};
}

std::span<const ReferenceRow> referenceRows() {
    static const auto rows = [] {
        std::array<ReferenceRow, rowCount> made;
        std::ranges::transform(tableRows, made.begin(), rowOf);
        return made;
    }();
    return rows;
}

const ReferenceRow *referenceOf(TokenCode code) {
    const auto rows = referenceRows();
    const auto found = std::ranges::lower_bound(rows, code, {}, &ReferenceRow::code);
    return found != rows.end() && found->code == code ? &*found : nullptr;
}

std::string_view referenceMeaning(const ReferenceRow &row) {
    return row.meanings[static_cast<std::size_t>(currentLanguage())];
}

std::string_view referenceRemark(const ReferenceRow &row) {
    return row.remarks[static_cast<std::size_t>(currentLanguage())];
}

std::string referenceKeys(const ReferenceRow &row) {
    constexpr std::string_view absent = "not on the CFX keys", inEditor = " in the program editor";
    if (row.keys == absent) return wording(Text::keysAbsent);
    if (row.keys.starts_with(absent)) return wording(Text::keysAbsentOlder);
    if (!row.keys.ends_with(inEditor)) return std::string(row.keys);
    return wording(Text::keysInEditor, {std::string(row.keys.substr(0, row.keys.size() - inEditor.size()))});
}

const std::vector<std::string_view> &referenceTopics() {
    static const auto topics = [] {
        std::vector<std::string_view> made;
        for (const ReferenceRow &row : referenceRows())
            if (std::ranges::find(made, row.topic) == made.end()) made.push_back(row.topic);
        return made;
    }();
    return topics;
}

}  // namespace numalink
