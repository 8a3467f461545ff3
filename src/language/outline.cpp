#include "language/outline.h"

#include <algorithm>

#include "language/token_codes.h"

namespace numalink {

namespace {

// A remark goes to its statement's end.
OutlineEntry remarkAt(const ProgramStructure &program, std::size_t token) {
    std::size_t end = token + 1;
    while (end < program.tokens.size() && program.tokens[end].role == TokenRole::remark) end++;
    return {OutlineKind::remark, textOfTokens(program, token + 1, end - token - 1), token};
}

OutlineEntry menuAt(const ProgramStructure &program, std::size_t token) {
    OutlineEntry entry{OutlineKind::menu, "", token};
    if (token + 1 >= program.tokens.size()) return entry;
    const std::size_t close = program.partners[token + 1];
    const bool isTitled = program.tokens[token + 1].code == code::quote && close != noToken;
    if (isTitled) entry.text = textOfTokens(program, token + 2, close - token - 2);
    return entry;
}

}  // namespace

std::vector<OutlineEntry> outlineOf(const ProgramStructure &program) {
    std::vector<OutlineEntry> entries;
    for (const LabelMention &label : program.labels)
        entries.push_back({OutlineKind::label, textOfTokens(program, label.first, label.count), label.token});
    for (const ProgramCall &call : program.calls) entries.push_back({OutlineKind::call, call.name, call.token});
    for (std::size_t i = 0; i < program.tokens.size(); i++) {
        const ProgramToken &token = program.tokens[i];
        if (token.is(code::menu)) entries.push_back(menuAt(program, i));
        const bool opensRemark =
            token.role == TokenRole::remark && (i == 0 || program.tokens[i - 1].role != TokenRole::remark);
        if (opensRemark) entries.push_back(remarkAt(program, i));
    }
    std::ranges::stable_sort(entries, {}, &OutlineEntry::token);
    return entries;
}

}  // namespace numalink
