#include "cli/language_documents.h"

#include <algorithm>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "cli/hex_text.h"
#include "platform/files.h"
#include "text/lenient_text.h"

namespace numalink {

namespace {

constexpr std::size_t longestProgram = 1u << 20;  // bytes of a text that is read; beyond it nothing is

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    for (;;) {
        const std::size_t end = text.find_first_of("\r\n");
        lines.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return lines;
        text.remove_prefix(end + (text.substr(end).starts_with("\r\n") ? 2 : 1));
    }
}

constexpr bool beginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }
constexpr bool takesTwoUnits(char byte) { return (static_cast<unsigned char>(byte) & 0xF8) == 0xF0; }

std::vector<std::size_t> unitsOf(std::string_view utf8) {
    std::vector<std::size_t> units;
    std::size_t unit = 0;
    for (const char byte : utf8) {
        if (!beginsCharacter(byte)) continue;
        units.push_back(unit);
        unit += takesTwoUnits(byte) ? 2 : 1;
    }
    units.push_back(unit);
    return units;
}

// An address has signs that it can't hold as "%" and two hexadecimal digits.
std::string withoutEscapes(std::string_view text) {
    std::string plain;
    for (std::size_t at = 0; at < text.size(); at++) {
        const auto escape = text[at] == '%' ? bytesFromHex(text.substr(at + 1, 2)) : std::nullopt;
        const bool isEscape = escape && escape->size() == 1;
        plain += isEscape ? static_cast<char>(escape->front()) : text[at];
        at += isEscape ? 2 : 0;
    }
    return plain;
}

std::string withEscapes(std::string_view text) {
    std::string escaped;
    for (const char letter : text) {
        const auto byte = static_cast<std::uint8_t>(letter);
        const bool isPlain = (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z') ||
                             (letter >= '0' && letter <= '9') ||
                             std::string_view("-._~").find(letter) != std::string_view::npos;
        escaped += isPlain ? std::string(1, letter) : "%" + hexFromBytes({&byte, 1});
    }
    return escaped;
}

std::string folderOf(const std::string &address) {
    return withoutEscapes(address.substr(0, address.find_last_of('/') + 1));
}

// "file:///home/x/MY%20GAME.txt" is MY GAME.
std::string nameOf(const std::string &address) {
    std::string name = fileNameOf(address);
    name.resize(std::min(name.size(), name.find_last_of('.')));
    return calculatorFromUtf8(name);
}

}  // namespace

LanguageDocument readDocument(const std::string &address, std::string_view utf8) {
    LanguageDocument document;
    document.name = nameOf(address);
    for (const std::string_view line : linesOf(utf8.substr(0, longestProgram))) {
        document.lines.push_back(typedLine(line));
        std::vector<std::size_t> units = unitsOf(line);
        document.lengths.push_back(units.back());
        // A letter may have taken an accent of its own with it: what is left over stands at the line's end.
        units.resize(document.lines.back().text.size() + 1, units.back());
        document.units.push_back(std::move(units));
    }
    // A line end at the end of the file is no line of the program.
    std::vector<ViewLine> program = document.lines;
    if (program.size() > 1 && program.back().text.empty()) program.pop_back();
    document.text = programText(program, true);
    document.structure = structureOf(document.text.image);
    return document;
}

bool areInOneFolder(const std::string &address, const std::string &other) {
    return folderOf(address) == folderOf(other);
}

std::string addressOfProgram(const LanguageDocuments &documents, const std::string &beside,
                             const std::string &program) {
    for (const auto &[address, document] : documents)
        if (areInOneFolder(address, beside) && sameProgramName(document.name, program)) return address;
    const std::string name = utf8FromCalculator(program);
    const std::string address = addressBeside(beside, name);
    return name.find('/') == std::string::npos && isFileOnDisk(address) ? address : "";
}

std::string addressBeside(const std::string &address, const std::string &name) {
    const std::size_t file = address.find_last_of('/') + 1, dot = address.find_last_of('.');
    const std::string ending = dot != std::string::npos && dot > file ? address.substr(dot) : "";
    return address.substr(0, file) + withEscapes(name) + ending;
}

bool isFileOnDisk(const std::string &address) {
    constexpr std::string_view scheme = "file://";
    return address.starts_with(scheme) && fileExists(withoutEscapes(address.substr(scheme.size())));
}

std::string fileNameOf(const std::string &address) {
    return withoutEscapes(address.substr(address.find_last_of('/') + 1));
}

DocumentPlace documentPlace(const LanguageDocument &document, const TextPlace &place) {
    if (place.line >= document.lines.size()) return {document.lines.size() - 1, document.lengths.back()};
    const auto &units = document.units[place.line];
    return {place.line, units[std::min(place.character, units.size() - 1)]};
}

DocumentPlace documentPlace(const LanguageDocument &document, std::size_t byte) {
    return documentPlace(document, placeOfByte(document.text, byte));
}

TextPlace textPlaceOf(const LanguageDocument &document, const DocumentPlace &place) {
    if (place.line >= document.lines.size()) return {document.lines.size() - 1, document.lines.back().text.size()};
    const auto &units = document.units[place.line];
    const auto behind = std::upper_bound(units.begin(), units.end(), place.unit);
    const std::size_t character = behind == units.begin() ? 0 : static_cast<std::size_t>(behind - units.begin()) - 1;
    return {place.line, std::min(character, document.lines[place.line].text.size())};
}

}  // namespace numalink
