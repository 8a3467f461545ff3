#include "referee/program_maker.h"

#include <algorithm>

#include "emulator/expressions/vocabulary.h"
#include "emulator/machine/block_search.h"

namespace numalink {

namespace {

constexpr int deepestExpression = 4, deepestBlock = 3;
constexpr std::uint8_t matrices[] = {'A', 'B', 'C'};

struct Maker {
    Random &random;
    Bytes bytes;
    int depth = 0;

    std::uint64_t below(std::uint64_t count) { return random() % count; }
    bool oneOf(std::uint64_t count) { return below(count) == 0; }
    void put(Token token) {
        bytes.push_back(token.first);
        if (isTwoByteLead(token.first)) bytes.push_back(token.second);
    }
    void text(std::string_view characters) { bytes.insert(bytes.end(), characters.begin(), characters.end()); }

    const OperatorRow &anyRow();
    void number();
    void variable();
    void element();
    void value();
    void prefix();
    void expression();
    void condition();
    void listLiteral();
    void arrayStatement();
    void drawing();
    void block();
    void statement();
    void statements(int count);
    void terminator() { put(oneOf(3) ? token::colon : oneOf(20) ? token::displayTriangle : token::newLine); }
    void anyToken() { put({static_cast<std::uint8_t>(below(255)), static_cast<std::uint8_t>(below(256))}); }
};

void Maker::number() {
    constexpr std::string_view numbers[] = {"0", "1", "2", "3", "10", "0.5", "1.25", "7", "100", "9999"};
    text(numbers[below(std::size(numbers))]);
    if (oneOf(30)) {
        put(token::exponent);
        if (oneOf(2)) put(token::negative);
        text(oneOf(3) ? "99" : "5");
    }
}

void Maker::variable() {
    constexpr std::uint8_t named[] = {0xCD, 0xCE, 0xC0};
    if (oneOf(10)) {
        put({named[below(std::size(named))]});
    } else if (oneOf(15)) {
        put({0x7F, static_cast<std::uint8_t>(below(11))});
    } else {
        put({static_cast<std::uint8_t>('A' + below(6))});
    }
}

void Maker::element() {
    const bool isMatrix = oneOf(2);
    put(isMatrix ? token::matrix : token::list);
    put({isMatrix ? matrices[below(std::size(matrices))] : static_cast<std::uint8_t>('1' + below(3))});
    put(token::openBracket);
    oneOf(2) ? number() : expression();
    if (isMatrix) {
        put(token::comma);
        oneOf(2) ? number() : expression();
    }
    if (!oneOf(25)) put(token::closeBracket);
}

void Maker::value() {
    switch (below(depth < deepestExpression ? 9 : 5)) {
        case 0:
        case 1:
            return number();
        case 2:
        case 3:
        case 4:
            return variable();
        case 5:
            return element();
        case 6:
        case 7:
            put(token::openParenthesis);
            expression();
            if (!oneOf(25)) put(token::closeParenthesis);
            return;
        default:
            return prefix();
    }
}

const OperatorRow &Maker::anyRow() {
    static const std::vector<OperatorRow> rows = [] {
        std::vector<OperatorRow> all;
        for (const OperatorGroup group : operatorGroups()) all.insert(all.end(), group().begin(), group().end());
        return all;
    }();
    return rows[below(rows.size())];
}

void Maker::prefix() {
    const OperatorRow &row = anyRow();
    put(row.token);
    if (row.source == nullptr) value();
}

void Maker::expression() {
    depth++;
    value();
    for (std::uint64_t more = below(4); more > 0; more--) {
        const OperatorRow &row = anyRow();
        if (row.step == Step::postfix) put(row.token);
        if (row.binary != nullptr) put(row.token);
        if (row.binary != nullptr && oneOf(12)) put(oneOf(3) ? token::negative : token::minus);
        if (oneOf(60)) anyToken();
        if (row.step != Step::postfix) value();
    }
    depth--;
}

void Maker::condition() {
    constexpr std::uint8_t relations[] = {0x3C, 0x3D, 0x3E, 0x10, 0x11, 0x12};
    expression();
    put({relations[below(std::size(relations))]});
    expression();
}

void Maker::listLiteral() {
    put(token::openBrace);
    for (std::uint64_t more = 1 + below(4); more > 0; more--) {
        number();
        if (more > 1) put(token::comma);
    }
    put(token::closeBrace);
}

void Maker::arrayStatement() {
    const auto listNumber = static_cast<std::uint8_t>('1' + below(3));
    switch (below(4)) {
        case 0:
            listLiteral();
            put(token::arrow);
            put(token::list);
            return put({listNumber});
        case 1:
            listLiteral();
            put(token::arrow);
            put(token::dim);
            put(token::matrix);
            return put({matrices[below(std::size(matrices))]});
        default:
            expression();
            put(token::arrow);
            element();
    }
}

void Maker::drawing() {
    constexpr Token words[] = {{0xE0}, {0xF7, 0x10}, {0xF7, 0xA5}, {0xF7, 0xAB}, {0xEB}, {0xD1}, {0xF7, 0x18}};
    put(words[below(std::size(words))]);
    expression();
    put(token::comma);
    expression();
    if (oneOf(2)) {
        put(token::comma);
        expression();
    }
}

void Maker::block() {
    depth++;
    const std::uint64_t sort = below(5);
    if (sort == 0) {
        put(token::forWord);
        number();
        put(token::arrow);
        variable();
        put(token::to);
        oneOf(3) ? expression() : number();
        if (oneOf(3)) {
            put(token::step);
            expression();
        }
    } else if (sort == 1) {
        put(token::whileWord);
        condition();
    } else if (sort == 2) {
        put(token::doWord);
    } else {
        put(token::ifWord);
        condition();
        terminator();
        put(token::thenWord);
    }
    if (sort < 3) terminator();
    statements(static_cast<int>(1 + below(3)));
    if (sort == 0) put(token::next);
    if (sort == 1) put(token::whileEnd);
    if (sort == 2) {
        put(token::loopWhile);
        condition();
    }
    if (sort > 2) {
        if (oneOf(2)) {
            put(token::elseWord);
            statements(1);
        }
        if (!oneOf(30)) put(token::ifEnd);
    }
    depth--;
}

void Maker::statement() {
    switch (below(14)) {
        case 0:
            return arrayStatement();
        case 1:
            put(token::label);
            return put({static_cast<std::uint8_t>('1' + below(3))});
        case 2:
            put(token::goTo);
            return put({static_cast<std::uint8_t>('1' + below(3))});
        case 3:
            put(oneOf(2) ? token::dsz : token::isz);
            return variable();
        case 4:
            put(token::prog);
            return text(oneOf(4) ? "\"NONE\"" : "\"SUB\"");
        case 5:
            condition();
            put(token::then);
            return statement();
        case 6:
            return expression();
        case 7:
            return oneOf(3) ? text("\"AB\"") : drawing();
        case 8:
        case 9:
            if (depth < deepestBlock) return block();
            [[fallthrough]];
        default:
            expression();
            put(token::arrow);
            return variable();
    }
}

void Maker::statements(int count) {
    for (; count > 0; count--) {
        statement();
        if (oneOf(40)) anyToken();
        terminator();
        if (oneOf(15)) terminator();
    }
}

Bytes made(Random &random, void (*write)(Maker &)) {
    Maker maker{.random = random, .bytes = {}};
    write(maker);
    return std::move(maker.bytes);
}

}  // namespace

std::vector<Bytes> madePrograms(Random &random) {
    const auto body = [](Maker &maker) { maker.statements(static_cast<int>(1 + maker.below(12))); };
    const auto function = [](Maker &maker) { maker.expression(); };
    return {made(random, body), made(random, body), made(random, function)};
}

std::vector<Bytes> madeExpressions(Random &random) {
    const auto body = [](Maker &maker) {
        for (int count = 50; count > 0; count--) {
            maker.expression();
            maker.put(token::newLine);
        }
    };
    return {made(random, body)};
}

std::vector<Bytes> changedPrograms(std::vector<Bytes> programs, Random &random) {
    for (Bytes &bytes : programs) {
        for (std::uint64_t changes = 1 + random() % 4; changes > 0 && !bytes.empty(); changes--) {
            const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(random() % bytes.size());
            switch (random() % 4) {
                case 0:
                    *at = static_cast<std::uint8_t>(random());
                    break;
                case 1:
                    bytes.erase(at);
                    break;
                case 2:
                    bytes.insert(at, static_cast<std::uint8_t>(random()));
                    break;
                default:
                    std::rotate(bytes.begin(), at, bytes.end());
            }
        }
    }
    return programs;
}

}  // namespace numalink
