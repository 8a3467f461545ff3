// The readers called with a text and a sink that keeps what comes, and what importers and exporters stand on.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "exchange/import/import_readers.h"
#include "platform/thread_role.h"
#include "store/item_store.h"
#include "support/scratch_folder.h"
#include "support/ui_recorder.h"
#include "telling/language_table.h"
#include "text/token_table.h"

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

struct Exchange : testing::Test {
    Exchange() {
        threadRole = ThreadRole::graphical;
        EXPECT_TRUE(tokenTableLoad());
        languageLoad("English", "English");
    }
};

// With a library of its own.
struct LibraryExchange : Exchange {
    LibraryExchange() { EXPECT_TRUE(storeOpen()); }
    ~LibraryExchange() override { storeClose(); }

    ScratchFolder scratch;
    RecordedUi ui;
};

}  // namespace numalink
