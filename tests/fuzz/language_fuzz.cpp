// Any bytes as a program: its structure covers them, every place that is told lies within them, and a mend or a new
// name leaves a program that can be read again.
#include "language/completion.h"
#include "language/outline.h"
#include "language/problems.h"
#include "language/program_text.h"
#include "require.h"
#include "text/token_table.h"

namespace {

using namespace numalink;

void checkStructure(const ProgramStructure &program) {
    std::size_t at = 1;
    for (std::size_t i = 0; i < program.tokens.size(); i++) {
        require(program.tokens[i].at == at);
        at += program.tokens[i].length;
        const std::size_t partner = program.partners[i];
        require(partner == noToken || program.partners[partner] == i);
        if (i % (1 + program.tokens.size() / 100) != 0) continue;
        for (const std::size_t other : togetherWith(program, i)) require(other < program.tokens.size());
    }
    require(program.tokens.empty() || at == program.end);
    std::size_t next = 0;
    for (const ProgramStatement &statement : program.statements) {
        require(statement.first == next && headOf(program, statement) <= statement.first + statement.count);
        next = statement.first + statement.count + 1;
    }
    require(depthOfLines(program).size() == program.lineStarts.size());
    for (const OutlineEntry &entry : outlineOf(program)) require(entry.token < program.tokens.size());
}

void checkProblems(ByteView image, const ProgramStructure &program) {
    ProblemContext context;
    context.knowsFolder = true;
    context.removesColor = true;
    context.folder.push_back(summaryOf("A", program));
    for (const Problem &problem : problemsOf(program, context)) {
        require(problem.at >= 1 && problem.length > 0 && problem.at + problem.length <= program.end);
        require(!problemText(problem).empty());
        if (!problem.mend) continue;
        require(problem.mend->at + problem.mend->length <= program.end);
        structureOf(withMend(image, *problem.mend));
    }
}

void checkNames(ByteView image, const ProgramStructure &program, std::size_t step) {
    for (std::size_t i = 0; i < program.tokens.size(); i += step) {
        if (const auto signature = signatureAt(program, i))
            require(signature->from + signature->length <= signature->syntax.size());
        const auto name = nameAt(program, i);
        if (!name) continue;
        for (const NameUse &use : usesOf(program, *name)) require(use.first + use.count <= program.tokens.size());
        if (name->kind != NameKind::program) continue;
        require(withCallsRenamed(withCallsRenamed(image, name->program, "Z"), "Z", "Z").size() <=
                image.size() + program.calls.size());
    }
}

void checkText(ByteView image) {
    const ProgramText text = programText(image);
    constexpr std::size_t longLine = 2000;  // tokens: each is looked for from the start
    for (std::size_t line = 0; line < text.lines.size(); line++) {
        const TextLine &own = text.lines[line];
        if (own.reading.tokens.size() > longLine) continue;
        std::size_t at = own.at;
        for (const ViewToken &token : own.reading.tokens) {
            require(placeOfByte(text, at) == TextPlace{line, token.from});
            require(byteOfPlace(text, {line, token.from}) == at);
            at += token.length;
        }
    }
    const std::vector<ViewLine> lines = viewLines(image);
    for (std::size_t caret = 0; caret <= lines[0].text.size(); caret += 1 + lines[0].text.size() / 20) {
        const CompletionQuery query = completionQuery(lines[0], readLine(lines[0], true), caret);
        require(query.from <= caret);
        completionsOf(query, structureOf(image), {"SNAKE", "S"});
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool loaded = tokenTableLoad();
    if (!loaded) return 0;
    Bytes image = {':'};
    image.insert(image.end(), data, data + size);
    image.push_back(0xFF);
    const ProgramStructure program = structureOf(image);
    checkStructure(program);
    checkProblems(image, program);
    checkNames(image, program, 1 + program.tokens.size() / 20);
    checkText(image);
    return 0;
}
