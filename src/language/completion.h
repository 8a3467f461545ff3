// What may be meant by a few letters, best first, and what the command at a place takes. Pure; any thread once the
// tables are loaded.
#pragma once

#include "language/structure.h"
#include "text/view_runs.h"

namespace numalink {

enum class CompletionKind : std::uint8_t { token, label, program, list, matrix };
struct Completion {
    CompletionKind kind{};
    std::string shown;    // calculator codes
    Bytes bytes;          // what accepting puts in the place of the letters
    TokenCode token = 0;  // of a token, for its row of the reference
    int rank = 0;         // higher is better
};

// What is being typed, from the line of the caret.
struct CompletionQuery {
    enum class Wish : std::uint8_t { tokens, labels, programs, lists, matrices, nothing } wish = Wish::nothing;
    std::string letters;   // calculator codes ahead of the caret, without an ending blank
    std::size_t from = 0;  // the first of them in the line; they go up to the caret
};
// caret counts characters of the line. Within quotes programs are meant behind Prog, and nothing elsewhere; behind List
// and Mat the names alone.
CompletionQuery completionQuery(const ViewLine &line, const LineReading &reading, std::size_t caret);

// Names of programs in calculator codes. At most completionLimit. No letters: all labels, programs, lists or matrices;
// for tokens none. Letters that hold all of "List" or "Mat" stand for single lists and matrices as well; those that the
// program uses come first.
inline constexpr std::size_t completionLimit = 60;
std::vector<Completion> completionsOf(const CompletionQuery &query, const ProgramStructure &program,
                                      const std::vector<std::string> &programs);

// How well letters fit a text in their order, either case; 0 where they don't.
int letterRank(std::string_view letters, std::string_view text);

// The syntax of the command or function whose arguments hold a place.
struct Signature {
    TokenCode token = 0;
    std::string syntax;                // UTF-8, that alternative of the reference that the arguments so far fit
    std::size_t from = 0, length = 0;  // bytes of the syntax: the present argument; length 0 for none
};
// token: of what stands right behind the place, or the count of tokens at the end.
std::optional<Signature> signatureAt(const ProgramStructure &program, std::size_t token);

}  // namespace numalink
