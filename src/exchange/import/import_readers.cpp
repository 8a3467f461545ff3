// What the readers share: messages, and the test of a head against its data.
#include "exchange/import/import_readers.h"

#include "calculator/charset.h"
#include "calculator/frames.h"
#include "telling/texts.h"

namespace numalink {

namespace {

std::uint64_t lengthByHead(const ImportedItem &item) {
    // By the kind, not by the mark: a text file may put a number into the byte that a mark has as 0.
    if (item.itemKind == kind::picture) return picturePlaneCount(item.head) * picturePlaneLength(item.head);
    if (!isTextKind(item.itemKind)) return frameDataLength(item.head);
    const auto info = decodeProgramInfo(item.head);
    return info ? info->imageLength : 0;
}

}  // namespace

void addMessage(ImportReport &report, Text text, const std::vector<std::string> &arguments, const std::string &detail) {
    report.messages.push_back({text, wording(text, arguments) + detail});
}

void addStopMessage(ImportReport &report, std::size_t place) {
    addMessage(report, Text::importStopped, {std::to_string(report.items), std::to_string(place)});
}

bool deliver(ImportedItem item, const ItemSink &sink, ImportReport &report) {
    const std::string name = item.name.empty() ? "?" : utf8FromCalculator(item.name);
    if (item.data.size() > itemDataLimit) {
        addMessage(report, Text::importTooLarge, {name, std::to_string(itemDataLimit)});
        return true;
    }
    if (lengthByHead(item) != item.data.size()) {
        addMessage(report, Text::importSizesDiffer, {name});
        return true;
    }
    if (!sink(item)) return false;
    report.items++;
    return true;
}

ImportedItem itemFromFrame(ByteView head, Bytes data) {
    ImportedItem item{.itemKind = classifyFrame(head.subspan(1)),
                      .name = copyFrameName(head.subspan(frameNameOffset)),
                      .head = {head.begin(), head.end()},
                      .data = std::move(data)};
    if (const auto info = infoFromHeadFrame(head)) item.head = encodeProgramInfo(*info);
    return item;
}

}  // namespace numalink
