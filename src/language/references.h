// Where the names of a program are used, and how they are given others. Pure; any thread once the tables are loaded.
#pragma once

#include <bitset>

#include "language/structure.h"

namespace numalink {

enum class NameKind : std::uint8_t { variable, label, list, matrix, program };
struct ProgramName {
    NameKind kind{};
    TokenCode variable = 0;  // of a variable, or the letter of a matrix
    LabelName label;         // of a label; of a list its number
    std::string program;     // calculator codes
    std::string shown;       // as it stands in the text, calculator codes
};

enum class NameUseKind : std::uint8_t { reads, writes, defines };
struct NameUse {
    NameUseKind kind{};
    std::size_t first = 0, count = 0;  // tokens
};

// The name that a token is part of, also the one behind Lbl, Goto, Prog, List and Mat.
std::optional<ProgramName> nameAt(const ProgramStructure &program, std::size_t token);
bool sameName(const ProgramName &left, const ProgramName &right);
// In the order of the program. A For, an Isz and a Dsz write; what stands in quotes counts where a formula is stored.
std::vector<NameUse> usesOf(const ProgramStructure &program, const ProgramName &name);

// The variables A to Z, r and theta by number, and what a program does with each.
inline constexpr std::size_t namedVariables = 28;
std::optional<std::size_t> variableNumber(TokenCode token);
struct VariableUses {
    std::bitset<namedVariables> read, written;
    std::vector<NameUse> stores;  // by an arrow alone, whose value isn't what was keyed in
};
VariableUses variableUses(const ProgramStructure &program);

// The tokens of a label name: digits, or one letter or other token of a name; nothing where text (calculator codes) is
// no such name.
std::optional<Bytes> labelTokens(std::string_view text);
// Whether a label may have that name: no other label has it.
bool labelIsFree(const ProgramStructure &program, const LabelName &own, const Bytes &name);
// The image with another name in every call of a program, its checksum place anew; the image itself where there is
// none.
Bytes withCallsRenamed(ByteView image, std::string_view from, std::string_view to);

}  // namespace numalink
