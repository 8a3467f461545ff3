// "NLB1", the number of items, each as kind, name, head and data with their lengths ahead, and a checksum over it all.
// Numbers have 32 bits, the lowest byte first.
#include "calculator/item_bundle.h"

#include <algorithm>
#include <array>

namespace numalink {

namespace {

constexpr std::array<std::uint8_t, 4> bundleMark = {'N', 'L', 'B', '1'};
constexpr std::size_t nameLimit = 255;

void appendNumber(Bytes &bytes, std::size_t number) {
    bytes.resize(bytes.size() + 4);
    writeLittle32(bytes, bytes.size() - 4, static_cast<std::uint32_t>(number));
}

void appendPart(Bytes &bytes, ByteView part) {
    appendNumber(bytes, part.size());
    bytes.insert(bytes.end(), part.begin(), part.end());
}

// Takes from the front of what is left. Behind a fault everything reads as nothing.
struct BundleReader {
    ByteView left;
    bool good = true;

    std::uint32_t number() {
        good = good && left.size() >= 4;
        if (!good) return 0;
        const std::uint32_t value = readLittle32(left, 0);
        left = left.subspan(4);
        return value;
    }
    ByteView part(std::size_t limit) {
        const std::size_t size = number();
        good = good && size <= limit && size <= left.size();
        if (!good) return {};
        const ByteView bytes = left.first(size);
        left = left.subspan(size);
        return bytes;
    }
};

bool fits(const BundledItem &item) {
    return item.name.size() <= nameLimit && item.head.size() <= itemDataLimit && item.data.size() <= itemDataLimit;
}

}  // namespace

std::uint32_t checksum32(ByteView bytes) {
    static constexpr auto table = [] {
        std::array<std::uint32_t, 256> made{};
        for (std::uint32_t i = 0; i < made.size(); i++) {
            std::uint32_t value = i;
            for (int bit = 0; bit < 8; bit++) value = (value & 1) != 0 ? value >> 1 ^ 0xEDB88320 : value >> 1;
            made[i] = value;
        }
        return made;
    }();
    std::uint32_t sum = 0xFFFFFFFF;
    for (const std::uint8_t byte : bytes) sum = sum >> 8 ^ table[(sum ^ byte) & 0xFF];
    return ~sum;
}

Bytes encodeBundle(const std::vector<BundledItem> &items) {
    if (items.size() > bundleItemLimit || !std::ranges::all_of(items, fits)) return {};
    Bytes bytes(bundleMark.begin(), bundleMark.end());
    appendNumber(bytes, items.size());
    for (const BundledItem &item : items) {
        appendNumber(bytes, item.kind);
        appendPart(bytes, {reinterpret_cast<const std::uint8_t *>(item.name.data()), item.name.size()});
        appendPart(bytes, item.head);
        appendPart(bytes, item.data);
    }
    appendNumber(bytes, checksum32(bytes));
    return bytes.size() > bundleSizeLimit ? Bytes() : bytes;
}

std::optional<std::vector<BundledItem>> decodeBundle(ByteView bytes) {
    if (bytes.size() < bundleMark.size() + 8 || bytes.size() > bundleSizeLimit) return std::nullopt;
    const ByteView summed = bytes.first(bytes.size() - 4);
    if (!std::ranges::equal(bytes.first(bundleMark.size()), bundleMark)) return std::nullopt;
    if (checksum32(summed) != readLittle32(bytes, summed.size())) return std::nullopt;
    BundleReader reader{summed.subspan(bundleMark.size())};
    const std::size_t count = reader.number();
    if (count > bundleItemLimit) return std::nullopt;
    std::vector<BundledItem> items;
    for (std::size_t i = 0; i < count && reader.good; i++) {
        BundledItem item;
        item.kind = reader.number();
        const ByteView name = reader.part(nameLimit);
        item.name.assign(name.begin(), name.end());
        const ByteView head = reader.part(itemDataLimit), data = reader.part(itemDataLimit);
        item.head.assign(head.begin(), head.end());
        item.data.assign(data.begin(), data.end());
        items.push_back(std::move(item));
    }
    if (!reader.good || !reader.left.empty()) return std::nullopt;
    return items;
}

}  // namespace numalink
