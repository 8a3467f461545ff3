// The readers of item files. They hand each item to a sink and write down what is to be told; they neither store nor
// ask anything. No reader trusts a length of its file. Any thread once the tables are loaded.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "calculator/item_kinds.h"
#include "platform/bytes.h"
#include "telling/texts.h"

namespace numalink {

struct ImportedItem {
    ItemKind itemKind = kind::unknown;
    std::string name;  // calculator codes; may be empty
    Bytes head;
    Bytes data;
};

// False when no more items can be taken: the reader stops.
using ItemSink = std::function<bool(ImportedItem &item)>;

struct ImportMessage {
    Text bodyText;
    std::string body;
};

struct ImportReport {
    std::size_t items = 0;
    std::size_t place = 0;           // bytes of the file ahead of the item that is being read
    std::size_t unknownRecords = 0;  // records of the text format whose type has no kind
    std::vector<ImportMessage> messages;
};

using ItemReader = void (*)(ByteView file, const ItemSink &sink, ImportReport &report);

void readCat(ByteView file, const ItemSink &sink, ImportReport &report);
void readCas(ByteView file, const ItemSink &sink, ImportReport &report);
void readFxi(ByteView file, const ItemSink &sink, ImportReport &report);
void readPage(ByteView file, const ItemSink &sink, ImportReport &report);

// A text, perhaps with something of the file behind it.
void addMessage(ImportReport &report, Text text, const std::vector<std::string> &arguments,
                const std::string &detail = {});
void addStopMessage(ImportReport &report, std::size_t place);

// Holds the head against its data, and hands the item on when both agree and fit; else one message, and true: the
// next item may be good. False when the sink takes no more.
bool deliver(ImportedItem item, const ItemSink &sink, ImportReport &report);

// The item of a whole head frame and its data: the name from the head, for text items the head as a ProgramInfo.
ImportedItem itemFromFrame(ByteView head, Bytes data);

}  // namespace numalink
