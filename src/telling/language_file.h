// One language file (.clf) as bytes: the section that names the language, then numbered texts. Pure.
// Only settings/ and its tests include this.
#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "telling/language_table.h"

namespace numalink {

struct LanguageFile {
    LanguageRecord record;                           // "<unknown>" for what isn't told
    std::vector<std::pair<int, std::string>> texts;  // numbers 0 to 199, in file order; a later one replaces
};

// Never fails: lines that say nothing are passed over, and so are numbers beyond the table and texts whose %d and %s
// are not those that the program gives for the number.
LanguageFile languageParse(std::string_view bytes);

}  // namespace numalink
