#include "language/problems.h"

#include <algorithm>
#include <map>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "language/token_codes.h"
#include "telling/texts.h"

namespace numalink {

namespace {

constexpr std::size_t displayColumns = 21, displayRows = 7;
constexpr std::size_t longestString = 255;     // cells of a string that a run keeps
constexpr std::size_t longestStatement = 500;  // cells
// Of the reference: what it says of tokens that the CFX calculators lack.
constexpr std::string_view absentKeys = "not on the CFX keys", older = "older calculators", later = "Later calculators";

struct KindRow {
    ProblemKind kind;
    const char *id;
    Severity severity;
    Text text;
};
constexpr KindRow kinds[] = {
    {ProblemKind::labelMissing, "label-missing", Severity::error, Text::problemLabelMissing},
    {ProblemKind::labelDouble, "label-double", Severity::warning, Text::problemLabelDouble},
    {ProblemKind::blockWithoutEnd, "block-without-end", Severity::error, Text::problemBlockWithoutEnd},
    {ProblemKind::blockWithoutStart, "block-without-start", Severity::error, Text::problemBlockWithoutStart},
    {ProblemKind::thenMissing, "then-missing", Severity::error, Text::problemThenMissing},
    {ProblemKind::programMissing, "program-missing", Severity::warning, Text::problemProgramMissing},
    {ProblemKind::notOnCalculator, "not-on-calculator", Severity::hint, Text::problemNotOnCalculator},
    {ProblemKind::colorRemoved, "color-removed", Severity::hint, Text::problemColorRemoved},
    {ProblemKind::argumentCount, "argument-count", Severity::error, Text::problemArgumentCount},
    {ProblemKind::stringTooLong, "string-too-long", Severity::warning, Text::problemStringTooLong},
    {ProblemKind::stringOpen, "string-open", Severity::warning, Text::problemStringOpen},
    {ProblemKind::unreachable, "unreachable", Severity::warning, Text::problemUnreachable},
    {ProblemKind::neverRead, "never-read", Severity::hint, Text::problemNeverRead},
    {ProblemKind::statementTooLong, "statement-too-long", Severity::error, Text::problemStatementTooLong},
    {ProblemKind::callsWithoutEnd, "calls-without-end", Severity::error, Text::problemCallsWithoutEnd},
};
constexpr const KindRow &rowOf(ProblemKind kind) { return kinds[static_cast<std::size_t>(kind)]; }
static_assert(std::ranges::all_of(kinds, [](const KindRow &row) { return &row == &rowOf(row.kind); }));

// How many arguments a command or function takes, where that is certain.
struct CountRow {
    TokenCode token;
    std::size_t least, most;
};
constexpr CountRow counts[] = {
    {0x80, 2, 2},    // Pol(
    {0xA0, 2, 2},    // Rec(
    {0x7F26, 2, 3},  // d/dx(
    {0x7F27, 2, 3},  // second derivative
    {0x7F28, 1, 4},  // Solve(
    {0x7F29, 4, 5},  // sum
    {0x7F2A, 3, 4},  // FMin(
    {0x7F2B, 3, 4},  // FMax(
    {0x7F2C, 4, 5},  // Seq(
    {0x7F2D, 1, 2},  // Min(
    {0x7F20, 1, 2},  // Max(
    {0x7F2E, 1, 2},  // Mean(
    {0x7F2F, 1, 2},  // Median(
    {0x7F47, 2, 2},  // Fill(
    {0x7F49, 2, 2},  // Augment(
    {0x7F4B, 2, 2},  // Mat to List
    {0x7F99, 1, 2},  // Min(
    {0x8D, 3, 4},    // integral
    {0xEB, 1, 18},   // ViewWindow
    {0xF710, 3, 3},  // Locate
    {0xF7A5, 3, 3},  // Text
    {0xF7A6, 3, 3},  // Circle
    {0xF7A7, 4, 4},  // F-Line
    {0xF7A3, 1, 1},  // Vertical
    {0xF7A4, 1, 1},  // Horizontal
    {0xF7AB, 2, 2},  // PxlOn
    {0xF7AC, 2, 2},  // PxlOff
    {0xF7AD, 2, 2},  // PxlChg
    {0xF7AF, 2, 2},  // PxlTest
    {0xF793, 1, 1},  // StoPict
    {0xF794, 1, 1},  // RclPict
    {0xF797, 1, 1},  // StoV-Win
    {0xF798, 1, 1},  // RclV-Win
};

using Tokens = std::vector<ProgramToken>;
constexpr bool endsOrPartsBlock(TokenCode token) {
    return token == code::then || token == code::elseWord || token == code::ifEnd || token == code::next ||
           token == code::whileEnd || token == code::loopWhile;
}
constexpr bool leaves(TokenCode token) {
    return token == code::goTo || token == code::stop || token == code::returnWord || token == code::breakWord;
}
constexpr bool skips(TokenCode token) { return token == code::isz || token == code::dsz; }

std::string shownName(TokenCode token) {
    const ReferenceRow *row = referenceOf(token);
    std::string name(row != nullptr ? row->name : std::string_view());
    name.erase(0, std::min(name.find_first_not_of(' '), name.size()));
    name.erase(name.find_last_not_of(' ') + 1);
    return name;
}

bool isOfOthers(const ReferenceRow &row) {
    return row.keys.starts_with(absentKeys) && (row.keys.find(older) != std::string_view::npos ||
                                                row.remarks.front().find(later) != std::string_view::npos);
}

struct Search {
    const ProgramStructure &program;
    const ProblemContext &context;
    std::vector<Problem> found;

    const Tokens &tokens() const { return program.tokens; }
    bool is(std::size_t i, TokenCode wanted) const { return i < tokens().size() && tokens()[i].is(wanted); }
    std::size_t endOf(const ProgramStatement &statement) const { return statement.first + statement.count; }
    bool isEmpty(const ProgramStatement &statement) const {
        return statement.count == 0 || tokens()[statement.first].role == TokenRole::remark;
    }

    void tell(ProblemKind kind, std::size_t first, std::size_t count, std::vector<std::string> arguments = {},
              std::optional<ProblemMend> mend = {});
    std::optional<ProblemMend> withoutStatement(std::size_t number) const;

    void labels();
    void blocks();
    void branches();
    void calls();
    void tokensOneByOne();
    void argumentCounts();
    void countArguments(const CountRow &row, std::size_t token, std::size_t end);
    void strings();
    void locatedString(const ProgramStatement &statement);
    void unreached();
    void stores();
    void lengths();
};

void Search::tell(ProblemKind kind, std::size_t first, std::size_t count, std::vector<std::string> arguments,
                  std::optional<ProblemMend> mend) {
    if (found.size() >= problemLimit || first >= tokens().size()) return;
    const std::size_t last = std::min(first + std::max<std::size_t>(count, 1), tokens().size()) - 1;
    found.push_back({kind, tokens()[first].at, tokens()[last].at + tokens()[last].length - tokens()[first].at,
                     std::move(arguments), std::move(mend)});
}

// With the end behind it.
std::optional<ProblemMend> Search::withoutStatement(std::size_t number) const {
    const std::size_t begin = program.statements[number].first;
    if (begin >= tokens().size()) return std::nullopt;
    const std::size_t from = tokens()[begin].at;
    const std::size_t next =
        number + 1 < program.statements.size() ? program.statements[number + 1].first : tokens().size();
    const std::size_t to = next < tokens().size() ? tokens()[next].at : program.end;
    return ProblemMend{from, to - from, {}};
}

// Of labels of one name the first counts; another one is never met by a jump.
void Search::labels() {
    std::set<LabelName> known;
    for (const LabelMention &label : program.labels) {
        if (known.insert(label.name).second) continue;
        const std::size_t statement = statementOf(program, label.token);
        const bool isAlone = program.statements[statement].first == label.token &&
                             program.statements[statement].count == label.count + 1;
        tell(ProblemKind::labelDouble, label.token, label.count + 1,
             {utf8FromCalculator(textOfTokens(program, label.first, label.count))},
             isAlone ? withoutStatement(statement) : std::nullopt);
    }
    for (const LabelMention &jump : program.jumps) {
        if (known.contains(jump.name)) continue;
        tell(ProblemKind::labelMissing, jump.first, jump.count,
             {utf8FromCalculator(textOfTokens(program, jump.first, jump.count))});
    }
}

void Search::blocks() {
    constexpr TokenCode ends[] = {code::ifEnd, code::next, code::whileEnd, code::loopWhile};
    constexpr TokenCode starts[] = {code::ifWord, code::forWord, code::whileWord, code::doWord};
    for (const ProgramBlock &block : program.blocks) {
        const auto kind = static_cast<std::size_t>(block.kind);
        if (block.opens == noToken) {
            const std::size_t part = std::min({block.then, block.otherwise, block.closes});
            tell(ProblemKind::blockWithoutStart, part, 1, {shownName(tokens()[part].code), shownName(starts[kind])});
        } else if (block.closes == noToken) {
            tell(ProblemKind::blockWithoutEnd, block.opens, 1, {shownName(starts[kind]), shownName(ends[kind])});
        }
    }
}

// Right behind the condition of an If stands Then.
void Search::branches() {
    for (std::size_t i = 0; i + 1 < program.statements.size(); i++) {
        if (!is(program.statements[i].first, code::ifWord) || program.statements[i].count == 0) continue;
        std::size_t next = i + 1;
        while (next + 1 < program.statements.size() && isEmpty(program.statements[next])) next++;
        const ProgramStatement &behind = program.statements[next];
        if (behind.count == 0 || isEmpty(behind) || is(behind.first, code::then)) continue;
        const bool isWithinBlock = !endsOrPartsBlock(tokens()[behind.first].code);
        tell(ProblemKind::thenMissing, behind.first, 1, {},
             isWithinBlock ? std::optional(ProblemMend{tokens()[behind.first].at, 0, bytesOfToken(code::then)})
                           : std::nullopt);
    }
}

// Whether what a program is sure to call leads back to it.
bool callsItself(const std::string &own, const std::string &first, const std::vector<ProgramSummary> &folder) {
    std::vector<std::string> open = {first};
    std::set<std::string> seen;
    while (!open.empty()) {
        const std::string name = std::move(open.back());
        open.pop_back();
        if (sameProgramName(name, own)) return true;
        if (!seen.insert(name).second) continue;
        const auto called = std::ranges::find_if(
            folder, [&](const ProgramSummary &other) { return sameProgramName(other.name, name); });
        if (called != folder.end()) open.insert(open.end(), called->sureCalls.begin(), called->sureCalls.end());
    }
    return false;
}

void Search::calls() {
    if (!context.knowsFolder) return;
    const auto isThere = [&](const std::string &name) {
        return sameProgramName(name, context.name) ||
               std::ranges::any_of(context.folder,
                                   [&](const ProgramSummary &other) { return sameProgramName(other.name, name); });
    };
    const std::vector<std::string> sure = summaryOf(context.name, program).sureCalls;
    bool isTold = false;
    for (const ProgramCall &call : program.calls) {
        const std::string shown = utf8FromCalculator(call.name);
        if (!isThere(call.name)) tell(ProblemKind::programMissing, call.token, call.count + 3, {shown});
        const bool isSure = !isTold && std::ranges::find(sure, call.name) != sure.end();
        if (!isSure || !callsItself(context.name, call.name, context.folder)) continue;
        isTold = true;
        tell(ProblemKind::callsWithoutEnd, call.token, call.count + 3, {shown});
    }
}

void Search::tokensOneByOne() {
    for (std::size_t i = 0; i < tokens().size(); i++) {
        const ProgramToken &token = tokens()[i];
        const ReferenceRow *row = token.role == TokenRole::code ? referenceOf(token.code) : nullptr;
        // Remarks aren't on these keys either, but are for who reads the program here.
        if (context.isForCfx && row != nullptr && isOfOthers(*row))
            tell(ProblemKind::notOnCalculator, i, 1, {shownName(token.code)});
        if (context.removesColor && code::isColor(token.code) && token.role == TokenRole::code)
            tell(ProblemKind::colorRemoved, i, 1, {shownName(token.code)}, ProblemMend{token.at, token.length, {}});
    }
}

void Search::countArguments(const CountRow &row, std::size_t token, std::size_t end) {
    std::size_t count = 0, at = token + 1;
    for (; at < end; at++) {
        const ProgramToken &each = tokens()[at];
        if (each.role == TokenRole::code && opensParenthesis(row.token) && program.partners[token] == at) break;
        if (count == 0) count = 1;
        if (each.is(code::comma)) count++;
        const std::size_t partner = program.partners[at];
        const bool opens =
            each.role == TokenRole::code &&
            (opensParenthesis(each.code) || each.code == code::openBrace || each.code == code::openBracket);
        if (opens && partner == noToken) return;  // goes on to the statement's end, wherever it is meant to close
        if (opens) at = partner;
    }
    if (count >= row.least && count <= row.most) return;
    const std::string expected = row.least == row.most
                                     ? std::to_string(row.least)
                                     : std::to_string(row.least) + "\xE2\x80\x93" + std::to_string(row.most);
    tell(ProblemKind::argumentCount, token, at - token, {shownName(row.token), expected, std::to_string(count)});
}

void Search::argumentCounts() {
    for (const ProgramStatement &statement : program.statements) {
        const std::size_t end = endOf(statement);
        const std::size_t head = headOf(program, statement);
        for (std::size_t i = statement.first; i < end; i++) {
            if (tokens()[i].role != TokenRole::code) continue;
            const auto row = std::ranges::find(counts, tokens()[i].code, &CountRow::token);
            if (row != std::end(counts) && (opensParenthesis(row->token) || i == head)) countArguments(*row, i, end);
        }
    }
}

// Locate with a column that is a number: what doesn't fit into the row is lost.
void Search::locatedString(const ProgramStatement &statement) {
    const std::size_t head = headOf(program, statement);
    if (!is(head, code::locate)) return;
    std::size_t column = 0, at = head + 1, commas = 0;
    for (; at < endOf(statement) && code::isDigit(tokens()[at].code) && column < displayColumns; at++)
        column = column * 10 + tokens()[at].code - '0';
    if (!is(at, code::comma)) return;
    for (; at < endOf(statement) && commas < 2; at++) {
        if (program.partners[at] != noToken && program.partners[at] > at) at = program.partners[at];
        if (is(at, code::comma)) commas++;
    }
    const bool isString = at < endOf(statement) && tokens()[at].code == code::quote && program.partners[at] != noToken;
    if (!isString || column == 0) return;
    const std::size_t count = program.partners[at] - at - 1;
    const std::size_t behind = column - 1 + textOfTokens(program, at + 1, count).size();
    if (behind > displayColumns)
        tell(ProblemKind::stringTooLong, at, count + 2,
             {std::to_string(behind - displayColumns), std::to_string(displayColumns)});
}

void Search::strings() {
    for (const std::size_t quote : program.openStrings) {
        std::size_t end = quote;
        while (end < tokens().size() && tokens()[end].role == TokenRole::string) end++;
        const std::size_t at = tokens()[end - 1].at + tokens()[end - 1].length;
        tell(ProblemKind::stringOpen, quote, end - quote, {}, ProblemMend{at, 0, {'"'}});
    }
    for (const ProgramStatement &statement : program.statements) locatedString(statement);
    for (std::size_t i = 0; i < tokens().size(); i++) {
        const std::size_t close = program.partners[i];
        if (tokens()[i].role != TokenRole::string || close == noToken || close < i) continue;
        const bool isShown = statementOf(program, i) == statementOf(program, close) &&
                             headOf(program, program.statements[statementOf(program, i)]) == i;
        const std::size_t room = isShown ? displayColumns * displayRows : longestString;
        const std::size_t size =
            isShown && close - i <= longestString ? textOfTokens(program, i + 1, close - i - 1).size() : close - i - 1;
        if (size > room)
            tell(ProblemKind::stringTooLong, i, close - i + 1, {std::to_string(size - room), std::to_string(room)});
    }
}

// Behind a statement that leaves for certain, up to the next label or the next part of the block.
void Search::unreached() {
    bool isLeft = false;
    for (std::size_t i = 0; i < program.statements.size(); i++) {
        const ProgramStatement &statement = program.statements[i];
        if (isEmpty(statement)) continue;
        const auto begins = tokens().begin() + static_cast<std::ptrdiff_t>(statement.first);
        const bool isMet =
            std::any_of(begins, begins + static_cast<std::ptrdiff_t>(statement.count), [](const ProgramToken &token) {
                return token.role == TokenRole::code && (endsOrPartsBlock(token.code) || token.code == code::label);
            });
        if (isLeft && !isMet) {
            tell(ProblemKind::unreachable, statement.first, statement.count, {}, withoutStatement(i));
            isLeft = false;
            continue;
        }
        const std::size_t head = headOf(program, statement);
        const bool isConditional =
            std::any_of(begins, begins + static_cast<std::ptrdiff_t>(statement.count),
                        [](const ProgramToken &token) { return token.is(code::conditionArrow); });
        const bool mayBeSkipped = i > 0 && program.statements[i - 1].count > 0 &&
                                  headOf(program, program.statements[i - 1]) < endOf(program.statements[i - 1]) &&
                                  skips(tokens()[headOf(program, program.statements[i - 1])].code);
        // Behind a color these are no statements.
        const bool isColored = head > statement.first && code::isColor(tokens()[head - 1].code);
        isLeft = !isConditional && !isColored && !mayBeSkipped && head < endOf(statement) &&
                 tokens()[head].role == TokenRole::code && leaves(tokens()[head].code);
    }
}

void Search::stores() {
    if (!context.knowsFolder) return;
    const VariableUses uses = variableUses(program);
    std::bitset<namedVariables> read = uses.read | context.readElsewhere;
    for (const ProgramSummary &other : context.folder) read |= other.read;
    for (const NameUse &store : uses.stores) {
        const auto number = variableNumber(tokens()[store.first].code);
        if (number && !read[*number])
            tell(ProblemKind::neverRead, store.first, 1, {utf8FromCalculator(textOfTokens(program, store.first, 1))});
    }
}

void Search::lengths() {
    for (const ProgramStatement &statement : program.statements) {
        if (statement.cells <= longestStatement) continue;
        tell(ProblemKind::statementTooLong, statement.first, statement.count,
             {std::to_string(statement.cells), std::to_string(longestStatement)});
    }
}

}  // namespace

const char *problemId(ProblemKind kind) { return rowOf(kind).id; }
Severity severityOf(ProblemKind kind) { return rowOf(kind).severity; }
std::string problemText(const Problem &problem) { return wording(rowOf(problem.kind).text, problem.arguments); }

ProgramSummary summaryOf(std::string_view name, const ProgramStructure &program) {
    ProgramSummary summary{.name = std::string(name), .read = variableUses(program).read, .sureCalls = {}};
    constexpr TokenCode parts[] = {code::ifWord,    code::forWord, code::whileWord,     code::goTo,
                                   code::isz,       code::dsz,     code::stop,          code::returnWord,
                                   code::breakWord, code::menu,    code::conditionArrow};
    const auto parted = std::ranges::find_if(program.tokens, [&](const ProgramToken &token) {
        return token.role == TokenRole::code && std::ranges::find(parts, token.code) != std::end(parts);
    });
    const auto end = static_cast<std::size_t>(parted - program.tokens.begin());
    for (const ProgramCall &call : program.calls)
        if (call.token < end) summary.sureCalls.push_back(call.name);
    return summary;
}

std::vector<Problem> problemsOf(const ProgramStructure &program, const ProblemContext &context) {
    Search search{program, context, {}};
    search.labels();
    search.blocks();
    search.branches();
    search.calls();
    search.argumentCounts();
    search.strings();
    search.lengths();
    search.unreached();
    search.stores();
    search.tokensOneByOne();
    std::ranges::stable_sort(search.found, {}, &Problem::at);
    return std::move(search.found);
}

Bytes withMend(ByteView image, const ProblemMend &mend) {
    Bytes made(image.begin(), image.end());
    if (mend.at > made.size() || mend.length > made.size() - mend.at) return made;
    const auto at = made.begin() + static_cast<std::ptrdiff_t>(mend.at);
    made.insert(made.erase(at, at + static_cast<std::ptrdiff_t>(mend.length)), mend.bytes.begin(), mend.bytes.end());
    if (made.size() == programTokens(made).size() + 3) frameChecksum(made);
    return made;
}

}  // namespace numalink
