// A program taken apart once, for all that checks, explains or moves about in it: tokens, statements, blocks, labels,
// jumps and calls. Places are bytes of the image, from its ':' on, which is 0. A program of any bytes has a structure;
// one walk, linear in its length. Pure; any thread once the tables are loaded.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "language/reference.h"

namespace numalink {

inline constexpr std::size_t noToken = static_cast<std::size_t>(-1);

enum class TokenRole : std::uint8_t {
    code,
    string,  // its quotation marks too
    remark
};
struct ProgramToken {
    std::size_t at = 0;  // byte
    TokenCode code = 0;
    std::uint8_t length = 1;  // bytes
    TokenRole role = TokenRole::code;

    bool is(TokenCode wanted) const { return role == TokenRole::code && code == wanted; }
};

// Tokens between two ends of statements: colon, line end, display triangle. Without its end; may be empty.
struct ProgramStatement {
    std::size_t first = 0, count = 0;  // tokens
    std::size_t cells = 0;             // what a run takes it as: a number and a string are one each
};

enum class BlockKind : std::uint8_t { branch, count, loop, doLoop };  // If, For, While, Do
struct ProgramBlock {
    BlockKind kind{};
    // Tokens; noToken for what is missing. Of Then and Else the first.
    std::size_t opens = noToken, then = noToken, otherwise = noToken, closes = noToken;
};

// A label by the number or token behind its Lbl, as a jump looks for it.
struct LabelName {
    bool isNumber = false;
    std::uint64_t value = 0;
    friend bool operator==(const LabelName &, const LabelName &) = default;
    friend auto operator<=>(const LabelName &, const LabelName &) = default;  // NOLINT(modernize-use-nullptr)
};
struct LabelMention {
    LabelName name;
    std::size_t token = 0;             // the Lbl, Goto or Menu
    std::size_t first = 0, count = 0;  // tokens of the name
};

struct ProgramCall {
    std::string name;                  // calculator codes
    std::size_t token = 0;             // the Prog
    std::size_t first = 0, count = 0;  // tokens of the name, without quotation marks
};

struct ProgramStructure {
    std::vector<ProgramToken> tokens;
    std::vector<ProgramStatement> statements;
    std::vector<ProgramBlock> blocks;  // in the order of their first tokens
    std::vector<std::size_t>
        partners;  // of each token: the other parenthesis, bracket, brace or quotation mark, or noToken
    std::vector<LabelMention> labels, jumps;  // jumps: the targets of Goto and of each choice of Menu
    std::vector<ProgramCall> calls;
    std::vector<std::size_t> openStrings;  // the quotation marks of strings that their line's end closes
    std::vector<std::size_t> lineStarts;   // bytes; line 1 first, as the view shows them
    std::size_t end = 0;                   // the byte behind the last token
};

ProgramStructure structureOf(ByteView image);

std::size_t tokenAt(const ProgramStructure &program, std::size_t at);  // the one that holds the byte, or noToken
std::size_t statementOf(const ProgramStructure &program, std::size_t token);
std::size_t lineOf(const ProgramStructure &program, std::size_t at);  // from 0

// The tokens that belong together with this one: those of a block, of a pair of parentheses, brackets or quotation
// marks. Empty where there is no partner.
std::vector<std::size_t> togetherWith(const ProgramStructure &program, std::size_t token);
// How many blocks each line stands in; the lines that open, part and close a block stand outside of it.
std::vector<int> depthOfLines(const ProgramStructure &program);

// Lines, from 0, that can be hidden behind the one that opens their block: those up to the one that closes it.
struct FoldableLines {
    std::size_t opens = 0;   // the line that stays in sight
    std::size_t closes = 0;  // the line behind the last one that goes; at least opens + 2
    friend bool operator==(const FoldableLines &, const FoldableLines &) = default;
};
// By rising opening lines, one a line: of blocks that open on one line the longest. Each lies within another or beside
// it.
std::vector<FoldableLines> foldableLines(const ProgramStructure &program);

// The statement's first token that isn't a prefix: behind Then, Else and colours, and behind the condition of a double
// arrow. May be the one behind its last.
std::size_t headOf(const ProgramStructure &program, const ProgramStatement &statement);

// The text of tokens as the view shows them, calculator codes.
std::string textOfTokens(const ProgramStructure &program, std::size_t first, std::size_t count);
std::optional<LabelMention> labelBehind(const ProgramStructure &program, std::size_t token);  // the name behind a token

// Whether a token's text ends in an opening parenthesis.
bool opensParenthesis(TokenCode token);

}  // namespace numalink
