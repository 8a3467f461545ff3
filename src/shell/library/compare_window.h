// Two programs, or two forms of one, side by side. Graphical thread only.
#pragma once

#include <QString>

#include "calculator/item_kinds.h"
#include "platform/bytes.h"

namespace numalink {

// One side: a program of the library, into which differences can be taken over; or an earlier form, or what hasn't come
// in yet, which can only be read (id is noItem then).
struct CompareSource {
    ItemId id = noItem;
    QString label;
    Bytes image;
};

CompareSource compareSourceOf(ItemId id);  // an empty label when it is no program

// Until the window is closed. The sides can be changed to any program of the library there.
void compareSources(const CompareSource &left, const CompareSource &right);

// The selected program with another one, the user chooses which; two that are selected with each other.
void compareSelected();
bool mayCompare(ItemKind itemKind);

}  // namespace numalink
