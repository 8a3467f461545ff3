// What each token of the language means: the rows of data/language_reference.tsv, which the build takes in. They are
// taken apart at the first question. Texts are UTF-8 and stay valid to the program's end. Any thread.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/bytes.h"

namespace numalink {

// A token as a number: its byte, or both bytes of a pair with the first one high.
using TokenCode = std::uint16_t;

// Of the token at the start of bytes, a pair behind 0x7F and 0xF7; at least one byte.
TokenCode tokenCodeOf(ByteView bytes);
Bytes bytesOfToken(TokenCode code);  // 1 or 2

enum class ReferenceState : std::uint8_t { asOnCalculator, differs, nothingToDo };

enum class ReferenceLanguage : std::uint8_t { english, dutch, german, french };
using ReferenceTexts = std::array<std::string_view, 4>;  // a text in each of them, in their order

struct ReferenceRow {
    TokenCode code = 0;
    std::string_view name;            // as shown, with its blanks
    std::string_view topic;           // English; one of referenceTopics()
    std::string_view syntax;          // words in capitals stand for what a program writes there, U+21B5 for a line end
    ReferenceTexts meanings;          // sentences
    std::string_view example, gives;  // in the words of item files; both empty where there is none
    std::string_view keys;            // on a calculator of the CFX family
    ReferenceState state = ReferenceState::asOnCalculator;
    ReferenceTexts remarks;  // empty where there is nothing to say
};

std::span<const ReferenceRow> referenceRows();  // in the order of their codes
const ReferenceRow *referenceOf(TokenCode code);

// In the language that the program speaks, English for one that the table doesn't have.
std::string_view referenceMeaning(const ReferenceRow &row);
std::string_view referenceRemark(const ReferenceRow &row);
// Where the keys are told in words, these are in that language too.
std::string referenceKeys(const ReferenceRow &row);
// The topics in the order of the table's tokens.
const std::vector<std::string_view> &referenceTopics();

}  // namespace numalink
