// Every text that the program says, by name. The build makes the names from data/language/texts.tsv and own_texts.tsv,
// where a row holds a text with all its translations. Includes nothing of other rooms.
#pragma once

#include <string>
#include <vector>

namespace numalink {

// The language number times 100, plus the place in the list where several texts share a number; none is 0.
enum class Text : int {
#include "telling/texts.inc"
};

// The number from 1 to 199 under which language files have it, or 0 for none.
constexpr int textNumber(Text text) { return static_cast<int>(text) / 100; }

// From this number on a language file has lists of texts.
inline constexpr int firstListNumber = 164;
constexpr int textPlace(Text text) { return static_cast<int>(text) % 100; }

// The wording in the current language, or the fallback's, as UTF-8; %d and %s replaced in order. Never fails: what no
// language has is "<unknown string>". Any thread, once the languages are loaded.
std::string wording(Text text, const std::vector<std::string> &arguments = {});

}  // namespace numalink
