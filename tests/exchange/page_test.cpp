// Pages that play a program: what is shared comes back to the byte, and what was changed by hand is refused.
#include <gmock/gmock.h>

#include <random>

#include "calculator/frames.h"
#include "calculator/item_bundle.h"
#include "exchange/base64.h"
#include "exchange/export/share_page.h"
#include "exchange/import/import_formats.h"
#include "exchange/page_parts.h"
#include "exchange/reader_calls.h"
#include "platform/files.h"
#include "platform/program_folder.h"
#include "support/random_items.h"

namespace numalink {
namespace {

using testing::HasSubstr;

// A template without a player, beside the test's own data files.
struct Page : LibraryExchange {
    Page() : programs(programFolder()) {
        scratch.write("player.html", std::string(pageStart) + "<title>@@title@@</title>" + std::string(pageItemsHead) +
                                         "@@items@@" + std::string(pageItemsEnd) + "<p>@@title@@");
        setProgramFolder(scratch.path);
    }
    ~Page() override { setProgramFolder(programs); }

    static ItemId addImported(const ImportedItem &item, ItemId folder) {
        return storeAddItem({.name = item.name,
                             .parent = folder,
                             .kind = item.itemKind,
                             .head = item.head,
                             .data = item.data,
                             .whenTaken = NameTaken::nextFreeName});
    }
    std::string share(ItemId program, const std::string &title = {}) {
        const std::string path = scratch.path + "page.html";
        Bytes file;
        if (!sharePage({.program = program, .title = title, .path = path, .mayReplace = true})) return {};
        EXPECT_EQ(readWholeFile(path, file, 1 << 24), FileResult::done);
        return {file.begin(), file.end()};
    }
    static ReadResult read(const std::string &page) {
        Bytes bytes(page.begin(), page.end());
        ByteView file = bytes;
        const ImportFormat *format = importFormatOf(file);
        EXPECT_STREQ(format->name, "page");
        return readWith(format->read, page);
    }

    std::string programs;
};

ImportedItem byChance(std::mt19937_64 &chance, bool isProgram) {
    for (;;) {
        const calculator::Item made =
            isProgram ? calculator::program("P", calculator::randomBytes(chance, chance() % 400, 255))
                      : calculator::randomItem(chance, false, false);
        const ImportedItem item = itemFromFrame(made.head, made.data);
        if (isTextKind(item.itemKind) || isValuesKind(item.itemKind) || item.itemKind == kind::picture) return item;
    }
}

TEST_F(Page, ThousandProgramsComeBackWithWhatLiesBesideThem) {
    std::mt19937_64 chance(20);
    for (std::size_t round = 0; round < 10; round++) {
        const ItemId folder = storeResolvePath("/F/", true);
        std::vector<NewItem> items;
        for (int i = 0; i < 110; i++) {
            const ImportedItem item = byChance(chance, i < 100);
            items.push_back(
                {.name = item.name, .parent = folder, .kind = item.itemKind, .head = item.head, .data = item.data});
        }
        const std::vector<ItemId> ids = storeAddItems(items);
        ASSERT_EQ(ids.size(), items.size());
        const ReadResult result = read(share(ids[round]));
        ASSERT_TRUE(result.messages.empty());
        ASSERT_EQ(result.taken.size(), items.size());
        std::rotate(items.begin(), items.begin() + static_cast<std::ptrdiff_t>(round),
                    items.begin() + static_cast<std::ptrdiff_t>(round) + 1);
        for (std::size_t i = 0; i < items.size(); i++) {
            EXPECT_EQ(result.taken[i].itemKind, items[i].kind);
            EXPECT_EQ(result.taken[i].name, items[i].name);
            EXPECT_EQ(result.taken[i].head, items[i].head);
            EXPECT_EQ(result.taken[i].data, items[i].data);
        }
        ASSERT_TRUE(storeDelete(folder));
    }
}

TEST_F(Page, HostileTitlesAndNamesAreText) {
    std::mt19937_64 chance(1);
    ImportedItem program = byChance(chance, true);
    program.name = "</s>\"'&";
    const ItemId id = addImported(program, rootId);
    const std::string page = share(id, "</title><script>alert(1)</script>\x01\n@@items@@");
    EXPECT_THAT(page, HasSubstr("<title>&lt;/title&gt;&lt;script&gt;alert(1)&lt;/script&gt;  @@items@@</title>"));
    EXPECT_THAT(page, HasSubstr("<p>@@title@@")) << "only the title itself is filled in";
    EXPECT_EQ(read(page).taken.at(0).name, program.name);
    EXPECT_THAT(share(id), HasSubstr("<title>&lt;/s&gt;&quot;'&amp;</title>"));
}

TEST_F(Page, WhatWasChangedByHandIsRefusedWithAWord) {
    std::mt19937_64 chance(2);
    const std::string page = share(addImported(byChance(chance, true), rootId));
    const std::size_t from = page.find(pageItemsHead) + pageItemsHead.size();
    const std::size_t to = page.find(pageItemsEnd, from);
    for (std::size_t at = from; at < to; at++) {
        std::string changed = page;
        changed[at] = changed[at] == 'A' ? 'B' : 'A';
        const ReadResult result = read(changed);
        ASSERT_EQ(result.messages.size(), 1u) << at;
        EXPECT_EQ(result.messages[0].bodyText, Text::importPageDamaged);
        EXPECT_TRUE(result.taken.empty());
    }
    for (const std::size_t cut : {from, from + 1, to - 4}) {
        EXPECT_EQ(read(page.substr(0, cut)).messages.size(), 1u);
        EXPECT_EQ(read(page.substr(0, cut) + std::string(pageItemsEnd)).messages.size(), 1u);
    }
}

TEST_F(Page, KindsAndHeadsThatDontBelongInAPageAreLeftOut) {
    std::mt19937_64 chance(3);
    const ImportedItem good = byChance(chance, true);
    const auto pageOf = [](const std::vector<BundledItem> &items) {
        return std::string(pageStart) + std::string(pageItemsHead) + base64FromBytes(encodeBundle(items)) +
               std::string(pageItemsEnd);
    };
    const BundledItem whole{good.itemKind, good.name, good.head, good.data};
    BundledItem folder = whole, shortHead = whole, longData = whole, longName = whole;
    folder.kind = kind::folder;
    shortHead.head.pop_back();
    longData.data.push_back(0);
    longName.name.assign(53, 'A');
    const ReadResult result = read(pageOf({folder, shortHead, longData, longName, whole}));
    EXPECT_EQ(result.messages.size(), 4u);
    EXPECT_EQ(result.taken.size(), 1u);
    EXPECT_TRUE(encodeBundle({{kind::program, "A", {}, Bytes(itemDataLimit + 1)}}).empty());
}

TEST_F(Page, NoPlayerNoProgramNoPage) {
    std::mt19937_64 chance(4);
    const ItemId program = addImported(byChance(chance, true), rootId);
    EXPECT_TRUE(pagePlayerThere());
    EXPECT_TRUE(share(rootId).empty());
    setProgramFolder(scratch.path + "nowhere");
    EXPECT_FALSE(pagePlayerThere());
    EXPECT_TRUE(share(program).empty());
    ASSERT_EQ(uiRecord.boxes.size(), 2u);
    EXPECT_EQ(uiRecord.boxes[0].bodyText, Text::shareNoProgram);
    EXPECT_EQ(uiRecord.boxes[1].bodyText, Text::shareNoPlayer);
}

TEST(Base64, BytesAndBack) {
    std::mt19937_64 chance(5);
    for (std::size_t size = 0; size < 100; size++) {
        const Bytes bytes = calculator::randomBytes(chance, size, 256);
        EXPECT_EQ(bytesFromBase64(" \n" + base64FromBytes(bytes) + "\r\n"), bytes);
    }
    EXPECT_EQ(base64FromBytes(Bytes{'f', 'o', 'o', 'b'}), "Zm9vYg==");
    for (const char *bad : {"A", "AB", "A===", "AB==", "AB=C", "AB C", "ABC\xC3"})
        EXPECT_FALSE(bytesFromBase64(bad)) << bad;
}

}  // namespace
}  // namespace numalink
