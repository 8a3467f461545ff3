// The forms that items have had: how each way of changing tells, what is kept over restarts, and a file that isn't in
// order.
#include "history/history.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "calculator/program_info.h"
#include "store/undo/undo.h"
#include "support/scratch_folder.h"
#include "support/ui_recorder.h"

namespace numalink {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Bytes headOf(std::string_view name, std::string_view password = "") {
    return encodeProgramInfo({.imageLength = 1, .name = std::string(name), .password = std::string(password)});
}

NewItem program(std::string name, Bytes data, ItemId parent = rootId) {
    NewItem item{.name = std::move(name), .parent = parent, .kind = kind::program, .head = {}, .data = std::move(data)};
    item.head = headOf(item.name);
    return item;
}

bool edit(ItemId id, Bytes data) {
    const auto entry = storeReadEntry(id);
    return entry && storeWriteItem(id, program(entry->name, std::move(data), entry->parent));
}

std::vector<std::string> formsOf(ItemId id) {
    static constexpr const char *causes[] = {"?",        "made", "edited", "received", "imported",
                                             "replaced", "back", "undone", "removed"};
    std::vector<std::string> forms;
    const std::vector<FormEntry> entries = historyForms(id);
    for (std::size_t i = 0; i < entries.size(); i++) {
        StoredItem form;
        EXPECT_TRUE(historyReadForm(id, i, form));
        EXPECT_EQ(form.data.size(), entries[i].size);
        EXPECT_EQ(entries[i].time > 0, entries[i].cause != FormCause::unknown);
        forms.push_back(std::string(causes[static_cast<std::size_t>(entries[i].cause)]) + " " +
                        std::string(form.data.begin(), form.data.end()));
    }
    return forms;
}

Bytes text(std::string_view codes) { return {codes.begin(), codes.end()}; }

struct History : testing::Test {
    void SetUp() override { open(); }
    void TearDown() override { close(); }
    void open() {
        ASSERT_TRUE(storeOpen());
        historyOpen();
    }
    void close() {
        historyClose();
        storeClose();
    }
    void reopen() {
        close();
        open();
    }
    std::string file() const { return scratch.path + "storage.dat-versions"; }

    ScratchFolder scratch;
    RecordedUi ui;
};

TEST_F(History, EachWayOfChangingTellsItsCause) {
    const ItemId a = storeAddItem(program("A", text("1")));
    EXPECT_THAT(formsOf(a), ElementsAre("made 1"));
    ASSERT_TRUE(edit(a, text("2")));
    {
        const UndoGroup group(UndoAct::edit);
        ASSERT_TRUE(edit(a, text("3")));
    }
    EXPECT_THAT(formsOf(a), ElementsAre("edited 3", "edited 2", "made 1"));
    TakenBack done;
    ASSERT_TRUE(storeUndo(done));
    EXPECT_THAT(formsOf(a), ElementsAre("undone 2", "edited 3", "edited 2", "made 1"));
    // A name, a folder and what is stored again unchanged are no forms; another head is.
    ASSERT_TRUE(storeRename(a, "B", headOf("B")));
    ASSERT_TRUE(storeMove(a, storeResolvePath("/F", true)));
    ASSERT_TRUE(edit(a, text("2")));
    EXPECT_EQ(formsOf(a).size(), 4u);
    ASSERT_TRUE(storeRewriteHead(a, headOf("B", "key")));
    EXPECT_EQ(formsOf(a).size(), 5u);
    EXPECT_THAT(formsOf(storeResolvePath("/F", false)), IsEmpty());
}

TEST_F(History, WhatTakesAnItemsPlaceHasItsForms) {
    const ItemId first = storeAddItem(program("A", text("1")));
    ItemId second = noItem;
    {
        const NamedCause cause(FormCause::received);
        second = storeAddItem(program("A", text("2")));
    }
    ASSERT_NE(first, second);
    EXPECT_THAT(formsOf(second), ElementsAre("received 2", "made 1"));
    // As an import with Replace goes: it moves in from the temporary folder, then the old one goes.
    NewItem waiting = program("A", text("3"), storeTempFolder());
    waiting.whenTaken = NameTaken::keepBoth;
    const ItemId third = storeAddItems({waiting}).at(0);
    {
        const UndoGroup group(UndoAct::import, "file");
        ASSERT_TRUE(storeMove(third, rootId));
        ASSERT_TRUE(storeDelete(second));
    }
    EXPECT_THAT(formsOf(third), ElementsAre("imported 3", "received 2", "made 1"));
    TakenBack done;
    ASSERT_TRUE(storeUndo(done));
    EXPECT_THAT(formsOf(second), ElementsAre("undone 2", "imported 3", "received 2", "made 1"));
    reopen();
    EXPECT_THAT(formsOf(second), ElementsAre("undone 2", "imported 3", "received 2", "made 1"));
    EXPECT_THAT(historyGone(), IsEmpty());
    ASSERT_TRUE(storeDelete(second));
    reopen();
    ASSERT_EQ(historyGone().size(), 1u);
    StoredItem form;
    ASSERT_TRUE(historyReadGone(second, form));
    EXPECT_EQ(form.data, text("2"));
    EXPECT_EQ(historyGone()[0].form.name, "A");
}

TEST_F(History, BringsAFormBackInOneStep) {
    const ItemId a = storeAddItem(program("A", text("1")));
    ASSERT_TRUE(edit(a, text("2")));
    ASSERT_TRUE(storeRename(a, "NEW", headOf("NEW")));
    ASSERT_TRUE(historyBringBack(a, 1));
    StoredItem item;
    ASSERT_TRUE(storeReadItem(a, item));
    EXPECT_EQ(item.data, text("1"));
    EXPECT_EQ(item.head, headOf("NEW"));
    EXPECT_THAT(formsOf(a), ElementsAre("back 1", "edited 2", "made 1"));
    TakenBack done;
    ASSERT_TRUE(storeUndo(done));
    ASSERT_TRUE(storeReadItem(a, item));
    EXPECT_EQ(item.data, text("2"));
    EXPECT_FALSE(historyBringBack(a, 9));
}

TEST_F(History, KeepsTheLastTwenty) {
    const ItemId a = storeAddItem(program("A", text("0")));
    for (int i = 1; i <= 30; i++) ASSERT_TRUE(edit(a, text(std::to_string(i))));
    for (int pass = 0; pass < 2; pass++) {
        const std::vector<std::string> forms = formsOf(a);
        ASSERT_EQ(forms.size(), historyFormLimit + 1);
        EXPECT_EQ(forms.front(), "edited 30");
        EXPECT_EQ(forms.back(), "edited 10");
        reopen();
    }
    // What counts no more is taken out once it is much.
    for (int i = 0; i < 60; i++) ASSERT_TRUE(edit(a, Bytes(65536, static_cast<std::uint8_t>(i))));
    const auto before = std::filesystem::file_size(file());
    const std::vector<FormEntry> forms = historyForms(a);
    reopen();
    EXPECT_LT(std::filesystem::file_size(file()), before / 2);
    EXPECT_EQ(historyForms(a).size(), forms.size());
    StoredItem form;
    ASSERT_TRUE(historyReadForm(a, historyFormLimit, form));
    EXPECT_EQ(form.data, Bytes(65536, 39));
}

TEST_F(History, AFileThatIsNotInOrderNeverKeepsTheLibraryShut) {
    const ItemId a = storeAddItem(program("A", text("1")));
    for (const char *next : {"2", "3", "4"}) ASSERT_TRUE(edit(a, text(next)));
    close();
    const std::string whole = scratch.read("storage.dat-versions");
    const auto openWith = [&](const std::string &content) {
        scratch.write("storage.dat-versions", content);
        uiRecord.boxes.clear();
        open();
        const std::vector<std::string> forms = formsOf(a);
        EXPECT_TRUE(edit(a, text("5")) && edit(a, text("4")));
        const std::size_t grown = formsOf(a).size() - forms.size();
        close();
        return std::to_string(forms.size()) + " forms, " + std::to_string(uiRecord.boxes.size()) + " boxes, " +
               std::to_string(grown) + " more";
    };
    EXPECT_EQ(openWith(whole), "4 forms, 0 boxes, 2 more");
    EXPECT_EQ(openWith(whole.substr(0, whole.size() - 5)), "3 forms, 0 boxes, 2 more") << "cut short by a power cut";
    EXPECT_EQ(openWith(""), "1 forms, 0 boxes, 2 more");
    EXPECT_EQ(openWith("something else"), "1 forms, 1 boxes, 0 more");
    EXPECT_EQ(scratch.read("storage.dat-versions"), "something else");
    std::string damaged = whole;
    damaged[whole.size() / 2] ^= 1;
    EXPECT_THAT(openWith(damaged), testing::HasSubstr("1 boxes, 2 more"));
    EXPECT_EQ(scratch.read("storage.dat-versions.damaged-1"), damaged);
    std::filesystem::remove(file());
    std::filesystem::create_directory(file());
    EXPECT_EQ(openWith(""), "1 forms, 1 boxes, 0 more");
    std::filesystem::remove(file());
    EXPECT_EQ(openWith(whole), "4 forms, 0 boxes, 2 more");
    // Every single byte that is another one: told or not, it opens, and no form is a wrong one.
    for (std::size_t at = 0; at < whole.size(); at++) {
        std::string other = whole;
        other[at] = static_cast<char>(other[at] + 1);
        scratch.write("storage.dat-versions", other);
        open();
        for (std::size_t i = 0; i < historyForms(a).size(); i++) {
            StoredItem form;
            const bool isRead = historyReadForm(a, i, form);
            EXPECT_TRUE(!isRead || (form.data.size() == 1 && form.data[0] >= '1' && form.data[0] <= '4'));
        }
        close();
    }
    open();
}

// The same by what the user may do; root may write everything.
TEST_F(History, AReadOnlyLibraryIsReadWithItsForms) {
    if (geteuid() == 0) {
        GTEST_SKIP();
    }
    const ItemId a = storeAddItem(program("A", text("1")));
    ASSERT_TRUE(edit(a, text("2")));
    close();
    std::filesystem::permissions(scratch.path + "storage.dat", std::filesystem::perms::owner_read);
    open();
    EXPECT_THAT(formsOf(a), ElementsAre("edited 2", "made 1"));
    EXPECT_THAT(uiRecord.boxes, IsEmpty());
    close();
    std::filesystem::permissions(scratch.path + "storage.dat", std::filesystem::perms::owner_all);
    std::filesystem::permissions(file(), std::filesystem::perms::owner_read);
    open();
    EXPECT_EQ(uiRecord.boxes.size(), 1u);
    EXPECT_TRUE(edit(a, text("3")));
}

}  // namespace
}  // namespace numalink
