// The text exchange format, written: one record an item. Lines end in CR LF.
#include <algorithm>
#include <array>

#include "calculator/frames.h"
#include "calculator/number_text.h"
#include "exchange/export/export_writers.h"
#include "text/program_bytes.h"
#include "text/token_table.h"

namespace numalink {

namespace {

constexpr std::size_t pictureLineBytes = 16;
constexpr std::uint32_t algebraCapacityExtra = 8;
constexpr std::uint8_t lineEnd = 0x0D;
constexpr std::string_view algebraEnd = "\\@00";  // closes a program's text

struct CatWriter {
    std::string text{};

    void line(std::string_view key, std::string_view value = {}) {
        text += key;
        text += value;
        text += "\r\n";
    }
    void number(std::string_view key, std::uint64_t value) { line(key, std::to_string(value)); }
    void noOptions() {
        for (const std::string_view key : {"Option1:", "Option2:", "Option3:", "Option4:"}) line(key);
    }
};

std::string hexLine(ByteView bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::string headText(const Bytes &head, std::size_t offset, std::size_t count) {
    return {head.begin() + static_cast<std::ptrdiff_t>(offset),
            head.begin() + static_cast<std::ptrdiff_t>(offset + count)};
}

// The first byte of the first token without a word, or -1. A line end needs none.
int codeWithoutWord(ByteView tokens) {
    while (!tokens.empty()) {
        int length = 1;
        if (tokens[0] != lineEnd && !tokenToAscii(tokens, length)) return tokens[0];
        tokens = tokens.subspan(std::min(tokens.size(), static_cast<std::size_t>(length)));
    }
    return -1;
}

void cfxTextHead(CatWriter &writer, const ProgramInfo &info, std::size_t imageSize) {
    writer.line("%Header Record");
    writer.line("Format:TXT");
    writer.line("Communication SW:0");
    writer.line("Data Type:PG");
    writer.number("Capacity:", imageSize);
    writer.line("File Name:", info.name);
    writer.line("Group Name:");
    writer.line("Password:", info.password);
    writer.line("Option1:NL");
    for (const std::string_view key : {"Option2:", "Option3:", "Option4:"}) writer.line(key);
    writer.line("%Data Record");
}

void algebraTextHead(CatWriter &writer, const ProgramInfo &info, std::size_t imageSize) {
    writer.line("%Header Record");
    writer.line("Format:MCS1");
    writer.line("Type Number:1");
    writer.line("File Name:", info.name);
    writer.line("Option Name:");
    writer.line("Communication SW:0");
    writer.number("Capacity:", imageSize + algebraCapacityExtra);
    writer.line("Data Type:PG");
    writer.line("%Data Record");
    writer.line("Password:", info.password);
    writer.line("BaseN:0");
}

std::optional<ExportRefusal> writeProgram(CatWriter &writer, const OutgoingItem &item, bool algebra) {
    const std::optional<ProgramInfo> info = decodeProgramInfo(item.head);
    const Bytes image = imageWithChecksumPlace(item.data);
    if (!info || info->imageLength > image.size()) return ExportRefusal{ExportFault::sizesDiffer};
    const ByteView tokens = programTokens(image);
    const int code = codeWithoutWord(tokens);
    if (code >= 0) return ExportRefusal{ExportFault::code, code};
    (algebra ? algebraTextHead : cfxTextHead)(writer, *info, image.size());
    writer.text += wordsFromTokens(tokens);
    writer.line(algebra ? algebraEnd : "");
    return std::nullopt;
}

std::optional<ExportRefusal> writePicture(CatWriter &writer, const OutgoingItem &item) {
    const Bytes &head = item.head;
    writer.line("%Header Record");
    writer.line("Format:IMG");
    writer.line("Communication SW:0");
    writer.line("Data Type:PC");
    writer.number("Height:", readBig16(head, frameRowsOffset));
    writer.number("Width:", readBig16(head, frameColumnsOffset));
    writer.line("Data Name:", copyFrameName(ByteView(head).subspan(frameNameOffset)));
    writer.line("Group Name:");
    writer.line("Start Position:", headText(head, frameStartOffset, 2));
    writer.line("Direction:", headText(head, frameDirectionOffset, 1));
    writer.line("Byte Direction:", headText(head, frameByteDirectionOffset, 1));
    writer.line("Bit Weight:", headText(head, frameBitWeightOffset, 1));
    writer.number("Colors:", readBig16(head, frameColorsOffset));
    writer.number("Sheets:", readBig16(head, frameSheetsOffset));
    writer.noOptions();
    writer.line("%Data Record");
    const std::uint64_t planeLength = picturePlaneLength(head);
    for (ByteView rest = item.data; rest.size() >= planeLength; rest = rest.subspan(planeLength)) {
        writer.number("Sheet:", readBig16(rest, 1));
        writer.number("Color:", readBig16(rest, 3));
        ByteView pixels = rest.subspan(planeDotsOffset, planeLength - planeExtra);
        while (!pixels.empty()) {
            const std::size_t count = std::min(pictureLineBytes, pixels.size());
            writer.line(hexLine(pixels.first(count)));
            pixels = pixels.subspan(count);
        }
    }
    return std::nullopt;
}

std::optional<ExportRefusal> writeValues(CatWriter &writer, const OutgoingItem &item) {
    const Bytes &head = item.head;
    writer.line("%Header Record");
    writer.line("Format:VAL");
    writer.line("Communication SW:0");
    writer.line("Data Type:", item.itemKind == kind::matrix ? "MT" : "LT");
    writer.number("Rows:", readBig16(head, frameRowsOffset));
    writer.number("Columns:", readBig16(head, frameColumnsOffset));
    writer.line("Variable Name:", copyFrameName(ByteView(head).subspan(frameNameOffset)));
    writer.line("Group Name:");
    writer.line("Variable Type:", headText(head, frameTypeOffset, 1));
    writer.number("Variable Length:", head[frameVariableLengthOffset]);
    writer.noOptions();
    writer.line("%Data Record");
    for (ByteView rest = item.data; rest.size() >= valueFrameSize; rest = rest.subspan(valueFrameSize)) {
        writer.text += "Value : " + std::to_string(readBig16(rest, valueRowOffset)) + " " +
                       std::to_string(readBig16(rest, valueColumnOffset)) + " ";
        writer.line(formatValueText(decodeValue(rest.first<valueFrameSize>())));
    }
    return std::nullopt;
}

std::optional<ExportRefusal> writeFrames(CatWriter &writer, const OutgoingItem &item) {
    if (item.head.size() != headFrameSize || frameDataLength(item.head) != item.data.size())
        return ExportRefusal{ExportFault::sizesDiffer};
    return item.itemKind == kind::picture ? writePicture(writer, item) : writeValues(writer, item);
}

}  // namespace

std::optional<ExportRefusal> writeCat(const OutgoingItem &item, bool algebra, Bytes &file) {
    constexpr std::array kinds = {kind::program, kind::picture, kind::matrix, kind::list};
    if (std::ranges::find(kinds, item.itemKind) == kinds.end()) return ExportRefusal{ExportFault::kind};
    CatWriter writer;
    const bool isProgram = item.itemKind == kind::program;
    if (const auto refusal = isProgram ? writeProgram(writer, item, algebra) : writeFrames(writer, item))
        return refusal;
    writer.line("%End");
    file.insert(file.end(), writer.text.begin(), writer.text.end());
    return std::nullopt;
}

}  // namespace numalink
