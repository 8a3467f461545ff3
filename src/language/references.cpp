#include "language/references.h"

#include <algorithm>

#include "calculator/frames.h"
#include "calculator/program_info.h"
#include "language/token_codes.h"

namespace numalink {

namespace {

constexpr std::size_t radiusNumber = 26, thetaNumber = 27;
constexpr std::size_t longestLabel = 15;  // digits

using Tokens = std::vector<ProgramToken>;

bool isAhead(const Tokens &tokens, std::size_t i, TokenCode wanted) { return i > 0 && tokens[i - 1].is(wanted); }

// A letter that names a matrix or a label is no variable.
bool namesOther(const Tokens &tokens, std::size_t i) {
    if (i == 0 || tokens[i - 1].role != TokenRole::code) return false;
    const TokenCode ahead = tokens[i - 1].code;
    return ahead == code::matrix || ahead == code::label || ahead == code::goTo || ahead == code::swapRows ||
           ahead == code::rowPlus;
}

// Of a formula that is stored: the string's closing quotation mark has an arrow behind it.
bool isStoredFormula(const ProgramStructure &program, std::size_t quote) {
    const std::size_t close = program.partners[quote];
    return close != noToken && close > quote && close + 1 < program.tokens.size() &&
           program.tokens[close + 1].is(code::arrow);
}

// Of each token, whether it counts: code, and formulas in quotes.
std::vector<bool> countedTokens(const ProgramStructure &program) {
    std::vector<bool> counted(program.tokens.size());
    for (std::size_t i = 0; i < program.tokens.size(); i++) {
        counted[i] = counted[i] || program.tokens[i].role == TokenRole::code;
        if (program.tokens[i].role != TokenRole::string || !isStoredFormula(program, i)) continue;
        for (std::size_t in = i + 1; in < program.partners[i]; in++) counted[in] = true;
    }
    return counted;
}

// What becomes of the variable at a token.
NameUseKind useOfVariable(const ProgramStructure &program, std::size_t i) {
    const Tokens &tokens = program.tokens;
    const bool isStored = isAhead(tokens, i, code::arrow) ||
                          (isAhead(tokens, i, code::rangeMark) && i > 2 && isAhead(tokens, i - 2, code::arrow));
    const bool isCounted = isAhead(tokens, i, code::isz) || isAhead(tokens, i, code::dsz);
    const bool isReceived = isAhead(tokens, i, code::receive) || isAhead(tokens, i, code::receive38k);
    return isStored || isCounted || isReceived ? NameUseKind::writes : NameUseKind::reads;
}

std::optional<LabelMention> listAt(const ProgramStructure &program, std::size_t i) {
    const ProgramToken &token = program.tokens[i];
    if (token.role != TokenRole::code) return std::nullopt;
    if (token.code >= code::firstList && token.code <= code::lastList)
        return LabelMention{{true, std::uint64_t{token.code} - code::firstList + 1}, i, i, 1};
    if (token.code != code::list) return std::nullopt;
    auto place = labelBehind(program, i);
    if (!place || !place->name.isNumber) return std::nullopt;
    place->first = i;
    place->count++;
    return place;
}

bool holds(const LabelMention &place, std::size_t token) {
    return token == place.token || (token >= place.first && token < place.first + place.count);
}

std::optional<ProgramName> namedPlace(const ProgramStructure &program, std::size_t token) {
    for (const auto *places : {&program.labels, &program.jumps}) {
        for (const LabelMention &place : *places) {
            if (holds(place, token) && !program.tokens[token].is(code::menu))
                return ProgramName{NameKind::label, 0, place.name, {}, textOfTokens(program, place.first, place.count)};
        }
    }
    for (const ProgramCall &call : program.calls) {
        if (token >= call.token && token <= call.first + call.count)
            return ProgramName{NameKind::program, 0, {}, call.name, call.name};
    }
    return std::nullopt;
}

void addUses(std::vector<NameUse> &uses, const std::vector<LabelMention> &places, const LabelName &name,
             NameUseKind kind) {
    for (const LabelMention &place : places)
        if (place.name == name) uses.push_back({kind, place.first, place.count});
}

struct Replacement {
    std::size_t at = 0, length = 0;  // bytes of the image
};

// The checksum place behind the end mark stays, with the sum anew.
Bytes replaced(ByteView image, std::vector<Replacement> places, ByteView by) {
    std::ranges::sort(places, {}, &Replacement::at);
    Bytes made;
    std::size_t from = 0;
    for (const Replacement &place : places) {
        made.insert(made.end(), image.begin() + static_cast<std::ptrdiff_t>(from),
                    image.begin() + static_cast<std::ptrdiff_t>(place.at));
        made.insert(made.end(), by.begin(), by.end());
        from = place.at + place.length;
    }
    made.insert(made.end(), image.begin() + static_cast<std::ptrdiff_t>(from), image.end());
    const std::size_t end = programTokens(made).size() + 1;
    if (made.size() == end + 2) frameChecksum(made);
    return made;
}

Replacement stretchOf(const ProgramStructure &program, std::size_t first, std::size_t count, std::size_t empty) {
    if (count == 0) return {empty, 0};
    const ProgramToken &last = program.tokens[first + count - 1];
    return {program.tokens[first].at, last.at + last.length - program.tokens[first].at};
}

}  // namespace

std::optional<std::size_t> variableNumber(TokenCode token) {
    if (code::isLetter(token)) return static_cast<std::size_t>(token - 'A');
    if (token == code::radius) return radiusNumber;
    return token == code::theta ? std::optional(thetaNumber) : std::nullopt;
}

std::optional<ProgramName> nameAt(const ProgramStructure &program, std::size_t token) {
    if (token >= program.tokens.size()) return std::nullopt;
    if (auto name = namedPlace(program, token)) return name;
    for (std::size_t i = token; i + longestLabel >= token; i--) {
        if (const auto list = listAt(program, i); list && holds(*list, token))
            return ProgramName{NameKind::list, 0, list->name, {}, textOfTokens(program, list->first, list->count)};
        if (i == 0) break;
    }
    const Tokens &tokens = program.tokens;
    if (tokens[token].role != TokenRole::code) return std::nullopt;
    const std::size_t letter = tokens[token].code == code::matrix ? token + 1 : token;
    if (letter >= tokens.size()) return std::nullopt;
    if (isAhead(tokens, letter, code::matrix) && code::isLetter(tokens[letter].code))
        return ProgramName{NameKind::matrix, tokens[letter].code, {}, {}, textOfTokens(program, letter - 1, 2)};
    if (!code::isVariable(tokens[token].code) || namesOther(tokens, token)) return std::nullopt;
    return ProgramName{NameKind::variable, tokens[token].code, {}, {}, textOfTokens(program, token, 1)};
}

bool sameName(const ProgramName &left, const ProgramName &right) {
    return left.kind == right.kind && left.variable == right.variable && left.label == right.label &&
           sameProgramName(left.program, right.program);
}

std::vector<NameUse> usesOf(const ProgramStructure &program, const ProgramName &name) {
    std::vector<NameUse> uses;
    const std::vector<bool> counted = countedTokens(program);
    addUses(uses, name.kind == NameKind::label ? program.labels : std::vector<LabelMention>(), name.label,
            NameUseKind::defines);
    addUses(uses, name.kind == NameKind::label ? program.jumps : std::vector<LabelMention>(), name.label,
            NameUseKind::reads);
    for (const ProgramCall &call : program.calls)
        if (name.kind == NameKind::program && sameProgramName(call.name, name.program))
            uses.push_back({NameUseKind::reads, call.first, call.count});
    for (std::size_t i = 0; i < program.tokens.size(); i++) {
        if (!counted[i]) continue;
        const TokenCode own = program.tokens[i].code;
        if (name.kind == NameKind::variable && own == name.variable && !namesOther(program.tokens, i))
            uses.push_back({useOfVariable(program, i), i, 1});
        if (name.kind == NameKind::matrix && own == name.variable && isAhead(program.tokens, i, code::matrix))
            uses.push_back(
                {isAhead(program.tokens, i - 1, code::arrow) ? NameUseKind::writes : NameUseKind::reads, i - 1, 2});
        const auto list = name.kind == NameKind::list ? listAt(program, i) : std::nullopt;
        if (list && list->name == name.label)
            uses.push_back({isAhead(program.tokens, i, code::arrow) ? NameUseKind::writes : NameUseKind::reads,
                            list->first, list->count});
    }
    std::ranges::sort(uses, {}, &NameUse::first);
    return uses;
}

VariableUses variableUses(const ProgramStructure &program) {
    VariableUses uses;
    const std::vector<bool> counted = countedTokens(program);
    const Tokens &tokens = program.tokens;
    for (std::size_t i = 0; i < tokens.size(); i++) {
        const auto number = counted[i] ? variableNumber(tokens[i].code) : std::nullopt;
        if (!number || namesOther(tokens, i)) continue;
        const bool stores = useOfVariable(program, i) == NameUseKind::writes;
        const bool isStored = stores && isAhead(tokens, i, code::arrow);
        const bool isRange =
            isAhead(tokens, i, code::rangeMark) || (i + 1 < tokens.size() && tokens[i + 1].is(code::rangeMark));
        const bool isKeyed = isStored && i >= 2 && tokens[i - 2].is(code::question);
        const auto &statement = program.statements[statementOf(program, i)];
        const bool isCounter = tokens[statement.first].is(code::forWord);
        uses.written.set(*number, uses.written[*number] || stores);
        if (!isStored) uses.read.set(*number, uses.read[*number] || !isRange);
        if (isStored && !isRange && !isKeyed && !isCounter) uses.stores.push_back({NameUseKind::writes, i, 1});
    }
    return uses;
}

std::optional<Bytes> labelTokens(std::string_view text) {
    const Bytes bytes(text.begin(), text.end());
    const bool isNumber = !bytes.empty() && bytes.size() <= longestLabel &&
                          std::ranges::all_of(bytes, [](std::uint8_t byte) { return code::isDigit(byte); });
    const bool isLetter = bytes.size() == 1 && code::isVariable(bytes[0]);
    return isNumber || isLetter ? std::optional(bytes) : std::nullopt;
}

bool labelIsFree(const ProgramStructure &program, const LabelName &own, const Bytes &name) {
    LabelName wanted{code::isDigit(name[0]), 0};
    for (const std::uint8_t byte : name) wanted.value = wanted.isNumber ? wanted.value * 10 + byte - '0' : byte;
    return wanted == own || std::ranges::find(program.labels, wanted, &LabelMention::name) == program.labels.end();
}

Bytes withCallsRenamed(ByteView image, std::string_view from, std::string_view to) {
    const ProgramStructure program = structureOf(image);
    std::vector<Replacement> places;
    for (const ProgramCall &call : program.calls)
        if (sameProgramName(call.name, from))
            places.push_back(stretchOf(program, call.first, call.count, program.tokens[call.token + 2].at));
    const Bytes bytes(to.begin(), to.end());
    return replaced(image, std::move(places), bytes);
}

}  // namespace numalink
