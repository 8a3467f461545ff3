// What must hold for every item that a reader hands on, whatever the file.
#pragma once

#include "calculator/frames.h"
#include "exchange/import/import.h"
#include "exchange/import/import_readers.h"
#include "require.h"
#include "telling/language_table.h"
#include "text/program_bytes.h"
#include "text/token_table.h"

namespace numalink {

inline void checkItem(const ImportedItem &item) {
    require(item.data.size() <= itemDataLimit);
    require(item.name.size() <= 9);
    if (isTextKind(item.itemKind)) {
        require(decodeProgramInfo(item.head)->imageLength == item.data.size());
        programPlainText(item.data);
    } else {
        require(item.head.size() == headFrameLength(item.itemKind));
        Bytes head = item.head;
        if (head.size() == headFrameSize) head[4] = 0;  // the text format may have another number there
        require(classifyFrame(ByteView(head).subspan(1)) == item.itemKind);
        require(frameDataLength(head) == item.data.size());
    }
}

inline int readAndCheck(void (*reader)(ByteView, const ItemSink &, ImportReport &), ByteView file) {
    [[maybe_unused]] static const bool loaded = tokenTableLoad() && languageLoad("English", "English") == 1;
    ImportReport report;
    std::size_t taken = 0;
    const ItemSink sink = [&](ImportedItem &item) {
        checkItem(item);
        taken++;
        return true;
    };
    reader(file, sink, report);
    require(report.items == taken);
    return 0;
}

}  // namespace numalink
