// The calculator maker's container: scrambled bytes in which items are searched by marks.
#include <algorithm>
#include <optional>

#include "calculator/frames.h"
#include "calculator/number_text.h"
#include "exchange/import/import.h"
#include "exchange/import/import_readers.h"

namespace numalink {

namespace {

constexpr std::uint8_t scramble = 0xE7;
constexpr std::size_t firstItemOffset = 866;
constexpr std::size_t searchMargin = 5;  // a mark this near to the end of the file counts no more
constexpr std::size_t endMargin = 30;    // nor is there an item in so few bytes
constexpr std::size_t headBytes = 48;    // of a head frame, without ':' and checksum
constexpr std::size_t frameExtra = 2;    // ':' and checksum, which the file leaves out of each frame

constexpr std::uint8_t itemMark[] = {0x02, 0x00, 0x01, 0x00};
constexpr std::uint8_t headMark[] = {0x01, 0x00, 0x01, 0x00};

// Where a head stands, or where the search came to nothing.
struct FoundHead {
    std::size_t place = 0;
    bool found = false;
    bool atEnd = false;  // nothing more to come, which is no fault
};

// How an item's data lies in the file.
struct Groups {
    std::uint64_t count;
    std::uint64_t size;        // of one group in the file
    std::uint64_t afterwards;  // bytes behind the last group that the next search passes over
};

std::optional<std::size_t> findMark(ByteView file, std::size_t from, ByteView mark) {
    if (from >= file.size()) return std::nullopt;
    const ByteView rest = file.subspan(from);
    const auto hit = std::search(rest.begin(), rest.end(), mark.begin(), mark.end());
    const std::size_t place = from + static_cast<std::size_t>(hit - rest.begin());
    if (hit == rest.end() || file.size() - place < searchMargin) return std::nullopt;
    return place;
}

FoundHead findHead(ByteView file, std::size_t from) {
    constexpr std::size_t lengthOffset = 10;
    constexpr std::size_t afterFixedMark = 49;
    constexpr std::size_t afterHeadMark = 6;
    const auto start = findMark(file, from, itemMark);
    if (!start) return {.place = from, .atEnd = true};
    std::size_t at = *start + lengthOffset;
    if (at >= file.size()) return {.place = *start};
    at += file[at] + 1u;
    if (file.size() < at + 2 || file[at] != 0x83 || file[at + 1] != 0x80) return {.place = at};
    const auto mark = findMark(file, at + afterFixedMark, headMark);
    if (!mark) return {.place = at};
    at = *mark + afterHeadMark;
    return {.place = at, .found = file.size() >= at + headBytes};
}

// Nothing for a data frame too short to have ':' and checksum.
std::optional<Groups> groupsOf(ByteView head, ItemKind itemKind) {
    if (isValuesKind(itemKind)) {
        const std::uint64_t count =
            std::uint64_t{readBig16(head, frameRowsOffset)} * readBig16(head, frameColumnsOffset);
        return Groups{count, valueFrameSize - frameExtra, 0};
    }
    if (itemKind == kind::picture) return Groups{picturePlaneCount(head), picturePlaneLength(head) - frameExtra, 0};
    constexpr std::uint64_t resumeBehind = 6;
    const std::uint64_t size = frameDataLength(head);
    if (size < frameExtra) return std::nullopt;
    return Groups{1, size - frameExtra, resumeBehind + frameExtra};
}

Bytes rebuildFrames(ByteView groups, const Groups &shape) {
    Bytes data;
    data.reserve(shape.count * (shape.size + frameExtra));
    for (std::uint64_t i = 0; i < shape.count; i++) {
        const ByteView group = groups.subspan(i * shape.size, shape.size);
        const std::size_t start = data.size();
        data.push_back(':');
        data.insert(data.end(), group.begin(), group.end());
        data.push_back(0);
        frameChecksum(std::span(data).subspan(start));
    }
    return data;
}

Bytes headAt(ByteView file, std::size_t place) {
    Bytes head(1, ':');
    const ByteView bytes = file.subspan(place, headBytes);
    head.insert(head.end(), bytes.begin(), bytes.end());
    head.push_back(0);
    head.resize(headFrameLength(classifyFrame(bytes)));
    frameChecksum(head);
    return head;
}

void readItems(ByteView file, const ItemSink &sink, ImportReport &report) {
    for (std::size_t at = firstItemOffset; file.size() > endMargin && at < file.size() - endMargin;) {
        report.place = at;
        const FoundHead found = findHead(file, at);
        if (found.atEnd) return;
        if (!found.found) return addStopMessage(report, found.place);
        const Bytes head = headAt(file, found.place);
        const ItemKind itemKind = classifyFrame(ByteView(head).subspan(1));
        if (itemKind == kind::endOfTransmission) return;
        const auto shape = itemKind == kind::unknown ? std::nullopt : groupsOf(head, itemKind);
        const std::size_t start = found.place + headBytes;
        if (!shape || shape->count * shape->size > file.size() - start) return addStopMessage(report, found.place);
        const std::uint64_t length = shape->count * shape->size;
        if (!deliver(itemFromFrame(head, rebuildFrames(file.subspan(start, length), *shape)), sink, report)) return;
        at = start + length + shape->afterwards;
    }
}

}  // namespace

void readFxi(ByteView file, const ItemSink &sink, ImportReport &report) {
    Bytes plain(file.begin(), file.end());
    for (std::uint8_t &byte : plain) byte ^= scramble;
    readItems(plain, sink, report);
}

}  // namespace numalink
