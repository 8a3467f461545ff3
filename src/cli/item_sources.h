// Items by what a user calls them: one of a library, those of an item file, or a program as a text.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "calculator/item_kinds.h"
#include "platform/bytes.h"

namespace numalink {

struct SourceItem {
    ItemKind itemKind = kind::unknown;
    std::string name;  // calculator codes; empty for a text
    Bytes head;
    Bytes data;
};

struct ItemSource {
    std::string label;                // as the user called it
    std::vector<SourceItem> items;    // none for an empty file
    std::optional<std::string> text;  // UTF-8, of a file that holds no items: a program, still to be read
};

// source is "LIBRARY-FOLDER:ITEM" or a file; "/dev/null" and an empty file have no items. Nothing, with the cause on
// standard error, when it can't be read. The library is open only for the length of the call. The tables must be
// loaded.
std::optional<ItemSource> readItemSource(const std::string &source);

// Makes a program of the text of a source, with the bytes of base's program for lines of the same text: a text can't
// tell letters from a command that shows alike. False for what is no token (told).
bool programOfText(ItemSource &source, const ItemSource &base);

}  // namespace numalink
