// Items by chance for the tests of the writers: each kind as a calculator or the editor would make it, with the sizes
// and gaps that have been seen.
#pragma once

#include <random>
#include <string>

#include "calculator/frames.h"
#include "calculator/number_text.h"
#include "exchange/export_writers.h"
#include "text/token_table.h"

namespace numalink {

struct ItemMaker {
    explicit ItemMaker(unsigned seed) : chance(seed) {}

    unsigned below(unsigned limit) { return static_cast<unsigned>(chance() % limit); }
    std::uint8_t byte() { return static_cast<std::uint8_t>(below(256)); }

    std::string name() {
        std::string text(below(9), ' ');
        // No high code behind another: that could read as UTF-8, which readers take for such.
        for (std::size_t i = 0; i < text.size(); i++) {
            const bool high = below(5) == 0 && (i == 0 || static_cast<std::uint8_t>(text[i - 1]) < 0x80);
            text[i] = static_cast<char>(high ? 0x80 + below(0x7F) : ' ' + below(95));
        }
        return text;
    }

    Bytes image(bool words) {
        Bytes data = {':'};
        for (unsigned left = below(60); left > 0; left--) {
            const TokenRecord &token = tokenRecord(below(static_cast<unsigned>(tokenCount())));
            if (below(3) > 0) {
                constexpr std::string_view usual = "\r\r%EndREC >=12dtnySxABpacwordBaseN:\"%end";
                data.push_back(static_cast<std::uint8_t>(usual[below(usual.size())]));
            } else if (!words || token.asciiText[0] != '\0') {
                if (token.length == 1 && (token.byte1 == 0 || token.byte1 == 0xFF)) continue;
                data.push_back(token.byte1);
                if (token.length == 2) data.push_back(token.byte2);
            }
        }
        data.push_back(0xFF);
        return data;
    }

    OutgoingItem text(ItemKind itemKind, bool words) {
        OutgoingItem item{.itemKind = itemKind, .name = name(), .head = {}, .data = image(words)};
        ProgramInfo info{.imageLength = 1, .name = item.name, .password = name()};
        if (below(3) > 0) {
            item.data.push_back(static_cast<std::uint8_t>(below(0xFF)));
            info.imageLength = static_cast<std::uint32_t>(item.data.size());
        }
        item.head = encodeProgramInfo(info);
        return item;
    }

    Bytes head(std::string_view mark, std::uint32_t first, std::uint32_t second, const std::string &itemName) {
        Bytes made(headFrameSize, 0xFF);
        std::copy(mark.begin(), mark.end(), made.begin());
        writeBig16(made, 7, first);
        writeBig16(made, 9, second);
        std::copy(itemName.begin(), itemName.end(), made.begin() + frameNameOffset);
        return made;
    }

    OutgoingItem picture(bool oddSizes) {
        using namespace std::string_view_literals;
        OutgoingItem item{.itemKind = kind::picture, .name = name(), .head = {}, .data = {}};
        const std::uint32_t height = oddSizes ? 1 + below(70) : 64;
        const std::uint32_t width = oddSizes ? 8 * (1 + below(20)) : 128;
        item.head = head(":IMG\0PC"sv, height, width, item.name);
        constexpr std::string_view rest = "DRUWF\0"sv;
        std::copy(rest.begin(), rest.end(), item.head.begin() + 27);
        writeBig16(item.head, 32, 1 + below(4));
        writeBig16(item.head, 34, 1 + below(2));
        for (std::uint64_t plane = 0; plane < picturePlaneCount(item.head); plane++) {
            item.data.insert(item.data.end(), {':', 0, byte(), 0, byte()});
            for (std::uint64_t i = 5; i < picturePlaneLength(item.head); i++) item.data.push_back(byte());
        }
        return item;
    }

    OutgoingItem values(ItemKind itemKind) {
        using namespace std::string_view_literals;
        OutgoingItem item{.itemKind = itemKind, .name = name(), .head = {}, .data = {}};
        const std::uint32_t rows = 1 + below(12);
        const std::uint32_t columns = itemKind == kind::list ? 1 : 1 + below(6);
        item.head = head(itemKind == kind::list ? ":VAL\0LT"sv : ":VAL\0MT"sv, rows, columns, item.name);
        item.head[27] = 'R';
        item.head[28] = 10;
        for (std::uint32_t place = 0; place < rows * columns; place++) {
            Bytes frame(valueFrameSize);
            encodeValue(std::span(frame).first<valueFrameSize>(), place / columns + 1, place % columns + 1, 0);
            if (below(5) > 0) fillDigits(frame);
            item.data.insert(item.data.end(), frame.begin(), frame.end());
        }
        return item;
    }

    // As a calculator has them: any 15 digits, the first not 0, and an exponent of at most 99.
    void fillDigits(Bytes &frame) {
        const auto digits = [&] { return static_cast<std::uint8_t>(below(10) << 4 | below(10)); };
        frame[5] = static_cast<std::uint8_t>(1 + below(9));
        for (std::size_t i = 6; i < 13; i++) frame[i] = digits();
        const bool small = below(2) == 0;
        frame[13] = static_cast<std::uint8_t>((below(2) == 0 ? 0x50 : 0) + (small ? 0 : 1));
        do frame[14] = digits();
        while (small && frame[14] == 0);
    }

    OutgoingItem block(ItemKind itemKind, std::string_view mark) {
        OutgoingItem item{.itemKind = itemKind, .name = name(), .head = {}, .data = {}};
        const std::uint32_t length = 2 + below(300);
        item.head = head(mark, 0, length, item.name);
        for (std::uint32_t i = 0; i < length; i++) item.data.push_back(byte());
        return item;
    }

    OutgoingItem screen(ItemKind itemKind) {
        const bool colour = itemKind == kind::colourScreen;
        OutgoingItem item{.itemKind = itemKind, .name = {}, .head = Bytes(shortHeadFrameSize, 0xFF), .data = {}};
        const std::string_view mark = colour ? ":DC" : ":DD";
        std::copy(mark.begin(), mark.end(), item.head.begin());
        item.head[3] = static_cast<std::uint8_t>(8 * (1 + below(16)));
        item.head[4] = static_cast<std::uint8_t>(1 + below(64));
        for (std::uint64_t left = frameDataLength(item.head); left > 0; left--) item.data.push_back(byte());
        return item;
    }

    OutgoingItem make(ItemKind itemKind, ExportTarget target) {
        using namespace std::string_view_literals;
        switch (itemKind) {
            case kind::program:
            case kind::functionMemory:
                return text(itemKind, target != ExportTarget::cas);
            case kind::picture:
                return picture(below(3) == 0);
            case kind::matrix:
            case kind::list:
                return values(itemKind);
            case kind::backup:
                return block(itemKind, ":MEM\0BU"sv);
            case kind::graphMemory:
                return block(itemKind, ":MEM\0GM"sv);
            case kind::graphFunction:
                return block(itemKind, ":FNC\0GF"sv);
            default:
                return screen(itemKind);
        }
    }

    std::mt19937 chance;
};

}  // namespace numalink
