// The writers of item files. Each appends one item to a file in memory, once it has made sure that a reader would get
// the same item back; they neither ask nor tell. Any thread once the tables are loaded.
#pragma once

#include <optional>
#include <string>

#include "calculator/item_kinds.h"
#include "platform/bytes.h"
#include "telling/user_interface.h"

namespace numalink {

struct OutgoingItem {
    ItemKind itemKind = kind::unknown;
    std::string name;  // calculator codes, for messages
    Bytes head;        // as in the library
    Bytes data;
};

enum class ExportFault {
    kind,         // the target has no record for it
    code,         // a token without exchange word
    sizesDiffer,  // head and data contradict each other
    tooLarge,     // more than readers take, or the head's 16 bits hold
    notWhole      // the target would lose or change something
};

struct ExportRefusal {
    ExportFault fault{};
    int code = 0;  // the token's first byte, for code
};

// Nothing when the item was appended; file is as it was otherwise.
std::optional<ExportRefusal> appendItem(const OutgoingItem &item, ExportTarget target, Bytes &file);
void appendFileEnd(ExportTarget target, Bytes &file);

// The writers behind it. What they append hasn't been read back.
std::optional<ExportRefusal> writeCas(const OutgoingItem &item, Bytes &file);
std::optional<ExportRefusal> writeCat(const OutgoingItem &item, bool algebra, Bytes &file);

// Writes all checksums of an item's data: a picture has one a plane, a matrix or list one a value, a colour screen one
// in each of its three blocks.
void sumData(ItemKind itemKind, ByteView head, Bytes &data);

}  // namespace numalink
