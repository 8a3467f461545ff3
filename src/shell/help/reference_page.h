// What the reference says of a token, as the window shows it. Graphical thread only, once the tables are loaded.
#pragma once

#include <QString>

#include "language/reference.h"

namespace numalink {

// All that the reference has, the window's own order ahead of any other.
std::vector<std::string_view> topicsInOrder();
QString nameInList(const ReferenceRow &row);   // never empty: its code, as item files have it, where it shows nothing
QString topicInWords(std::string_view topic);  // in the window's language
QString pageOfToken(const ReferenceRow &row);  // HTML

// Whether all words of wanted stand in what the page says, in any case of letters. No words stand in every page.
bool tokenHolds(const ReferenceRow &row, const QStringList &wanted);

}  // namespace numalink
