// A program with the items of its folder as one web page that plays it in a browser. Graphical thread.
#pragma once

#include <string>

#include "calculator/item_kinds.h"

namespace numalink {

// Whether this program came with the player that such a page holds.
bool pagePlayerThere();

struct PageJob {
    ItemId program = noItem;
    std::string title;  // UTF-8; empty: the program's name
    std::string path;   // in the file system's encoding
    bool mayReplace = false;
};

// False when nothing was written, which has been told.
bool sharePage(const PageJob &job);

// A text as it may stand between the tags of a page. Control characters become blanks.
std::string pageText(const std::string &utf8);

}  // namespace numalink
