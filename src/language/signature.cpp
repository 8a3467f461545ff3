// Signatures: the syntax of the reference, cut into its arguments.
#include <algorithm>

#include "language/completion.h"
#include "language/token_codes.h"

namespace numalink {

namespace {

constexpr std::string_view alternative = " or ";

// The alternatives of a syntax; an "or" within quotes or between words of one argument parts them as well, so that only
// those that begin like the first count.
std::vector<std::string_view> alternativesOf(std::string_view syntax, std::string_view name) {
    std::vector<std::string_view> found;
    for (std::size_t from = 0; from <= syntax.size();) {
        std::size_t end = syntax.find(alternative, from);
        while (end != std::string_view::npos && !syntax.substr(end + alternative.size()).starts_with(name))
            end = syntax.find(alternative, end + 1);
        found.push_back(syntax.substr(from, end == std::string_view::npos ? end : end - from));
        if (end == std::string_view::npos) break;
        from = end + alternative.size();
    }
    return found;
}

struct Argument {
    std::size_t from = 0, length = 0;
};

// What stands between the commas behind the name.
std::vector<Argument> argumentsOf(std::string_view syntax, std::string_view name) {
    std::vector<Argument> arguments;
    std::size_t from = std::min(syntax.size(), name.size());
    if (!syntax.starts_with(name)) return arguments;
    std::size_t end = syntax.size();
    if (name.ends_with('(') && syntax.ends_with(')')) end--;
    int depth = 0;
    for (std::size_t at = from; at <= end; at++) {
        const char sign = at < end ? syntax[at] : ',';
        if (sign == '[' || sign == '{' || sign == '(') depth++;
        if (sign == ']' || sign == '}' || sign == ')') depth--;
        if (sign != ',' || depth > 0) continue;
        if (at > from) arguments.push_back({from, at - from});
        from = at + 1;
    }
    return arguments;
}

std::optional<Signature> signatureOf(TokenCode token, std::size_t argument) {
    const ReferenceRow *row = referenceOf(token);
    if (row == nullptr) return std::nullopt;
    const std::string_view name = row->name;
    std::optional<Signature> best;
    for (const std::string_view syntax : alternativesOf(row->syntax, name)) {
        const std::vector<Argument> arguments = argumentsOf(syntax, name);
        if (arguments.empty()) continue;
        const bool fits = argument < arguments.size();
        if (best && !fits) continue;
        best = Signature{token, std::string(syntax), fits ? arguments[argument].from : 0,
                         fits ? arguments[argument].length : 0};
        if (!fits && arguments.size() > 1 && syntax.find("...") != std::string_view::npos) {
            best->from = arguments.back().from;
            best->length = arguments.back().length;
        }
        if (fits) break;
    }
    return best;
}

}  // namespace

std::optional<Signature> signatureAt(const ProgramStructure &program, std::size_t token) {
    if (program.tokens.empty()) return std::nullopt;
    token = std::min(token, program.tokens.size());
    const ProgramStatement &statement = program.statements[statementOf(program, token)];
    const std::size_t head = headOf(program, statement);
    std::size_t commas = 0, place = token;
    while (place > statement.first) {
        place--;
        const ProgramToken &each = program.tokens[place];
        if (each.role != TokenRole::code) continue;
        if (program.partners[place] != noToken && program.partners[place] < place) {
            place = program.partners[place];
            continue;
        }
        if (each.code == code::comma) commas++;
        if (opensParenthesis(each.code) && each.code != code::openParenthesis) return signatureOf(each.code, commas);
        if (each.code == code::openParenthesis || each.code == code::openBrace || each.code == code::openBracket)
            commas = 0;
        if (place == head && head < token) return signatureOf(each.code, commas);
    }
    return std::nullopt;
}

}  // namespace numalink
