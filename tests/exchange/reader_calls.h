// The readers called with a text and a sink that keeps what comes.
#pragma once

#include <string>
#include <vector>

#include "exchange/import_readers.h"

namespace numalink {

struct ReadResult : ImportReport {
    std::vector<ImportedItem> taken;
};

using ReaderCall = void (*)(ByteView, const ItemSink &, ImportReport &);

inline ReadResult readWith(ReaderCall reader, std::string_view text) {
    ReadResult result;
    const ItemSink sink = [&](ImportedItem &item) {
        result.taken.push_back(item);
        return true;
    };
    reader({reinterpret_cast<const std::uint8_t *>(text.data()), text.size()}, sink, result);
    return result;
}

inline std::vector<int> numbersOf(const ImportReport &report) {
    std::vector<int> numbers;
    for (const ImportMessage &message : report.messages) numbers.push_back(message.bodyNumber);
    return numbers;
}

}  // namespace numalink
