// Every file of tests/runs/ is a test of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "drawing/dot_fonts.h"
#include "emulator/run_file.h"
#include "platform/clock.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "text/token_table.h"

namespace numalink {

namespace {

// Waits for keys that a script puts in at once needn't be slept through.
struct RunClock {
    RunClock() {
        clockPort.sleepMilliseconds = [](std::uint64_t) {};
    }
    ~RunClock() { clockPort = systemClock; }
};

std::vector<std::string> runFiles() {
    std::vector<std::string> paths;
    for (const auto &entry : std::filesystem::directory_iterator(NUMALINK_RUNS_FOLDER)) {
        if (entry.path().extension() == ".run") paths.push_back(entry.path().stem().string());
    }
    std::ranges::sort(paths);
    return paths;
}

class Runs : public testing::TestWithParam<std::string> {
protected:
    static void SetUpTestSuite() {
        threadRole = ThreadRole::graphical;
        ASSERT_TRUE(tokenTableLoad());
        ASSERT_TRUE(loadLargeFont());
        ASSERT_TRUE(loadSmallFont());
        settingsLoad();
    }
    RunClock clock;
};

TEST_P(Runs, EndsAsItsFileTells) {
    const std::string differences = checkRunFile(std::string(NUMALINK_RUNS_FOLDER "/") + GetParam() + ".run");
    EXPECT_TRUE(differences.empty()) << differences;
}

INSTANTIATE_TEST_SUITE_P(All, Runs, testing::ValuesIn(runFiles()), [](const auto &run) { return run.param; });

}  // namespace

}  // namespace numalink
