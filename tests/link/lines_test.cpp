// Every recording of tests/lines, played as it is, byte by byte alone, and with each answer at the last moment.
#include <gtest/gtest.h>

#include <filesystem>

#include "link/line_player.h"
#include "settings/language_table.h"

namespace numalink {

namespace {

struct Recordings : testing::TestWithParam<PlayMode> {};

TEST_P(Recordings, pass) {
    languageLoad("English", "English");
    int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator(NUMALINK_LINES)) {
        EXPECT_EQ(playLineFile(entry.path(), GetParam()), "");
        count++;
    }
    EXPECT_GE(count, 80);
}

INSTANTIATE_TEST_SUITE_P(InEachMode, Recordings, testing::Values(PlayMode::whole, PlayMode::alone, PlayMode::late));

}  // namespace

}  // namespace numalink
