// Limits of the ProgramTable.
#include "emulator/programs.h"

#include <gtest/gtest.h>

namespace numalink {

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
    programsClear();
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
