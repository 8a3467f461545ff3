#include "platform/event_log.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "support/scratch_folder.h"

namespace numalink {

namespace {

std::string textOf(const std::string &line) { return line.substr(9); }  // behind "HH:MM:SS "

struct EventLogTest : testing::Test {
    void SetUp() override { forgetEvents(); }
    void TearDown() override { forgetEvents(); }
    const ScratchFolder folder;
    const std::string path = folder.path + "running.log";
};

}  // namespace

TEST_F(EventLogTest, KeepsTheLastOfManyThreadsCleanAndCut) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; i++) {
        threads.emplace_back([] {
            for (int event = 0; event < 100; event++) noteEvent("event");
        });
    }
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(eventLines().size(), eventLimit);
    noteEvent("two\nlines");
    EXPECT_EQ(textOf(eventLines().back()), "two lines");
    noteEvent(std::string(eventTextLimit - 1, 'x') + "\xC3\xA9");
    EXPECT_EQ(textOf(eventLines().back()), std::string(eventTextLimit - 1, 'x'));
}

TEST_F(EventLogTest, OnlyARunThatDidNotEndLeavesItsFile) {
    EXPECT_FALSE(eventLogKeep(path));
    noteEvent("one");
    eventLogRelease();
    EXPECT_FALSE(std::filesystem::exists(path));

    EXPECT_FALSE(eventLogKeep(path));
    for (int i = 0; i < 450; i++) noteEvent("event " + std::to_string(i));
    const std::string asItDied = folder.read("running.log");
    EXPECT_FALSE(eventLogKeep(path)) << "the file of a run is its own";
    eventLogRelease();
    folder.write("running.log", asItDied);
    const auto left = eventLogKeep(path);
    ASSERT_TRUE(left);
    ASSERT_EQ(left->size(), eventLimit);
    EXPECT_EQ(textOf(left->front()), "event 250");
    EXPECT_EQ(textOf(left->back()), "event 449");
    eventLogRelease();

    // Damaged, foreign, empty.
    folder.write("running.log", asItDied.substr(0, 400).replace(20, 3, "x\x01y"));
    EXPECT_TRUE(eventLogKeep(path));
    eventLogRelease();
    folder.write("running.log", "my own");
    EXPECT_FALSE(eventLogKeep(path));
    eventLogRelease();
    EXPECT_EQ(folder.read("running.log"), "my own");
}

}  // namespace numalink
