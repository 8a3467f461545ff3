// How a kind looks in the tree and what a screen reader says of it.
#pragma once

#include <QString>
#include <string>

#include "calculator/item_kinds.h"

namespace numalink {

QString imageOfKind(ItemKind itemKind);  // the path of its picture in the resources

// "SNAKE, Program", of a name in calculator codes: what a screen reader says of an item.
QString spokenName(const std::string &name, ItemKind itemKind);

}  // namespace numalink
