// Expressions against what they leave, and the limits of the ProgramTable. The values of functions and operators, their
// order, the names of variables and the limits of expressions are those of the runs.
#include "emulator/expressions/evaluator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "emulator/expressions.h"
#include "emulator/machine/programs.h"
#include "support/ui_recorder.h"

namespace numalink {

TEST(Evaluator, LeavesWhatTheTableOfExpressionsTells) {
    const RecordedUi ui;
    std::ifstream file(NUMALINK_EXPRESSIONS);
    int count = 0;
    for (std::string line; std::getline(file, line);) {
        const std::size_t colon = line.find(':');
        if (line.empty() || line[0] == '#' || colon == line.npos) continue;
        const std::string words = line.substr(0, colon);
        EXPECT_EQ(evaluated(words), line.substr(std::min(colon + 2, line.size()))) << words;
        count++;
    }
    EXPECT_GT(count, 120);
    EXPECT_EQ(uiRecord.lines, std::vector<std::string>{"box 64 / 2"}) << "a matrix of 301 columns";
}

TEST(Programs, NamesAreCutAndTheTableEnds) {
    programsClear();
    for (int i = 0; i < programLimit; i++) EXPECT_TRUE(programAdd("ABCDEFGHIJKLMN", Bytes{':', 0xFF, 0}));
    EXPECT_FALSE(programAdd("B", Bytes{':', 0xFF, 0}));
    EXPECT_EQ(programCount(), programLimit);
    EXPECT_EQ(loadedProgram(0).name, "ABCDEFGHIJK");
    programsClear();
    EXPECT_EQ(programCount(), 0);
}

TEST(Programs, RoomForCellsEnds) {
    Bytes large(600000, 'A');
    large[0] = ':';
    large[1] = '"';
    EXPECT_TRUE(programAdd("A", large));
    EXPECT_FALSE(programAdd("B", large));
    EXPECT_TRUE(programAdd("C", Bytes{':', 'A', 0xFF, 0}));
    EXPECT_EQ(programCount(), 2);
    programsClear();
}

}  // namespace numalink
