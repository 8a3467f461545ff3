// Every recording of tests/lines, played as it is, byte by byte alone, and with each answer at the last moment.
#include <gtest/gtest.h>

#include "link/line_player.h"
#include "platform/program_folder.h"
#include "settings/language_table.h"

namespace numalink {

namespace {

struct Recordings : testing::Test {
    static void playAll(PlayMode mode) {
        languageLoad("English", "English");
        const auto paths = lineScriptPaths();
        EXPECT_GE(paths.size(), 80u);
        for (const std::string &path : paths) EXPECT_EQ(playLineScript(readLineScript(path), mode), "");
    }
};

TEST_F(Recordings, passAsTheyAre) { playAll(PlayMode::whole); }
TEST_F(Recordings, passWithEveryByteAlone) { playAll(PlayMode::alone); }
TEST_F(Recordings, passWithAnswersJustBeforeTheirTimeOut) { playAll(PlayMode::late); }

}  // namespace

}  // namespace numalink
