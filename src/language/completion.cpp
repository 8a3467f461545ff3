#include "language/completion.h"

#include <algorithm>
#include <bitset>
#include <cctype>

#include "calculator/charset.h"
#include "language/token_codes.h"
#include "text/token_table.h"

namespace numalink {

namespace {

constexpr std::size_t shortestTyped = 2, longestTyped = 20;  // letters of a token's name
constexpr int wholeWord = 1000, beginsWith = 500, beginsPart = 8, followsLast = 5, anywhere = 1;

char folded(char letter) { return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter; }
bool isWordLetter(char letter) {
    return (folded(letter) >= 'A' && folded(letter) <= 'Z') || (letter >= '0' && letter <= '9') || letter == '-';
}

struct KnownToken {
    std::string shown;  // without its blanks
    TokenCode token = 0;
};

// Tokens with a name that letters can lead to, made from the table once it is loaded.
std::vector<KnownToken> knownTokens() {
    std::vector<KnownToken> known;
    for (std::size_t i = 0; i < tokenCount(); i++) {
        const TokenRecord &record = tokenRecord(i);
        const std::uint8_t bytes[] = {record.byte1, record.byte2};
        const TokenCode token = tokenCodeOf(ByteView(bytes).first(record.length));
        std::string shown(tokenDisplay(record));
        shown.erase(0, std::min(shown.find_first_not_of(' '), shown.size()));
        shown.erase(shown.find_last_not_of(' ') + 1);
        const bool isNamed = shown.size() > 1 && std::ranges::any_of(shown, isWordLetter);
        const bool isKnown = std::ranges::any_of(known, [&](const KnownToken &other) { return other.token == token; });
        if (isNamed && !isKnown) known.push_back({shown, token});
    }
    return known;
}

void sortAndCut(std::vector<Completion> &found) {
    std::ranges::stable_sort(found, [](const Completion &left, const Completion &right) {
        return left.rank != right.rank ? left.rank > right.rank : left.shown.size() < right.shown.size();
    });
    if (found.size() > completionLimit) found.resize(completionLimit);
}

// The token that the letters belong to is given all the same: it shows what it means.
std::vector<Completion> tokensFor(std::string_view letters) {
    std::vector<Completion> found;
    if (letters.size() < shortestTyped || letters.size() > longestTyped) return found;
    static const std::vector<KnownToken> known = knownTokens();
    for (const KnownToken &each : known) {
        const int rank = letterRank(letters, each.shown);
        if (rank > 0) found.push_back({CompletionKind::token, each.shown, bytesOfToken(each.token), each.token, rank});
    }
    return found;
}

// The lists and matrices that a calculator has.
struct ArrayRow {
    CompletionKind kind;
    TokenCode word;
    std::string_view typed;  // the word's letters
    std::string_view names;  // each one token
};
constexpr ArrayRow listRow = {CompletionKind::list, code::list, "List", "123456"};
constexpr ArrayRow matrixRow = {CompletionKind::matrix, code::matrix, "Mat", "ABCDEFGHIJKLMNOPQRSTUVWXYZ\xC0"};  // Ans

// The names that the program has behind the word, or as the one token that a list has, too.
std::bitset<256> usedNames(const ProgramStructure &program, const ArrayRow &row) {
    std::bitset<256> used;
    const auto &tokens = program.tokens;
    for (std::size_t i = 0; i < tokens.size(); i++) {
        const TokenCode own = tokens[i].code;
        const bool isList = row.kind == CompletionKind::list && own >= code::firstList && own <= code::lastList;
        if (isList) used.set('1' + std::size_t{own} - code::firstList);
        if (i > 0 && own < used.size() && tokens[i - 1].is(row.word)) used.set(own);
    }
    return used;
}

// withWord: the letters are the word's and perhaps the name's; else the name's alone.
void addArrays(std::string_view letters, bool withWord, const ArrayRow &row, const ProgramStructure &program,
               std::vector<Completion> &found) {
    const std::bitset<256> used = usedNames(program, row);
    for (const char sign : row.names) {
        const auto name = static_cast<std::uint8_t>(sign);
        Bytes bytes = withWord ? bytesOfToken(row.word) : Bytes();
        bytes.push_back(name);
        std::string shown = withWord ? std::string(row.typed) + ' ' : std::string();
        shown += tokenOnView(ByteView(&name, 1), false);
        const int rank = letters.empty() ? anywhere : letterRank(letters, shown);
        if (rank == 0) continue;
        found.push_back({row.kind, std::move(shown), std::move(bytes), 0, used[name] ? rank + 1 : rank});
    }
}

bool holdsWord(std::string_view letters, std::string_view word) {
    return std::ranges::equal(letters.substr(0, word.size()), word, {}, folded, folded);
}

std::vector<Completion> tokensAndArraysFor(std::string_view letters, const ProgramStructure &program) {
    std::vector<Completion> found = tokensFor(letters);
    for (const ArrayRow *row : {&listRow, &matrixRow})
        if (holdsWord(letters, row->typed)) addArrays(letters, true, *row, program, found);
    return found;
}

std::vector<Completion> labelsFor(std::string_view letters, const ProgramStructure &program) {
    std::vector<Completion> found;
    for (const LabelMention &label : program.labels) {
        const std::string shown = textOfTokens(program, label.first, label.count);
        const int rank = letters.empty() ? 1 : letterRank(letters, shown);
        const bool isKnown = std::ranges::any_of(found, [&](const Completion &other) { return other.shown == shown; });
        Bytes bytes;
        for (std::size_t i = label.first; i < label.first + label.count; i++)
            for (const std::uint8_t byte : bytesOfToken(program.tokens[i].code)) bytes.push_back(byte);
        if (rank > 0 && !isKnown) found.push_back({CompletionKind::label, shown, bytes, 0, rank});
        if (found.size() > completionLimit) break;
    }
    return found;
}

std::vector<Completion> programsFor(std::string_view letters, const std::vector<std::string> &programs) {
    std::vector<Completion> found;
    for (const std::string &name : programs) {
        const int rank = letters.empty() ? 1 : letterRank(letters, name);
        if (rank > 0) found.push_back({CompletionKind::program, name, Bytes(name.begin(), name.end()), 0, rank});
    }
    return found;
}

// The tokens ahead of the caret, with what quotes they stand in.
struct Ahead {
    Quoting quoting{};
    std::vector<ViewToken> tokens{};
};

Ahead aheadOf(const LineReading &reading, std::size_t caret) {
    Ahead ahead;
    for (const ViewToken &token : reading.tokens) {
        if (token.from + token.size > caret) break;
        ahead.quoting.follow(token);
        ahead.tokens.push_back(token);
    }
    return ahead;
}

TokenCode codeOf(const ViewToken &token) { return tokenCodeOf(ByteView(token.bytes).first(token.length)); }

// What alone may follow the token.
CompletionQuery::Wish wishBehind(TokenCode token) {
    switch (token) {
        case code::goTo:
            return CompletionQuery::Wish::labels;
        case code::list:
            return CompletionQuery::Wish::lists;
        case code::matrix:
            return CompletionQuery::Wish::matrices;
        case code::label:
            return CompletionQuery::Wish::nothing;
        default:
            return CompletionQuery::Wish::tokens;
    }
}

// Programs behind Prog and a quotation mark; from is the first character behind it.
void takeQuoted(const Ahead &ahead, CompletionQuery &query) {
    const auto quote = std::find_if(ahead.tokens.rbegin(), ahead.tokens.rend(),
                                    [](const ViewToken &token) { return codeOf(token) == code::quote; });
    if (quote == ahead.tokens.rend() || quote + 1 == ahead.tokens.rend() || codeOf(*(quote + 1)) != code::prog) return;
    query.wish = CompletionQuery::Wish::programs;
    query.from = quote->from + quote->size;
}

}  // namespace

int letterRank(std::string_view letters, std::string_view text) {
    int rank = 0;
    std::size_t at = 0, last = std::string_view::npos;
    for (const char letter : letters) {
        while (at < text.size() && folded(text[at]) != folded(letter)) at++;
        if (at == text.size()) return 0;
        const bool startsPart = at == 0 || !isWordLetter(text[at - 1]) ||
                                (folded(text[at - 1]) != text[at - 1] && folded(text[at]) == text[at]);
        rank += startsPart ? beginsPart : last != std::string_view::npos && at == last + 1 ? followsLast : anywhere;
        last = at++;
    }
    const bool begins = std::ranges::equal(letters, text.substr(0, letters.size()), {}, folded, folded);
    if (begins) rank += letters.size() == text.size() ? wholeWord : beginsWith;
    return rank;
}

CompletionQuery completionQuery(const ViewLine &line, const LineReading &reading, std::size_t caret) {
    CompletionQuery query;
    caret = std::min(caret, line.text.size());
    const Ahead ahead = aheadOf(reading, caret);
    if (ahead.quoting.inComment) return query;
    if (ahead.quoting.inString) {
        takeQuoted(ahead, query);
    } else {
        query.from = caret;
        // A command shows the blank that ends it: the letters go on ahead of it.
        const bool endsInCommand = !ahead.tokens.empty() && ahead.tokens.back().size > 1;
        if (caret > 0 && line.text[caret - 1] == ' ' && endsInCommand) query.from--;
        while (query.from > 0 && isWordLetter(line.text[query.from - 1])) query.from--;
        const auto before = std::find_if(ahead.tokens.rbegin(), ahead.tokens.rend(),
                                         [&](const ViewToken &token) { return token.from + token.size <= query.from; });
        const bool isBehind = before != ahead.tokens.rend() && before->from + before->size == query.from;
        query.wish = isBehind ? wishBehind(codeOf(*before)) : CompletionQuery::Wish::tokens;
        // Right behind a word that wants a name, its own letters are none.
        const bool endsHere = !ahead.tokens.empty() && ahead.tokens.back().from + ahead.tokens.back().size == caret;
        const auto own = endsHere ? wishBehind(codeOf(ahead.tokens.back())) : CompletionQuery::Wish::tokens;
        if (own != CompletionQuery::Wish::tokens && own != CompletionQuery::Wish::nothing) {
            query.wish = own;
            query.from = caret;
        }
    }
    if (query.wish == CompletionQuery::Wish::nothing) return query;
    query.letters = line.text.substr(query.from, caret - query.from);
    if (query.wish == CompletionQuery::Wish::tokens && query.letters.ends_with(' ')) query.letters.pop_back();
    return query;
}

std::vector<Completion> completionsOf(const CompletionQuery &query, const ProgramStructure &program,
                                      const std::vector<std::string> &programs) {
    std::vector<Completion> found;
    switch (query.wish) {
        case CompletionQuery::Wish::tokens:
            found = tokensAndArraysFor(query.letters, program);
            break;
        case CompletionQuery::Wish::lists:
            addArrays(query.letters, false, listRow, program, found);
            break;
        case CompletionQuery::Wish::matrices:
            addArrays(query.letters, false, matrixRow, program, found);
            break;
        case CompletionQuery::Wish::labels:
            found = labelsFor(query.letters, program);
            break;
        case CompletionQuery::Wish::programs:
            found = programsFor(query.letters, programs);
            break;
        case CompletionQuery::Wish::nothing:
            break;
    }
    sortAndCut(found);
    return found;
}

}  // namespace numalink
