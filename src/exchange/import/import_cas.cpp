// A dump of link frames: head, data, head, data, and a closing frame.
#include "calculator/charset.h"
#include "calculator/frames.h"
#include "exchange/import/import.h"
#include "exchange/import/import_readers.h"

namespace numalink {

void readCas(ByteView file, const ItemSink &sink, ImportReport &report) {
    for (std::size_t at = 0;;) {
        const ByteView rest = file.subspan(at);
        const ItemKind itemKind = rest.empty() ? kind::unknown : classifyFrame(rest.subspan(1));
        if (itemKind == kind::endOfTransmission) return;
        const std::size_t headLength = headFrameLength(itemKind);
        if (itemKind == kind::unknown || rest.size() < headLength) return addStopMessage(report, at);
        const ByteView head = rest.first(headLength);
        const std::uint64_t dataLength = frameDataLength(head);
        if (dataLength > rest.size() - headLength) return addStopMessage(report, at);
        const ByteView data = rest.subspan(headLength, dataLength);
        report.place = at;
        if (!deliver(itemFromFrame(head, {data.begin(), data.end()}), sink, report)) return;
        at += headLength + data.size();
    }
}

}  // namespace numalink
