#include "search/duplicates.h"

#include <algorithm>
#include <map>
#include <string>

#include "calculator/program_info.h"
#include "search/search.h"
#include "text/view_runs.h"

namespace numalink {

namespace {

constexpr std::uint8_t lineEnd = 0x0D, colon = ':';
constexpr std::uint8_t colorPrefix = 0x7F, firstColor = 0x31, lastColor = 0x39;  // plot, line and graph colours

using Key = std::string;  // bytes

void append(Key &key, ByteView bytes) {
    key += std::to_string(bytes.size()) + ":";
    key.append(bytes.begin(), bytes.end());
}

Key keyOf(const StoredItem &item) {
    Key key = std::to_string(item.kind) + ":";
    append(key, headWithoutName(item.kind, item.head));
    append(key, item.data);
    return key;
}

}  // namespace

Bytes essenceOf(ByteView image) {
    Bytes essence;
    const ByteView tokens = viewedBytes(image);
    Quoting quoting;
    for (std::size_t at = 0; at < tokens.size(); at++) {
        const std::uint8_t byte = tokens[at];
        const bool isPair = isTokenPrefix(byte) && at + 1 < tokens.size();
        const std::uint8_t second = isPair ? tokens[at + 1] : 0;
        quoting.follow(byte);
        if (isPair) at++;
        if (quoting.inComment) continue;
        const bool isColor = isPair && byte == colorPrefix && second >= firstColor && second <= lastColor;
        if (isColor && !quoting.inString) continue;
        const bool isEnd = byte == lineEnd || (byte == colon && !quoting.inString);
        if (isEnd && (essence.empty() || essence.back() == lineEnd)) continue;
        essence.push_back(isEnd ? lineEnd : byte);
        if (isPair) essence.push_back(second);
    }
    while (!essence.empty() && essence.back() == lineEnd) essence.pop_back();
    return essence;
}

std::vector<Duplicates> findDuplicates() {
    std::map<Key, std::vector<ItemId>> same, loose;
    for (const ItemId id : searchedItems(rootId)) {
        StoredItem item;
        if (!storeReadItem(id, item)) continue;
        std::vector<ItemId> &group = same[keyOf(item)];
        group.push_back(id);
        if (group.size() > 1 || !isTextKind(item.kind)) continue;
        const Bytes essence = essenceOf(item.data);
        if (essence.empty()) continue;
        Key key = std::to_string(item.kind) + ":";
        append(key, essence);
        loose[key].push_back(id);
    }
    std::vector<Duplicates> found;
    for (const auto &[key, ids] : same)
        if (ids.size() > 1) found.push_back({Likeness::bytes, ids});
    for (const auto &[key, ids] : loose)
        if (ids.size() > 1) found.push_back({Likeness::loose, ids});
    std::ranges::sort(found, {}, [](const Duplicates &group) { return group.ids.front(); });
    return found;
}

}  // namespace numalink
