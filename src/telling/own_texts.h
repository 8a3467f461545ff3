// The texts of our own, from number 164 on. The language table ends at 199, so several texts share a number, joined by
// "|". They are written in data/language/own_texts.tsv, a row a text with all its translations; the build makes the
// names here.
#pragma once

#include <string>
#include <vector>

namespace numalink {

// number * 100 + place in the list
enum class OwnText : int {
#include "telling/own_texts.inc"
};

constexpr int ownTextNumber(OwnText text) { return static_cast<int>(text) / 100; }
constexpr int ownTextPlace(OwnText text) { return static_cast<int>(text) % 100; }

// The wording in the current language, or the fallback's; %d and %s replaced in order.
std::string ownText(OwnText text, const std::vector<std::string> &arguments = {});

}  // namespace numalink
