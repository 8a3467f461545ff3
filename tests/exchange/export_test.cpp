// Items out into files and back: by chance for every kind and target, then each trap on its own.
#include "exchange/export.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <set>

#include "exchange/export_items.h"
#include "exchange/import_readers.h"
#include "exchange/reader_calls.h"
#include "settings/settings_store.h"
#include "support/rounds.h"
#include "text/program_bytes.h"

namespace numalink {
namespace {

using testing::HasSubstr;

std::string textOf(const Bytes &bytes) { return {bytes.begin(), bytes.end()}; }

std::string written(const OutgoingItem &item, ExportTarget target) {
    Bytes file;
    if (const auto refusal = appendItem(item, target, file))
        return "refused " + std::to_string(static_cast<int>(refusal->fault));
    appendFileEnd(target, file);
    return textOf(file);
}

std::string refused(ExportFault fault) { return "refused " + std::to_string(static_cast<int>(fault)); }

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

struct Round {
    ExportTarget target;
    ItemKind itemKind;
};

std::vector<Round> allRounds() {
    std::vector<Round> rounds;
    for (const ItemKind itemKind :
         {kind::program, kind::functionMemory, kind::picture, kind::matrix, kind::list, kind::backup, kind::graphMemory,
          kind::graphFunction, kind::colourScreen, kind::monochromeScreen})
        rounds.push_back({ExportTarget::cas, itemKind});
    for (const ItemKind itemKind : {kind::program, kind::picture, kind::matrix, kind::list})
        rounds.insert(rounds.end(), {{ExportTarget::cat, itemKind}, {ExportTarget::catAlgebra, itemKind}});
    return rounds;
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

struct ExportRound : Exchange, testing::WithParamInterface<Round> {};

TEST_P(ExportRound, ComesBack) {
    const auto [target, itemKind] = GetParam();
    const int rounds = countFromEnvironment("NUMALINK_EXPORT_ROUNDS", 60);
    for (int i = 0; i < rounds && !HasFatalFailure(); i++) {
        SCOPED_TRACE("kind " + std::to_string(itemKind) + ", seed " + std::to_string(i));
        roundTrip(ItemMaker(static_cast<unsigned>(i)).make(itemKind, target), target);
    }
}
INSTANTIATE_TEST_SUITE_P(Kinds, ExportRound, testing::ValuesIn(allRounds()));

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
    for (const std::string text : {"turn", "ph Y>=", "d>=>", "receive(", "P ", " \\To "}) {
        for (const Bytes &first : all) {
            Bytes chain = first;
            for (const char letter : text) chain.push_back(static_cast<std::uint8_t>(letter));
            check(chain);
        }
    }
}

using ExportText = Exchange;

TEST_F(ExportText, RecordsOfAProgram) {
    EXPECT_EQ(written(program("AB\rC"), ExportTarget::cat),
              "%Header Record\r\nFormat:TXT\r\nCommunication SW:0\r\nData Type:PG\r\nCapacity:7\r\nFile Name:SNAKE\r\n"
              "Group Name:\r\nPassword:KEY\r\nOption1:NL\r\nOption2:\r\nOption3:\r\nOption4:\r\n%Data Record\r\n"
              "AB\r\nC\r\n%End\r\n");
    EXPECT_EQ(written(program(""), ExportTarget::catAlgebra),
              "%Header Record\r\nFormat:MCS1\r\nType Number:1\r\nFile Name:SNAKE\r\nOption Name:\r\n"
              "Communication SW:0\r\nCapacity:11\r\nData Type:PG\r\n%Data Record\r\nPassword:KEY\r\nBaseN:0\r\n"
              "\\@00\r\n%End\r\n");
    EXPECT_THAT(written(program(""), ExportTarget::cat), HasSubstr("%Data Record\r\n\r\n%End\r\n"));
}

TEST_F(ExportText, LinesOfTheFileInAProgram) {
    const std::string file = written(program("Password:A\r%End\r%Ends\r%header record\rBaseN:"), ExportTarget::cat);
    EXPECT_THAT(file, HasSubstr("\\Password:A\r\n\\@25End\r\n\\@25Ends\r\n\\@25header record\r\nBaseN:\r\n%End\r\n"));
}

TEST_F(ExportText, ValuesAndPictures) {
    OutgoingItem list = ItemMaker(1).values(kind::list);
    writeBig16(list.head, 7, 1);
    list.data.assign({0x3A, 0, 1, 0, 1, 1, 0x50, 0, 0, 0, 0, 0, 0, 1, 0x03, 0});
    EXPECT_THAT(written(list, ExportTarget::cat), HasSubstr("Value : 1 1 1.5\\EE+3\r\n%End"));
    list.data[13] = 0x41;
    list.data[14] = 0xFF;  // an exponent of 165
    EXPECT_EQ(written(list, ExportTarget::cat), refused(ExportFault::notWhole));
    OutgoingItem picture = ItemMaker(2).picture(false);
    const std::string file = written(picture, ExportTarget::cat);
    EXPECT_THAT(file, HasSubstr("\r\nHeight:64\r\nWidth:128\r\nData Name:" + picture.name));
    EXPECT_THAT(file, HasSubstr("Start Position:DR\r\nDirection:U\r\nByte Direction:W\r\nBit Weight:F\r\n"));
    picture.data[1] = 1;  // a sheet beyond 255
    EXPECT_EQ(written(picture, ExportTarget::cat), refused(ExportFault::notWhole));
    EXPECT_THAT(written(picture, ExportTarget::cas), HasSubstr(":IMG"));
}

TEST_F(ExportText, WhatNoFileCanHold) {
    const OutgoingItem block = ItemMaker::sent(kind::algebraBlock, calculator::algebraBlock("SETUP", 5, 9, 1));
    for (const ExportTarget target : {ExportTarget::cas, ExportTarget::cat, ExportTarget::catAlgebra})
        EXPECT_EQ(written(block, target), refused(ExportFault::kind));
    EXPECT_EQ(written(ItemMaker(4).text(kind::functionMemory, true), ExportTarget::cat), refused(ExportFault::kind));
    EXPECT_EQ(written(program("\x90"), ExportTarget::cat), refused(ExportFault::code));
    EXPECT_THAT(written(program("\x90"), ExportTarget::cas), HasSubstr(":\x90\xFF"));
    OutgoingItem backup = ItemMaker(5).memory(kind::backup, "BU");
    backup.data.pop_back();
    EXPECT_EQ(written(backup, ExportTarget::cas), refused(ExportFault::sizesDiffer));
    backup.head.clear();
    EXPECT_EQ(written(backup, ExportTarget::cas), refused(ExportFault::kind));
    EXPECT_EQ(written(program(std::string(65533, 'A')), ExportTarget::cas), refused(ExportFault::tooLarge));
    OutgoingItem option = program("A");
    option.head[optionOffset] = 'X';
    for (const ExportTarget target : {ExportTarget::cat, ExportTarget::catAlgebra})
        EXPECT_EQ(written(option, target), refused(ExportFault::notWhole)) << "a text file has no such bytes";
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
    EXPECT_EQ(uiRecord.boxes[1].bodyNumber, 92);
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
    for (const char *own : {"storage.dat", "link.cat", "hard.cat", "settings.xml", "draft-1.txt"}) {
        uiRecord.boxes.clear();
        uiRecord.answers = {Answer::ok};
        EXPECT_FALSE(exportTo(own, {id})) << own;
        EXPECT_EQ(uiRecord.boxes.size(), 1u) << own;
    }
    EXPECT_EQ(scratch.read("storage.dat"), library);
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
