// Items by chance for the tests of the writers: each kind as a calculator or the editor would make it, with the sizes
// and gaps that have been seen.
#pragma once

#include <random>
#include <string>

#include "calculator/frames.h"
#include "calculator/number_text.h"
#include "exchange/export_writers.h"
#include "text/token_table.h"
#include "virtual_calculator/calculator_frames.h"

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

    OutgoingItem picture(bool oddSizes) {
        const int height = oddSizes ? static_cast<int>(1 + below(70)) : 64;
        const int width = oddSizes ? 8 * static_cast<int>(1 + below(20)) : 128;
        const int colours = static_cast<int>(1 + below(4)), sheets = static_cast<int>(1 + below(2));
        OutgoingItem item = sent(kind::picture, calculator::picture(height, width, colours, sheets, byte()));
        for (std::size_t plane = 0; plane < item.data.size(); plane += picturePlaneLength(item.head))
            item.data[plane + 1] = item.data[plane + 3] = 0;  // sheet and colour are below 256
        return item;
    }

    OutgoingItem values(ItemKind itemKind) {
        const bool isList = itemKind == kind::list;
        const std::uint32_t rows = 1 + below(12), columns = isList ? 1 : 1 + below(6);
        OutgoingItem item =
            sent(itemKind, calculator::valueItem(isList ? "LT" : "MT", name(), "", static_cast<int>(rows),
                                                 static_cast<int>(columns), byte()));
        item.data.clear();
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

    // As the calculator of the tests sends it.
    static OutgoingItem sent(ItemKind itemKind, const calculator::Item &item) {
        const bool named = item.head.size() == headFrameSize || itemKind == kind::algebraBlock;
        const ByteView name = ByteView(item.head).subspan(frameNameOffset);
        return {itemKind, named ? copyFrameName(name) : "", item.head, item.data};
    }
    OutgoingItem memory(ItemKind itemKind, const std::string &type) {
        return sent(itemKind, calculator::memory(type, name(), 2 + below(300), byte()));
    }
    OutgoingItem screen(ItemKind itemKind) {
        const int height = 8 * static_cast<int>(1 + below(16)), width = static_cast<int>(1 + below(64));
        return sent(itemKind, calculator::screenCopy(itemKind == kind::colourScreen, height, width, byte()));
    }

    OutgoingItem make(ItemKind itemKind, ExportTarget target) {
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
                return memory(itemKind, "BU");
            case kind::graphMemory:
                return memory(itemKind, "GM");
            case kind::graphFunction:
                return memory(itemKind, "GF");
            default:
                return screen(itemKind);
        }
    }

    std::mt19937 chance;
};

}  // namespace numalink
