// The text that is searched against the view, the three ways of looking, replacing in one step, duplicates.
#include "search/search.h"

#include <gmock/gmock.h>

#include <chrono>
#include <random>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "search/duplicates.h"
#include "search/search_text.h"
#include "store/undo/undo.h"
#include "support/scratch_folder.h"
#include "support/ui_recorder.h"
#include "text/token_table.h"

namespace numalink {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A plus stands for the token that shows as one.
Bytes imageOf(std::string_view tokens) {
    std::string image = ":";
    image.append(tokens).append("\xFF");
    image.push_back('\0');
    std::ranges::replace(image, '+', '\x89');
    return {image.begin(), image.end()};
}

struct SearchTest : testing::Test {
    void SetUp() override {
        ASSERT_TRUE(tokenTableLoad());
        ASSERT_TRUE(storeOpen());
    }
    void TearDown() override { storeClose(); }

    ItemId add(const std::string &name, std::string_view tokens) {
        return storeAddItem({.name = name,
                             .parent = rootId,
                             .kind = kind::program,
                             .head = encodeProgramInfo({.imageLength = 1, .name = name, .password = {}}),
                             .data = imageOf(tokens)});
    }

    static std::vector<FoundPlace> find(const SearchQuery &query) {
        std::string fault;
        const Search search = compileSearch(query, fault);
        std::vector<FoundPlace> places;
        if (!search) return places;
        for (const ItemId id : searchedItems(rootId)) {
            StoredItem item;
            EXPECT_TRUE(storeReadItem(id, item));
            searchItem(*search, item, places);
        }
        return places;
    }

    static std::vector<std::string> shown(const SearchQuery &query) {
        std::vector<std::string> list;
        for (const FoundPlace &place : find(query))
            list.push_back(std::to_string(place.line) + ":" + std::to_string(place.from) + "+" +
                           std::to_string(place.size));
        return list;
    }

    static Bytes dataOf(ItemId id) {
        StoredItem item;
        EXPECT_TRUE(storeReadItem(id, item));
        return item.data;
    }

    ScratchFolder scratch;
    RecordedUi ui;
};

TEST_F(SearchTest, TheTextIsThatOfTheView) {
    std::mt19937 source(11);
    const auto random = [&] { return static_cast<std::uint32_t>(source()); };
    for (int i = 0; i < 2000; i++) {
        Bytes image = {':'};
        for (std::size_t size = random() % 40; size > 0; size--) {
            static constexpr std::uint8_t often[] = {0x0D, 0x0C, 0x7F, 0xF7, 0xFF, 0, 'A', '"'};
            image.push_back(random() % 3 == 0 ? often[random() % 8] : static_cast<std::uint8_t>(random()));
        }
        image.push_back(0xFF);
        std::string wanted;
        for (const ViewLine &line : viewLines(image)) wanted += withPlainPlus(utf8FromCalculator(line.text)) + '\n';
        const SearchText text = searchTextOf(image, true);
        ASSERT_EQ(text.text + '\n', wanted) << i;
        ASSERT_EQ(text.tokens.size(), text.starts.size());
    }
}

TEST_F(SearchTest, LooksInThreeWays) {
    add("A", "A+B or C\r\"xor\"\rX\xAAY");  // letters that show as a command, and the command
    EXPECT_THAT(shown({.pattern = "OR"}), ElementsAre("0:4+2", "1:2+2", "2:1+2")) << "words";
    EXPECT_THAT(shown({.pattern = "OR", .matchCase = true}), IsEmpty());
    EXPECT_EQ(shown({.pattern = "A+B", .how = SearchHow::tokens}).size(), 1u);
    EXPECT_THAT(shown({.pattern = "^.{3}", .how = SearchHow::expression}), ElementsAre("0:0+3", "1:0+3", "2:0+3"));
    EXPECT_THAT(shown({.pattern = "C\\s*\"", .how = SearchHow::expression}), IsEmpty()) << "never over a line's end";
    EXPECT_THAT(shown({.pattern = "C\n\"xor"}), IsEmpty());
    EXPECT_THAT(shown({.pattern = "a*", .how = SearchHow::expression}), ElementsAre("0:0+1"));
    EXPECT_THAT(shown({.pattern = "a", .inNames = true}), ElementsAre("-1:0+1", "0:0+1"));
    std::string fault;
    EXPECT_EQ(compileSearch({.pattern = "(", .how = SearchHow::expression}, fault), nullptr);
    EXPECT_EQ(fault, "missing ): (") << "of what was typed alone";
    EXPECT_EQ(compileSearch({.pattern = ""}, fault), nullptr);
    add("B",
        "\xF7\x10"
        "1,1,A");
    for (const char *pattern : {"Locate", "Locate ", "\\Locate", "\\Locate "})
        EXPECT_THAT(shown({.pattern = pattern, .how = SearchHow::tokens}), ElementsAre("0:0+7")) << pattern;
    EXPECT_EQ(compileSearch({.pattern = std::string(searchPatternLimit + 1, 'a')}, fault), nullptr);
}

TEST_F(SearchTest, WhatWaitsToBeImportedIsNotSearched) {
    const ItemId a = add("A", "X");
    storeAddItem({.name = "B", .parent = storeTempFolder(), .kind = kind::program, .head = {}, .data = imageOf("X")});
    EXPECT_THAT(searchedItems(rootId), ElementsAre(a));
}

TEST_F(SearchTest, AnExpressionThatWouldRunForEverIsBounded) {
    add("A", std::string(60000, 'a') + "b");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(shown({.pattern = "(a|aa)+$", .how = SearchHow::expression}), IsEmpty());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    std::string fault;
    EXPECT_EQ(compileSearch({.pattern = "((a{100}){100}){100}", .how = SearchHow::expression}, fault), nullptr);
}

TEST_F(SearchTest, ReplacesInOneStepThatRestoresEveryByte) {
    const ItemId a = add("A", "S+1\x0ES\r\"S or S\"\rT"), b = add("B", "S+12"), c = add("C", "T");
    const Bytes before[] = {dataOf(a), dataOf(b), dataOf(c)};
    std::string fault;
    const SearchQuery query{.pattern = "S\\+(\\d+)", .how = SearchHow::expression, .matchCase = true};
    const Search search = compileSearch(query, fault);
    std::vector<FoundPlace> places = find(query);
    ASSERT_EQ(places.size(), 2u);
    ItemId culprit = noItem;
    ASSERT_EQ(replaceEverywhere(*search, places, "\\1xS", "step", culprit), ReplaceResult::done);
    const Bytes wantedB = imageOf("12xS");
    EXPECT_TRUE(std::equal(wantedB.begin(), wantedB.end() - 1, dataOf(b).begin()));
    const Bytes wantedA = imageOf("1xS\x0ES\r\"S or S\"\rT");
    EXPECT_TRUE(std::equal(wantedA.begin(), wantedA.end() - 1, dataOf(a).begin()))
        << "the letters of \"or\" stay letters";
    EXPECT_EQ(replaceEverywhere(*search, places, "X", "", culprit), ReplaceResult::changed);
    EXPECT_EQ(culprit, std::min(a, b));
    TakenBack done;
    ASSERT_TRUE(storeUndo(done));
    const ItemId ids[] = {a, b, c};
    for (int i = 0; i < 3; i++) EXPECT_EQ(dataOf(ids[i]), before[i]);
    // Nothing at all is replaced where one line would be no program.
    places = find(query);
    EXPECT_EQ(replaceEverywhere(*search, places, "\xE2\x82\xAC", "", culprit), ReplaceResult::unreadable);
    for (int i = 0; i < 3; i++) EXPECT_EQ(dataOf(ids[i]), before[i]);
}

TEST_F(SearchTest, KeepsToASelectionWhileItIsReplaced) {
    const ItemId a = add("XX", "XAX\rXX\rXBXX\rX");
    const SearchQuery query{.pattern = "X", .matchCase = true, .inNames = true};
    const SearchStretch stretch{.linesAhead = 0, .charactersAhead = 1, .linesBehind = 1, .charactersBehind = 1};
    const auto within = [&] {
        StoredItem item;
        EXPECT_TRUE(storeReadItem(a, item));
        return placesWithin(stretch, item, find(query));
    };
    std::string fault;
    StoredItem item;
    ASSERT_TRUE(storeReadItem(a, item));
    EXPECT_THAT(previewPlaces(*compileSearch(query, fault), item, within(), "Q"),
                ElementsAre("XAQ", "QX", "XQ", "QBXX", "XBQX"));
    ItemId culprit = noItem;
    const auto replace = [&](const char *by) {
        return replaceEverywhere(*compileSearch(query, fault), within(), by, "step", culprit);
    };
    ASSERT_EQ(replace("XYZ"), ReplaceResult::done);
    EXPECT_EQ(within().size(), 5u) << "the selection has grown";
    ASSERT_EQ(replace(""), ReplaceResult::done);
    const Bytes wanted = imageOf("XAYZ\rYZYZ\rYZBYZX\rX");
    EXPECT_TRUE(std::equal(wanted.begin(), wanted.end() - 1, dataOf(a).begin()));
}

TEST_F(SearchTest, FindsWhatIsThereTwice) {
    const ItemId a = add("A",
                         "1\x0E"
                         "A\rB"),
                 b = add("B",
                         "1\x0E"
                         "A\rB");
    const ItemId c = add("C",
                         "'note\r\x7F\x34"
                         "1\x0E"
                         "A:B\r");
    add("D", "\"'note\"");
    add("E", "\"\x7F\x34'note\"");
    std::vector<std::string> found;
    for (const Duplicates &group : findDuplicates()) {
        std::string line = group.likeness == Likeness::bytes ? "bytes" : "loose";
        for (const ItemId id : group.ids)
            line += " " + std::string(id == a ? "a" : id == b ? "b" : id == c ? "c" : "?");
        found.push_back(line);
    }
    EXPECT_THAT(found, testing::UnorderedElementsAre("bytes a b", "loose a c"));
}

}  // namespace
}  // namespace numalink
