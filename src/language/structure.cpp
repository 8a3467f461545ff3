#include "language/structure.h"

#include <algorithm>
#include <array>

#include "calculator/program_info.h"
#include "language/token_codes.h"
#include "text/view_runs.h"

namespace numalink {

namespace {

constexpr int labelDigits = 15;  // that a number keeps apart from its neighbours

constexpr bool endsStatement(TokenCode token) {
    return token == code::lineEnd || token == code::colon || token == code::displayTriangle;
}
constexpr bool endsLine(TokenCode token) { return token == code::lineEnd || token == code::displayTriangle; }

std::vector<ProgramToken> tokensOf(ByteView image) {
    std::vector<ProgramToken> tokens;
    const ByteView bytes = programTokens(image);
    tokens.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const bool isPair = isTokenPrefix(bytes[i]) && i + 1 < bytes.size();
        const std::uint8_t length = isPair ? 2 : 1;
        tokens.push_back({.at = i + 1, .code = tokenCodeOf(bytes.subspan(i, length)), .length = length});
        i += length;
    }
    return tokens;
}

struct OpenBlock {
    std::size_t block = noToken;   // by number
    std::size_t branch = noToken;  // the innermost If that is open there, itself included
};

struct Walk {
    ProgramStructure &program;
    std::vector<std::size_t> brackets{};  // open ones of the statement
    std::vector<OpenBlock> openBlocks{};
    std::array<std::size_t, 4> openOfKind{};
    std::size_t openQuote = noToken;
    bool inRemark = false;

    const ProgramToken &token(std::size_t i) const { return program.tokens[i]; }
    void pair(std::size_t left, std::size_t right) {
        program.partners[left] = right;
        program.partners[right] = left;
    }

    void run();
    void findRoles();
    void takeBracket(std::size_t i);
    void openBlock(BlockKind kind, std::size_t i);
    void partBranch(std::size_t ProgramBlock::*part, std::size_t i);
    void closeBlock(BlockKind kind, std::size_t i);
    void takeBlock(std::size_t i);
    void takeName(std::size_t i);
    void takeMenu(std::size_t i);
};

// A string that isn't closed goes to the end of its line: one that is being typed leaves the rest of the program alone.
void Walk::findRoles() {
    program.lineStarts = {1};
    for (std::size_t i = 0; i < program.tokens.size(); i++) {
        ProgramToken &each = program.tokens[i];
        if (endsLine(each.code)) {
            program.lineStarts.push_back(each.at + each.length);
            if (openQuote != noToken) program.openStrings.push_back(openQuote);
            openQuote = noToken;
        }
        const bool isQuoted = openQuote != noToken;
        if (endsStatement(each.code) && !isQuoted) inRemark = false;
        if (each.code == code::remark && !isQuoted) inRemark = true;
        if (inRemark) {
            each.role = TokenRole::remark;
            continue;
        }
        if (isQuoted || each.code == code::quote) each.role = TokenRole::string;
        if (each.code != code::quote) continue;
        if (isQuoted) pair(openQuote, i);
        openQuote = isQuoted ? noToken : i;
    }
    if (openQuote != noToken) program.openStrings.push_back(openQuote);
}

void Walk::takeBracket(std::size_t i) {
    const TokenCode own = token(i).code;
    if (own == code::openBracket || own == code::openBrace || opensParenthesis(own)) brackets.push_back(i);
    const bool closes = own == code::closeBracket || own == code::closeBrace || own == code::closeParenthesis;
    if (!closes || brackets.empty()) return;
    const TokenCode open = token(brackets.back()).code;
    const bool fits = own == code::closeBracket ? open == code::openBracket
                      : own == code::closeBrace ? open == code::openBrace
                                                : opensParenthesis(open);
    if (!fits) return;
    pair(brackets.back(), i);
    brackets.pop_back();
}

// Blocks that were opened since, and not closed, lack their ends.
void Walk::closeBlock(BlockKind kind, std::size_t i) {
    const auto kindOf = [&](const OpenBlock &open) { return program.blocks[open.block].kind; };
    if (openOfKind[static_cast<std::size_t>(kind)] == 0) {
        program.blocks.push_back({.kind = kind, .closes = i});
        return;
    }
    for (;;) {
        const OpenBlock open = openBlocks.back();
        openBlocks.pop_back();
        openOfKind[static_cast<std::size_t>(kindOf(open))]--;
        if (kindOf(open) != kind) continue;
        program.blocks[open.block].closes = i;
        return;
    }
}

void Walk::openBlock(BlockKind kind, std::size_t i) {
    const std::size_t own = program.blocks.size();
    const std::size_t outer = openBlocks.empty() ? noToken : openBlocks.back().branch;
    openBlocks.push_back({own, kind == BlockKind::branch ? own : outer});
    openOfKind[static_cast<std::size_t>(kind)]++;
    program.blocks.push_back({.kind = kind, .opens = i});
}

void Walk::partBranch(std::size_t ProgramBlock::*part, std::size_t i) {
    const std::size_t open = openBlocks.empty() ? noToken : openBlocks.back().branch;
    if (open == noToken) program.blocks.push_back({.kind = BlockKind::branch});
    ProgramBlock &branch = open == noToken ? program.blocks.back() : program.blocks[open];
    if (branch.*part == noToken) branch.*part = i;
}

void Walk::takeBlock(std::size_t i) {
    switch (token(i).code) {
        case code::ifWord:
            return openBlock(BlockKind::branch, i);
        case code::forWord:
            return openBlock(BlockKind::count, i);
        case code::whileWord:
            return openBlock(BlockKind::loop, i);
        case code::doWord:
            return openBlock(BlockKind::doLoop, i);
        case code::then:
            return partBranch(&ProgramBlock::then, i);
        case code::elseWord:
            return partBranch(&ProgramBlock::otherwise, i);
        case code::ifEnd:
            return closeBlock(BlockKind::branch, i);
        case code::next:
            return closeBlock(BlockKind::count, i);
        case code::whileEnd:
            return closeBlock(BlockKind::loop, i);
        case code::loopWhile:
            return closeBlock(BlockKind::doLoop, i);
        default:
            return;
    }
}

void Walk::takeMenu(std::size_t i) {
    int depth = 0, commas = 0;
    for (std::size_t at = i + 1; at < program.tokens.size(); at++) {
        const ProgramToken &each = token(at);
        if (each.role != TokenRole::code) continue;
        if (endsStatement(each.code)) return;
        if (program.partners[at] != noToken) depth += program.partners[at] > at ? 1 : -1;
        if (each.code != code::comma || depth > 0 || ++commas % 2 != 0) continue;
        if (auto label = labelBehind(program, at)) {
            label->token = i;
            program.jumps.push_back(*label);
        }
    }
}

void Walk::takeName(std::size_t i) {
    const TokenCode own = token(i).code;
    if (own == code::label || own == code::goTo) {
        if (const auto label = labelBehind(program, i))
            (own == code::label ? program.labels : program.jumps).push_back(*label);
    }
    if (own == code::menu) takeMenu(i);
    if (own != code::prog || i + 1 >= program.tokens.size() || token(i + 1).code != code::quote) return;
    const std::size_t close = program.partners[i + 1];
    if (close == noToken) return;
    const std::size_t count = close - i - 2;
    program.calls.push_back({textOfTokens(program, i + 2, count), i, i + 2, count});
}

std::size_t cellsOf(const ProgramStructure &program, std::size_t first, std::size_t count) {
    std::size_t cells = 0;
    bool inNumber = false;
    for (std::size_t i = first; i < first + count; i++) {
        const ProgramToken &each = program.tokens[i];
        const bool isDigit = each.role == TokenRole::code && (code::isDigit(each.code) || each.code == code::point);
        const bool isInString = each.role == TokenRole::string && (each.code != code::quote || program.partners[i] < i);
        if (!isInString && !(isDigit && inNumber)) cells++;
        inNumber = isDigit;
    }
    return cells;
}

void Walk::run() {
    program.partners.assign(program.tokens.size(), noToken);
    findRoles();
    std::size_t first = 0;
    for (std::size_t i = 0; i < program.tokens.size(); i++) {
        if (token(i).role != TokenRole::code) continue;
        if (!endsStatement(token(i).code)) {
            takeBracket(i);
            continue;
        }
        program.statements.push_back({first, i - first, cellsOf(program, first, i - first)});
        first = i + 1;
        brackets.clear();
    }
    const std::size_t rest = program.tokens.size() - first;
    program.statements.push_back({first, rest, cellsOf(program, first, rest)});
    for (std::size_t i = 0; i < program.tokens.size(); i++) {
        if (token(i).role != TokenRole::code) continue;
        takeBlock(i);
        takeName(i);
    }
}

}  // namespace

bool opensParenthesis(TokenCode token) {
    static const auto known = [] {
        std::vector<TokenCode> codes;
        for (const ReferenceRow &row : referenceRows())
            if (row.name.ends_with('(')) codes.push_back(row.code);
        return codes;
    }();
    return std::ranges::binary_search(known, token);
}

ProgramStructure structureOf(ByteView image) {
    ProgramStructure program;
    program.tokens = tokensOf(image);
    program.end = program.tokens.empty() ? std::min<std::size_t>(1, image.size())
                                         : program.tokens.back().at + program.tokens.back().length;
    Walk{program}.run();
    return program;
}

std::size_t tokenAt(const ProgramStructure &program, std::size_t at) {
    auto behind = std::ranges::upper_bound(program.tokens, at, {}, &ProgramToken::at);
    if (behind == program.tokens.begin()) return noToken;
    --behind;
    return at < behind->at + behind->length ? static_cast<std::size_t>(behind - program.tokens.begin()) : noToken;
}

std::size_t statementOf(const ProgramStructure &program, std::size_t token) {
    const auto behind = std::ranges::upper_bound(program.statements, token, {}, &ProgramStatement::first);
    return static_cast<std::size_t>(behind - program.statements.begin()) - 1;
}

std::size_t lineOf(const ProgramStructure &program, std::size_t at) {
    const auto behind = std::ranges::upper_bound(program.lineStarts, at);
    return behind == program.lineStarts.begin() ? 0 : static_cast<std::size_t>(behind - program.lineStarts.begin()) - 1;
}

std::vector<std::size_t> togetherWith(const ProgramStructure &program, std::size_t token) {
    if (token >= program.tokens.size()) return {};
    if (program.partners[token] != noToken) return {token, program.partners[token]};
    for (const ProgramBlock &block : program.blocks) {
        const std::array parts = {block.opens, block.then, block.otherwise, block.closes};
        if (std::ranges::find(parts, token) == parts.end()) continue;
        std::vector<std::size_t> found;
        std::ranges::copy_if(parts, std::back_inserter(found), [](std::size_t part) { return part != noToken; });
        return found.size() > 1 ? found : std::vector<std::size_t>();
    }
    return {};
}

std::vector<int> depthOfLines(const ProgramStructure &program) {
    std::vector<int> change(program.lineStarts.size() + 1, 0);
    std::vector<int> outdent(program.lineStarts.size(), 0);
    const auto line = [&](std::size_t token) { return lineOf(program, program.tokens[token].at); };
    const auto beginsLine = [&](std::size_t token) {
        return program.tokens[token].at == program.lineStarts[line(token)];
    };
    for (const ProgramBlock &block : program.blocks) {
        if (block.opens == noToken || block.closes == noToken || line(block.opens) == line(block.closes)) continue;
        change[line(block.opens) + 1]++;
        change[line(block.closes) + (beginsLine(block.closes) ? 0 : 1)]--;
        for (const std::size_t part : {block.then, block.otherwise})
            if (part != noToken && line(part) != line(block.opens) && beginsLine(part)) outdent[line(part)] = 1;
    }
    std::vector<int> depths(program.lineStarts.size());
    int depth = 0;
    for (std::size_t i = 0; i < depths.size(); i++) {
        depth += change[i];
        depths[i] = std::max(0, depth - outdent[i]);
    }
    return depths;
}

std::vector<FoldableLines> foldableLines(const ProgramStructure &program) {
    std::vector<FoldableLines> found;
    for (const ProgramBlock &block : program.blocks) {
        if (block.opens == noToken || block.closes == noToken) continue;
        const FoldableLines lines{lineOf(program, program.tokens[block.opens].at),
                                  lineOf(program, program.tokens[block.closes].at)};
        // Blocks come by their first tokens: of one line the outermost is the first.
        const bool isKnown = !found.empty() && found.back().opens == lines.opens;
        if (lines.closes < lines.opens + 2) continue;
        if (!isKnown) found.push_back(lines);
        found.back().closes = std::max(found.back().closes, lines.closes);
    }
    return found;
}

std::size_t headOf(const ProgramStructure &program, const ProgramStatement &statement) {
    const std::size_t end = statement.first + statement.count;
    std::size_t head = statement.first;
    for (std::size_t i = statement.first; i < end; i++)
        if (program.tokens[i].is(code::conditionArrow)) head = i + 1;
    while (head < end && program.tokens[head].role == TokenRole::code &&
           (program.tokens[head].code == code::then || program.tokens[head].code == code::elseWord ||
            code::isColor(program.tokens[head].code)))
        head++;
    return head;
}

std::string textOfTokens(const ProgramStructure &program, std::size_t first, std::size_t count) {
    std::string text;
    for (std::size_t i = first; i < first + count; i++) {
        const Bytes bytes = bytesOfToken(program.tokens[i].code);
        const std::string shown = tokenOnView(bytes, false);
        text += shown.empty() ? tokenOnView(bytes, true) : shown;
    }
    return text;
}

std::optional<LabelMention> labelBehind(const ProgramStructure &program, std::size_t token) {
    const std::size_t first = token + 1;
    if (first >= program.tokens.size()) return std::nullopt;
    const ProgramToken &name = program.tokens[first];
    if (name.role != TokenRole::code || endsStatement(name.code)) return std::nullopt;
    LabelMention place{.name = {}, .token = token, .first = first, .count = 1};
    if (!code::isDigit(name.code)) {
        const bool isWord = name.code != code::point && name.code != code::comma;
        place.name = {false, name.code > 0xFF ? std::uint64_t{name.code} >> 8 : name.code};
        return isWord ? std::optional(place) : std::nullopt;
    }
    place.name.isNumber = true;
    std::size_t end = first;
    for (; end < program.tokens.size() && code::isDigit(program.tokens[end].code); end++)
        place.name.value = place.name.value * 10 + program.tokens[end].code - '0';
    place.count = end - first;
    const TokenCode behind = end < program.tokens.size() ? program.tokens[end].code : code::lineEnd;
    const bool isWhole = behind != code::point && behind != code::exponent && place.count <= labelDigits;
    return isWhole ? std::optional(place) : std::nullopt;
}

}  // namespace numalink
