#include "virtual_calculator/calculator_frames.h"

#include <algorithm>

namespace calculator {

namespace {

std::size_t number(const Bytes &bytes, std::size_t at) {
    return at + 1 < bytes.size() ? std::size_t{bytes[at]} * 256 + bytes[at + 1] : 0;
}

Bytes filled(const std::string &start, std::size_t size) {
    Bytes bytes(start.begin(), start.end());
    bytes.resize(size, 0xFF);
    return bytes;
}

void put(Bytes &bytes, std::size_t at, const std::string &text) {
    std::copy(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

void putNumber(Bytes &bytes, std::size_t at, std::size_t value) {
    bytes[at] = static_cast<std::uint8_t>(value / 256);
    bytes[at + 1] = static_cast<std::uint8_t>(value % 256);
}

std::string typed(const char *group, const std::string &type) { return ":" + std::string(group) + '\0' + type; }

Bytes summedFrame(std::size_t length, std::uint8_t seed) {
    Bytes frame(length);
    for (std::size_t i = 0; i < length; i++) frame[i] = static_cast<std::uint8_t>(seed + i * 7 + i / 251);
    if (length > 0) frame[0] = ':';
    setSum(frame);
    return frame;
}

void append(Bytes &target, const Bytes &source) { target.insert(target.end(), source.begin(), source.end()); }

}  // namespace

std::uint8_t sumOf(const Bytes &bytes, std::size_t from, std::size_t to) {
    unsigned sum = 0;
    for (std::size_t i = from; i < to && i < bytes.size(); i++) sum += bytes[i];
    return static_cast<std::uint8_t>(sum & 0xFF);
}

void setSum(Bytes &frame) {
    if (!frame.empty()) frame.back() = static_cast<std::uint8_t>(0x13A - sumOf(frame, 0, frame.size() - 1));
}

bool isGood(const Bytes &frame) { return sumOf(frame, 0, frame.size()) == 0x3A; }

bool startsWith(const Bytes &bytes, const std::string &mark) {
    return bytes.size() >= mark.size() &&
           std::equal(mark.begin(), mark.end(), bytes.begin(),
                      [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

std::size_t headLength(const Bytes &firstBytes) {
    for (const char *mark : {":DC", ":DD", ":MCS1", ":END1", ":MDL1"})
        if (startsWith(firstBytes, mark)) return 40;
    return 50;
}

std::size_t dataLength(const Bytes &head) {
    if (startsWith(head, ":MCS1")) return number(head, 8) + 2;
    if (startsWith(head, ":END")) return 0;
    if (startsWith(head, ":DD")) return std::size_t{head[3]} * head[4] / 8 + 2;
    if (startsWith(head, ":DC")) return (std::size_t{head[3]} * head[4] / 8 + 3) * 3;
    if (startsWith(head, ":IMG")) return number(head, 32) * number(head, 34) * frameLength(head);
    if (startsWith(head, ":VAL")) return number(head, 7) * number(head, 9) * frameLength(head);
    return number(head, 9);
}

std::size_t frameLength(const Bytes &head) {
    if (startsWith(head, ":DC")) return std::size_t{head[3]} * head[4] / 8 + 3;
    if (startsWith(head, ":IMG")) return number(head, 7) * number(head, 9) / 8 + 6;
    if (!startsWith(head, ":VAL")) return 0;
    return head.size() > 27 && head[27] == 'C' ? 26 : 16;  // a complex value has two parts
}

bool isGood(const Item &item) {
    const std::size_t inner = frameLength(item.head);
    const std::size_t step = inner == 0 ? item.data.size() : inner;
    bool good = isGood(item.head);
    for (std::size_t at = 0; good && step > 0 && at < item.data.size(); at += step) {
        const auto begin = item.data.begin() + static_cast<std::ptrdiff_t>(at);
        good = isGood(Bytes(begin, begin + static_cast<std::ptrdiff_t>(std::min(step, item.data.size() - at))));
    }
    return good;
}

bool isLastByNature(const Bytes &head) { return startsWith(head, ":D") || startsWith(head, typed("MEM", "BU")); }

Bytes closingFrame(bool algebra) {
    Bytes frame = algebra ? filled(":END1", 40) : filled(":END", 50);
    setSum(frame);
    return frame;
}

Bytes modelFrame() {
    Bytes frame = filled(":MDL1ZX945", 40);
    put(frame, 11, "038400N1.10");
    const std::uint8_t tail[] = {0, 0, 0x10, 0, 0, 0, 4, 0, 0, 0, 1, 0, 7};
    std::copy(std::begin(tail), std::end(tail), frame.begin() + 22);
    setSum(frame);
    return frame;
}

std::vector<Item> itemsOf(const Bytes &file) {
    std::vector<Item> items;
    std::size_t at = 0;
    const auto take = [&](std::size_t count) {
        const auto begin = file.begin() + static_cast<std::ptrdiff_t>(at);
        at += count;
        return Bytes(begin, begin + static_cast<std::ptrdiff_t>(count));
    };
    while (at + 5 <= file.size()) {
        const Bytes first(file.begin() + static_cast<std::ptrdiff_t>(at),
                          file.begin() + static_cast<std::ptrdiff_t>(at + 5));
        if (at + headLength(first) > file.size()) break;
        Item item{take(headLength(first)), {}};
        if (startsWith(item.head, ":END")) continue;
        if (at + dataLength(item.head) > file.size()) break;
        item.data = take(dataLength(item.head));
        items.push_back(item);
    }
    return items;
}

Item program(const std::string &name, const Bytes &tokens) {
    Item item{filled(typed("TXT", "PG"), 50), {}};
    item.data = {':'};
    append(item.data, tokens);
    item.data.insert(item.data.end(), {0xFF, 0});
    setSum(item.data);
    putNumber(item.head, 7, 0);
    putNumber(item.head, 9, item.data.size());
    put(item.head, 11, name);
    put(item.head, 35, "NL");
    setSum(item.head);
    return item;
}

Item valueItem(const std::string &type, const std::string &name, const std::string &group, int rows, int columns,
               std::uint8_t seed) {
    Item item{filled(typed("VAL", type), 50), {}};
    putNumber(item.head, 7, static_cast<std::size_t>(rows));
    putNumber(item.head, 9, static_cast<std::size_t>(columns));
    put(item.head, 11, name);
    put(item.head, 19, group);
    put(item.head, 27, "R\x0A");
    setSum(item.head);
    for (int i = 0; i < rows * columns; i++) append(item.data, summedFrame(16, static_cast<std::uint8_t>(seed + i)));
    return item;
}

Item picture(int height, int width, int colors, int sheets, std::uint8_t seed) {
    Item item{filled(typed("IMG", "PC"), 50), {}};
    putNumber(item.head, 7, static_cast<std::size_t>(height));
    putNumber(item.head, 9, static_cast<std::size_t>(width));
    put(item.head, 11, "Picture1");
    put(item.head, 27, "DRUWF");
    putNumber(item.head, 32, static_cast<std::size_t>(colors));
    putNumber(item.head, 34, static_cast<std::size_t>(sheets));
    setSum(item.head);
    for (int i = 0; i < colors * sheets; i++)
        append(item.data, summedFrame(frameLength(item.head), static_cast<std::uint8_t>(seed + i)));
    return item;
}

Item memory(const std::string &type, const std::string &name, std::size_t length, std::uint8_t seed) {
    Item item{filled(typed(type == "GF" ? "FNC" : "MEM", type), 50), summedFrame(length, seed)};
    putNumber(item.head, 7, 0);
    putNumber(item.head, 9, length);
    put(item.head, 11, name);
    setSum(item.head);
    return item;
}

Item screenCopy(bool color, int height, int width, std::uint8_t seed) {
    Item item{filled(color ? ":DC" : ":DD", 40), {}};
    item.head[3] = static_cast<std::uint8_t>(height);
    item.head[4] = static_cast<std::uint8_t>(width);
    setSum(item.head);
    if (!color) item.data = summedFrame(dataLength(item.head), seed);
    for (int i = 0; color && i < 3; i++)
        append(item.data, summedFrame(frameLength(item.head), static_cast<std::uint8_t>(seed + i)));
    return item;
}

Item algebraBlock(const std::string &name, std::uint8_t type, std::size_t length, std::uint8_t seed) {
    Item item{filled(":MCS1" + std::string(3, '\0'), 40), summedFrame(length, seed)};
    putNumber(item.head, 8, length - 2);
    item.head[10] = type;
    put(item.head, 11, name);
    setSum(item.head);
    return item;
}

Item algebraProgram(const std::string &name, const Bytes &tokens) {
    Item item = algebraBlock(name, 1, tokens.size() + 13, 0);
    std::fill(item.data.begin() + 1, item.data.end(), std::uint8_t{0});
    std::copy(tokens.begin(), tokens.end(), item.data.begin() + 11);
    setSum(item.data);
    return item;
}

}  // namespace calculator
