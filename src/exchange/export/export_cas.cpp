// The frame dump: each item's head and data as they go over the wire to the CFX family, all checksums written anew.
#include <limits>

#include "calculator/frames.h"
#include "calculator/number_text.h"
#include "exchange/export/export_writers.h"

namespace numalink {

namespace {

constexpr std::size_t screenBlocks = 3;  // of a colour screen

// Length of the frames that the data is made of.
std::uint64_t summedLength(ItemKind itemKind, ByteView head, std::size_t dataSize) {
    if (itemKind == kind::picture) return picturePlaneLength(head);
    if (isValuesKind(itemKind)) return valueFrameSize;
    if (itemKind == kind::colorScreen && dataSize % screenBlocks == 0) return dataSize / screenBlocks;
    return dataSize;
}

std::optional<ExportRefusal> writeText(const OutgoingItem &item, Bytes &file) {
    std::optional<ProgramInfo> info = decodeProgramInfo(item.head);
    Bytes image = imageWithChecksumPlace(item.data);
    if (!info || info->imageLength > image.size()) return ExportRefusal{ExportFault::sizesDiffer};
    if (image.size() > std::numeric_limits<std::uint16_t>::max()) return ExportRefusal{ExportFault::tooLarge};
    info->imageLength = static_cast<std::uint32_t>(image.size());
    const auto head = buildHeadFrame(item.itemKind, Family::cfx, *info);
    if (!head) return ExportRefusal{ExportFault::kind};
    frameChecksum(image);
    file.insert(file.end(), head->begin(), head->end());
    file.insert(file.end(), image.begin(), image.end());
    return std::nullopt;
}

}  // namespace

void sumData(ItemKind itemKind, ByteView head, Bytes &data) {
    const std::uint64_t length = summedLength(itemKind, head, data.size());
    for (std::uint64_t at = 0; length > 0 && at + length <= data.size(); at += length)
        frameChecksum(std::span(data).subspan(at, length));
}

std::optional<ExportRefusal> writeCas(const OutgoingItem &item, Bytes &file) {
    if (isTextKind(item.itemKind)) return writeText(item, file);
    // What a reader couldn't tell apart by its head, it couldn't step over either.
    const ItemKind marked = item.head.empty() ? kind::unknown : classifyFrame(ByteView(item.head).subspan(1));
    if (marked == kind::unknown || marked == kind::endOfTransmission || marked != item.itemKind)
        return ExportRefusal{ExportFault::kind};
    if (item.head.size() != headFrameLength(marked) || frameDataLength(item.head) != item.data.size())
        return ExportRefusal{ExportFault::sizesDiffer};
    Bytes head = item.head;
    Bytes data = item.data;
    frameChecksum(head);
    sumData(item.itemKind, head, data);
    file.insert(file.end(), head.begin(), head.end());
    file.insert(file.end(), data.begin(), data.end());
    return std::nullopt;
}

}  // namespace numalink
