// What a program consists of, as a list to choose from. Pure; any thread once the tables are loaded.
#pragma once

#include "language/structure.h"

namespace numalink {

enum class OutlineKind : std::uint8_t { remark, label, call, menu };
struct OutlineEntry {
    OutlineKind kind{};
    std::string text;  // calculator codes: a remark without its apostrophe, a name, a menu's title
    std::size_t token = 0;
};
std::vector<OutlineEntry> outlineOf(const ProgramStructure &program);  // in the order of the program

}  // namespace numalink
