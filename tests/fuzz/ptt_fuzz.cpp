// Any bytes as a token table, and look-ups of the same bytes in it and in the shipped table: they must agree with a
// plain walk in file order.
#include <algorithm>

#include "require.h"
#include "text/auto_correct.h"
#include "text/program_bytes.h"
#include "text/token_table.h"

namespace {

using namespace numalink;

const TokenRecord *plainWalk(std::string_view text) {
    const TokenRecord *best = nullptr;
    std::size_t bestLength = 0;
    for (std::size_t i = 0; i < tokenCount(); i++) {
        const std::string_view word = tokenRecord(i).asciiText;
        if (word.size() <= bestLength || !text.starts_with(word)) continue;
        best = &tokenRecord(i);
        bestLength = word.size();
    }
    return best;
}

int plainTokenToText(ByteView bytes) {
    for (std::size_t i = 0; i < tokenCount(); i++) {
        const TokenRecord &record = tokenRecord(i);
        if (bytes.empty() || record.byte1 != bytes[0]) continue;
        if (record.length == 1 || (bytes.size() >= 2 && record.byte2 == bytes[1])) return record.length;
    }
    return 0;
}

void lookUp(ByteView file) {
    require(tokenCount() <= tokenRecordLimit);
    const std::string_view text(reinterpret_cast<const char *>(file.data()), std::min<std::size_t>(file.size(), 200));
    for (std::size_t at = 0; at < text.size(); at++) {
        const std::string_view rest = text.substr(at);
        const ByteView bytes = file.subspan(at, rest.size());
        require(asciiToToken(rest) == plainWalk(rest));
        std::string_view shown;
        require(tokenToText(bytes, shown) == plainTokenToText(bytes));
        const TypedToken typed = textToToken(rest, at % 2 == 0, at % 3 == 0);
        require(typed.used >= 0 && static_cast<std::size_t>(typed.used) <= rest.size());
    }
    Bytes tokens;
    const std::ptrdiff_t place = tokensFromWords(text, tokens);
    require(place < static_cast<std::ptrdiff_t>(text.size()));
    wordsFromTokens(file);
    programPlainText(file.first(text.size()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    tokenTableSet({data, size});
    lookUp({data, size});
    require(tokenTableLoad());
    lookUp({data, size});
    return 0;
}
