// What the player keeps that its parts share.
#pragma once

#include <string>

namespace numalink {

// A text by its number, or, of a number that has a list, by that number times 100 plus its place.
void setPageText(int number, std::string text);

}  // namespace numalink
