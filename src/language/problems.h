// What is wrong, or looks wrong, in a program: a second reader beside the calculator. What is told is certain; where a
// program may be meant so, nothing is told. Pure; any thread once the tables are loaded.
#pragma once

#include <set>

#include "calculator/frames.h"
#include "language/references.h"

namespace numalink {

enum class ProblemKind : std::uint8_t {
    labelMissing,
    labelDouble,
    blockWithoutEnd,
    blockWithoutStart,
    thenMissing,
    programMissing,
    notOnCalculator,
    colorRemoved,
    argumentCount,
    stringTooLong,
    stringOpen,
    unreachable,
    neverRead,
    statementTooLong,
    callsWithoutEnd
};

enum class Severity : std::uint8_t { error, warning, hint };

// A few bytes in the place of others.
struct ProblemMend {
    std::size_t at = 0, length = 0;  // bytes of the image
    Bytes bytes;
};

struct Problem {
    ProblemKind kind{};
    std::size_t at = 0, length = 0;      // bytes of the image, from its ':' on
    std::vector<std::string> arguments;  // of its text, UTF-8
    std::optional<ProblemMend> mend;     // where it is sure
};

const char *problemId(ProblemKind kind);  // for machines: "label-missing"
Severity severityOf(ProblemKind kind);
std::string problemText(const Problem &problem);  // a sentence in the language of the program, UTF-8

// What the other programs of a folder say about one: read once, then looked at for each.
struct ProgramSummary {
    std::string name;  // calculator codes
    std::bitset<namedVariables> read;
    std::vector<std::string> sureCalls;  // of programs that are called whatever happens
};
ProgramSummary summaryOf(std::string_view name, const ProgramStructure &program);

struct ProblemContext {
    bool knowsFolder = false;  // whether folder holds all programs beside this one, which is among them
    std::vector<ProgramSummary> folder;
    std::string name;  // its own
    bool isForCfx = true;
    bool removesColor = false;
    std::bitset<namedVariables> readElsewhere;  // by whoever looks at the variables after a run
};

// In the order of the program, at most problemLimit.
inline constexpr std::size_t problemLimit = 1000;
std::vector<Problem> problemsOf(const ProgramStructure &program, const ProblemContext &context);
Bytes withMend(ByteView image, const ProblemMend &mend);  // its checksum place anew

}  // namespace numalink
