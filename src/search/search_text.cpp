#include "search/search_text.h"

#include <array>
#include <memory>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "platform/lock.h"
#include "text/view_runs.h"

namespace numalink {

namespace {

constexpr std::string_view calculatorPlus = "\uFF0B";
constexpr std::uint8_t lineEnd = 0x0D, displayCommand = 0x0C, endMark = 0xFF;

// What each token shows, by its bytes, as the view has it.
struct Shown {
    std::array<std::string, 256> single, mark;
    std::array<std::array<std::string, 256>, 2> pairs;  // behind 0x7F and behind 0xF7

    Shown() {
        for (std::size_t i = 0; i < 256; i++) {
            const auto byte = static_cast<std::uint8_t>(i);
            single[i] = shownOf({byte});
            mark[i] = utf8FromCalculator(tokenOnView(ByteView(&byte, 1), true));
            pairs[0][i] = shownOf({0x7F, byte});
            pairs[1][i] = shownOf({0xF7, byte});
        }
    }

    // The text of the one line that the token makes; the display command's and the line end's second one is empty.
    static std::string shownOf(std::initializer_list<std::uint8_t> token) {
        Bytes image = {':'};
        image.insert(image.end(), token);
        image.push_back(endMark);
        return withPlainPlus(utf8FromCalculator(viewLines(image).front().text));
    }

    const std::string &of(std::uint8_t first, std::uint8_t second) const {
        return pairs[first == 0x7F ? 0 : 1][second];
    }
};

Lock shownLock;
std::shared_ptr<const Shown> shownTable GUARDED_BY(shownLock);

std::shared_ptr<const Shown> shownTexts() {
    const HoldLock hold(shownLock);
    if (!shownTable) shownTable = std::make_shared<const Shown>();
    return shownTable;
}

}  // namespace

std::string withPlainPlus(std::string utf8) {
    for (std::size_t at = utf8.find(calculatorPlus); at != std::string::npos; at = utf8.find(calculatorPlus, at + 1))
        utf8.replace(at, calculatorPlus.size(), "+");
    return utf8;
}

void searchTextForget() {
    const HoldLock hold(shownLock);
    shownTable.reset();
}

SearchText searchTextOf(ByteView image, bool withTokens) {
    const auto table = shownTexts();
    const Shown &shown = *table;
    SearchText result;
    const ByteView tokens = viewedBytes(image);
    result.text.reserve(tokens.size() * 2);
    const auto note = [&](std::uint8_t first, std::uint8_t second) {
        if (!withTokens) return;
        result.tokens.push_back(static_cast<std::uint16_t>(second << 8 | first));
        result.starts.push_back(static_cast<std::uint32_t>(result.text.size()));
    };
    std::size_t at = 0;
    for (; at < tokens.size() && tokens[at] != 0 && tokens[at] != endMark; at++) {
        const std::uint8_t byte = tokens[at];
        if (isTokenPrefix(byte) && at + 1 < tokens.size()) {
            note(byte, tokens[at + 1]);
            result.text += shown.of(byte, tokens[++at]);
            continue;
        }
        note(byte, 0);
        if (byte != lineEnd) result.text += shown.single[byte];
        if (byte == lineEnd || byte == displayCommand) result.text += '\n';
    }
    for (; at < tokens.size(); at++) {  // behind an end mark, where all are marks
        note(tokens[at], 0);
        result.text += shown.mark[tokens[at]];
    }
    return result;
}

}  // namespace numalink
