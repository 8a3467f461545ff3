// Items out into files and back: by chance for every kind and target, then each trap on its own.
#include "exchange/export/export.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <random>
#include <set>

#include "calculator/frames.h"
#include "calculator/number_text.h"
#include "exchange/export/export_writers.h"
#include "exchange/reader_calls.h"
#include "settings/settings_store.h"
#include "support/rounds.h"
#include "text/program_bytes.h"
#include "virtual_calculator/calculator_frames.h"

namespace numalink {
namespace {

using testing::HasSubstr;

// Items by chance: each kind as a calculator or the editor would make it, with the sizes and gaps that have been seen.
struct ItemMaker {
    explicit ItemMaker(unsigned seed) : chance(seed) {}

    unsigned below(unsigned limit) { return static_cast<unsigned>(chance() % limit); }
    std::uint8_t byte() { return static_cast<std::uint8_t>(below(256)); }

    std::string name() {
        std::string text(below(9), ' ');
        // No high code behind another: that could read as UTF-8, which readers take for such.
        for (std::size_t i = 0; i < text.size(); i++) {
            const bool high = below(5) == 0 && (i == 0 || static_cast<std::uint8_t>(text[i - 1]) < 0x80);
            text[i] = static_cast<char>(high ? 0x80 + below(0x7F) : ' ' + below(95));
        }
        return text;
    }

    Bytes image(bool words) {
        Bytes data = {':'};
        for (unsigned left = below(60); left > 0; left--) {
            const TokenRecord &token = tokenRecord(below(static_cast<unsigned>(tokenCount())));
            if (below(3) > 0) {
                constexpr std::string_view usual = "\r\r%EndREC >=12dtnySxABpacwordBaseN:\"%end";
                data.push_back(static_cast<std::uint8_t>(usual[below(usual.size())]));
            } else if (!words || token.asciiText[0] != '\0') {
                if (token.length == 1 && (token.byte1 == 0 || token.byte1 == 0xFF)) continue;
                data.push_back(token.byte1);
                if (token.length == 2) data.push_back(token.byte2);
            }
        }
        data.push_back(0xFF);
        return data;
    }

    OutgoingItem text(ItemKind itemKind, bool words) {
        OutgoingItem item{.itemKind = itemKind, .name = name(), .head = {}, .data = image(words)};
        ProgramInfo info{.imageLength = 1, .name = item.name, .password = name()};
        if (below(3) > 0) {
            item.data.push_back(static_cast<std::uint8_t>(below(0xFF)));
            info.imageLength = static_cast<std::uint32_t>(item.data.size());
        }
        item.head = encodeProgramInfo(info);
        return item;
    }

    OutgoingItem picture(bool oddSizes) {
        const int height = oddSizes ? static_cast<int>(1 + below(70)) : 64;
        const int width = oddSizes ? 8 * static_cast<int>(1 + below(20)) : 128;
        const int colors = static_cast<int>(1 + below(4)), sheets = static_cast<int>(1 + below(2));
        OutgoingItem item = sent(kind::picture, calculator::picture(height, width, colors, sheets, byte()));
        for (std::size_t plane = 0; plane < item.data.size(); plane += picturePlaneLength(item.head))
            item.data[plane + 1] = item.data[plane + 3] = 0;  // sheet and colour are below 256
        return item;
    }

    OutgoingItem values(ItemKind itemKind) {
        const bool isList = itemKind == kind::list;
        const std::uint32_t rows = 1 + below(12), columns = isList ? 1 : 1 + below(6);
        OutgoingItem item =
            sent(itemKind, calculator::valueItem(isList ? "LT" : "MT", name(), "", static_cast<int>(rows),
                                                 static_cast<int>(columns), byte()));
        item.data.clear();
        for (std::uint32_t place = 0; place < rows * columns; place++) {
            Bytes frame(valueFrameSize);
            encodeValue(std::span(frame).first<valueFrameSize>(), place / columns + 1, place % columns + 1, 0);
            if (below(5) > 0) fillDigits(frame);
            item.data.insert(item.data.end(), frame.begin(), frame.end());
        }
        return item;
    }

    // As a calculator has them: any 15 digits, the first not 0, and an exponent of at most 99.
    void fillDigits(Bytes &frame) {
        const auto digits = [&] { return static_cast<std::uint8_t>(below(10) << 4 | below(10)); };
        frame[5] = static_cast<std::uint8_t>(1 + below(9));
        for (std::size_t i = 6; i < 13; i++) frame[i] = digits();
        const bool small = below(2) == 0;
        frame[13] = static_cast<std::uint8_t>((below(2) == 0 ? 0x50 : 0) + (small ? 0 : 1));
        do frame[14] = digits();
        while (small && frame[14] == 0);
    }

    // As the calculator of the tests sends it.
    static OutgoingItem sent(ItemKind itemKind, const calculator::Item &item) {
        const bool named = item.head.size() == headFrameSize || itemKind == kind::algebraBlock;
        const ByteView name = ByteView(item.head).subspan(frameNameOffset);
        return {itemKind, named ? copyFrameName(name) : "", item.head, item.data};
    }

    OutgoingItem make(ItemKind itemKind, bool words) {
        if (isTextKind(itemKind)) return text(itemKind, words);
        if (itemKind == kind::picture) return picture(below(3) == 0);
        if (itemKind == kind::matrix || itemKind == kind::list) return values(itemKind);
        if (itemKind == kind::colorScreen || itemKind == kind::monochromeScreen) {
            const int height = 8 * static_cast<int>(1 + below(16)), width = static_cast<int>(1 + below(64));
            return sent(itemKind, calculator::screenCopy(itemKind == kind::colorScreen, height, width, byte()));
        }
        const char *type = itemKind == kind::backup ? "BU" : itemKind == kind::graphMemory ? "GM" : "GF";
        return sent(itemKind, calculator::memory(type, name(), 2 + below(300), byte()));
    }

    std::mt19937 chance;
};

std::string written(const OutgoingItem &item, ExportTarget target) {
    Bytes file;
    EXPECT_FALSE(appendItem(item, target, file)) << "refused";
    appendFileEnd(target, file);
    return {file.begin(), file.end()};
}

void expectProgram(const OutgoingItem &item, const ImportedItem &back, bool hasPassword) {
    const auto info = decodeProgramInfo(back.head);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->name, item.name);
    EXPECT_EQ(info->password, hasPassword ? decodeProgramInfo(item.head)->password : "");
    Bytes expected = item.data;
    if (expected.back() == 0xFF) expected.push_back(0);
    frameChecksum(expected);
    ASSERT_EQ(back.data, expected);
    EXPECT_EQ(info->imageLength, back.data.size());
}

void expectValues(const OutgoingItem &item, const ImportedItem &back) {
    ASSERT_EQ(back.data.size(), item.data.size());
    for (std::size_t at = 0; at < item.data.size(); at += valueFrameSize) {
        const auto before = ByteView(item.data).subspan(at).first<valueFrameSize>();
        const auto after = ByteView(back.data).subspan(at).first<valueFrameSize>();
        ASSERT_TRUE(std::equal(before.begin(), before.begin() + 5, after.begin()));
        ASSERT_NEAR(decodeValue(after), decodeValue(before), std::abs(decodeValue(before)) * 1e-13);
    }
}

// Equal but for the last byte of each frame, which a frame dump has right.
void expectFrames(Bytes before, const Bytes &after, std::size_t frameLength, bool summed) {
    ASSERT_EQ(before.size(), after.size());
    for (std::size_t at = 0; at + frameLength <= after.size(); at += frameLength) {
        ASSERT_TRUE(!summed || frameIsGood(ByteView(after).subspan(at, frameLength))) << at;
        before[at + frameLength - 1] = after[at + frameLength - 1];
    }
    ASSERT_EQ(before, after);
}

void expectFrameItem(const OutgoingItem &item, const ImportedItem &back, bool asText) {
    EXPECT_EQ(back.name, item.name);
    Bytes before = item.head;
    Bytes after = back.head;
    if (asText) {
        for (Bytes *head : {&before, &after}) std::fill_n(head->begin() + 19, 8, std::uint8_t{0});
    }
    before.back() = after.back();
    EXPECT_EQ(before, after);
    if (asText && item.itemKind != kind::picture) return expectValues(item, back);
    const std::size_t inner = calculator::frameLength(item.head);
    expectFrames(item.data, back.data, inner == 0 ? item.data.size() : inner, !asText);
}

void roundTrip(const OutgoingItem &item, ExportTarget target) {
    const bool asText = target != ExportTarget::cas;
    const std::string file = written(item, target);
    const ReadResult read = readWith(asText ? readCat : readCas, file);
    ASSERT_EQ(read.taken.size(), 1u) << file;
    ASSERT_TRUE(read.messages.empty()) << read.messages[0].body;
    ASSERT_EQ(read.taken[0].itemKind, item.itemKind);
    if (isTextKind(item.itemKind)) return expectProgram(item, read.taken[0], target != ExportTarget::catAlgebra);
    expectFrameItem(item, read.taken[0], asText);
}

struct ExportRound : Exchange, testing::WithParamInterface<std::tuple<ExportTarget, ItemKind>> {};

TEST_P(ExportRound, ComesBack) {
    const auto [target, itemKind] = GetParam();
    const int rounds = countFromEnvironment("NUMALINK_EXPORT_ROUNDS", 60);
    for (int i = 0; i < rounds && !HasFatalFailure(); i++) {
        SCOPED_TRACE("kind " + std::to_string(itemKind) + ", seed " + std::to_string(i));
        roundTrip(ItemMaker(static_cast<unsigned>(i)).make(itemKind, target != ExportTarget::cas), target);
    }
}
INSTANTIATE_TEST_SUITE_P(AsText, ExportRound,
                         testing::Combine(testing::Values(ExportTarget::cat, ExportTarget::catAlgebra),
                                          testing::Values(kind::program, kind::picture, kind::matrix, kind::list)));
INSTANTIATE_TEST_SUITE_P(AsFrames, ExportRound,
                         testing::Combine(testing::Values(ExportTarget::cas),
                                          testing::Values(kind::program, kind::functionMemory, kind::picture,
                                                          kind::matrix, kind::list, kind::backup, kind::graphMemory,
                                                          kind::graphFunction, kind::colorScreen,
                                                          kind::monochromeScreen)));

OutgoingItem program(const std::string &tokens) {
    Bytes data = {':'};
    data.insert(data.end(), tokens.begin(), tokens.end());
    data.push_back(0xFF);
    return {kind::program, "SNAKE", encodeProgramInfo({.imageLength = 1, .name = "SNAKE", .password = "KEY"}), data};
}

// Word pairs, longer chains, and every token with each of one byte behind it, which alone can make a longer word.
TEST(ExchangeWords, EverySequenceReadsBack) {
    ASSERT_TRUE(tokenTableLoad());
    std::vector<Bytes> all;
    for (std::size_t i = 0; i < tokenCount(); i++) {
        const TokenRecord &token = tokenRecord(i);
        if (token.length == 2) all.push_back({token.byte1, token.byte2});
        if (token.length == 1) all.push_back({token.byte1});
    }
    std::set<std::string> pairs;
    const auto check = [](const Bytes &tokens) {
        Bytes back;
        const std::string words = wordsFromTokens(tokens);
        EXPECT_EQ(tokensFromWords(words, back), -1) << words;
        EXPECT_EQ(back, tokens) << words;
        return words;
    };
    std::vector<std::string> words;
    for (const Bytes &each : all) words.push_back(check(each));
    for (std::size_t first = 0; first < all.size(); first++) {
        const bool known = words[first][0] == '\\' || all[first][0] < 0x80;
        for (std::size_t second = 0; second < all.size(); second++) {
            if (all[second].size() == 2 && second % 32 != 0) continue;
            Bytes both = all[first];
            both.insert(both.end(), all[second].begin(), all[second].end());
            const std::string together = check(both);
            if (known && together != words[first] + words[second]) pairs.insert(together);
        }
    }
    EXPECT_EQ(pairs.size(), 20u) << "docs/formats.md lists them";
    EXPECT_EQ(check({0x7F, 0x00, '\r', 0x90, 0x7F}), "\\Xmin\r\n\\\x90\\\x7F") << "bytes without a word";
    Bytes tokens;
    EXPECT_EQ(tokensFromWords("A\r\r\nB\nC\r\n\r\n", tokens), -1);
    EXPECT_EQ(tokens, (Bytes{'A', '\r', 'B', 'C', '\r', '\r'})) << "a line feed alone is nothing";
    for (const std::string text : {"turn", "ph Y>=", "d>=>", "receive(", "P ", " \\To "}) {
        for (const Bytes &first : all) {
            Bytes chain = first;
            for (const char letter : text) chain.push_back(static_cast<std::uint8_t>(letter));
            check(chain);
        }
    }
}

struct Export : LibraryExchange {
    static ItemId add(const OutgoingItem &item, ItemId parent = rootId) {
        return storeAddItem(
            {.name = item.name, .parent = parent, .kind = item.itemKind, .head = item.head, .data = item.data});
    }
    bool exportTo(const std::string &name, std::vector<ItemId> ids, ExportTarget target = ExportTarget::cat) const {
        return exportItems({.path = scratch.path + name, .ids = std::move(ids), .target = target});
    }
};

TEST_F(Export, ARefusedItemIsNamedAndNothingIsWritten) {
    const ItemId good = add(program("A"));
    const ItemId bad = add(ItemMaker::sent(kind::algebraBlock, calculator::algebraBlock("SETUP", 5, 9, 1)));
    scratch.write("x.cat", "old");
    uiRecord.answers = {Answer::ok};
    EXPECT_FALSE(exportTo("x.cat", {good, bad}));
    ASSERT_EQ(uiRecord.boxes.size(), 2u);
    EXPECT_EQ(uiRecord.boxes[1].bodyText, Text::kindNotExported);
    EXPECT_THAT(uiRecord.boxes[1].body, HasSubstr("SETUP"));
    EXPECT_EQ(scratch.read("x.cat"), "old");
}

TEST_F(Export, AnExistingFileIsAskedAboutAndOwnFilesAreRefused) {
    const ItemId id = add(program("A"));
    scratch.write("x.cat", "old");
    EXPECT_FALSE(exportTo("x.cat", {id}));
    EXPECT_EQ(scratch.read("x.cat"), "old");
    EXPECT_EQ(uiRecord.boxes.at(0).buttons, BoxButtons::okCancel);
    uiRecord.answers = {Answer::ok};
    EXPECT_TRUE(exportTo("x.cat", {id}));
    EXPECT_EQ(readWith(readCat, scratch.read("x.cat")).taken.size(), 1u);
    const std::string library = scratch.read("storage.dat");
    ASSERT_EQ(symlink("storage.dat", (scratch.path + "link.cat").c_str()), 0);
    ASSERT_EQ(link((scratch.path + "storage.dat").c_str(), (scratch.path + "hard.cat").c_str()), 0);
    scratch.write("draft-1.txt", "draft");
    scratch.write("another library", library);
    for (const char *folder : {"backups", "real"}) std::filesystem::create_directory(scratch.path + folder);
    scratch.write("backups/storage-2026-01-01.dat", "copy");
    std::filesystem::create_hard_link(scratch.path + "backups/storage-2026-01-01.dat", scratch.path + "copy.cat");
    for (const char *own : {"storage.dat", "link.cat", "hard.cat", "settings.xml", "draft-1.txt", "another library",
                            "storage.dat-journal", "./storage.dat-new", "copy.cat", "backups/x.cat"}) {
        uiRecord.boxes.clear();
        EXPECT_FALSE(
            exportItems({.path = scratch.path + own, .ids = {id}, .target = ExportTarget::cat, .mayReplace = true}))
            << own;
        EXPECT_EQ(uiRecord.boxes.size(), 1u) << own;
    }
    EXPECT_EQ(scratch.read("storage.dat"), library);
    std::filesystem::rename(scratch.path + "storage.dat", scratch.path + "real/storage.dat");
    std::filesystem::create_symlink("real/storage.dat", scratch.path + "storage.dat");
    EXPECT_FALSE(exportTo("real/storage.dat-journal", {id})) << "beside the file itself";
    EXPECT_TRUE(exportTo("real/draft.cat", {id}));
}

TEST_F(Export, AFolderThatCantBeWrittenIsTold) {
    const ItemId id = add(program("A"));
    EXPECT_FALSE(exportTo("missing/x.cat", {id}));
    EXPECT_EQ(uiRecord.boxes.size(), 1u);
    EXPECT_FALSE(exportItems({.path = "/dev/full", .ids = {id}, .target = ExportTarget::cat, .mayReplace = true}));
    EXPECT_FALSE(exportTo("", {id}));
    ASSERT_EQ(uiRecord.boxes.size(), 3u);
    EXPECT_THAT(uiRecord.boxes[2].body, HasSubstr("is a folder"));
}

}  // namespace
}  // namespace numalink
