// Limits of the ProgramTable, and bytes that aren't a sound image.
#include "emulator/programs.h"

#include <gtest/gtest.h>

namespace numalink {

namespace {

const LoadedProgram &added(const Bytes &image) {
    programsClear();
    EXPECT_TRUE(programAdd("A", image));
    return loadedProgram(0);
}

}  // namespace

TEST(Programs, EndInTheirMarkWhateverTheBytes) {
    const Bytes images[] = {{},
                            {':'},
                            {':', 0xFF},
                            {':', 'A', 0xFF},
                            {':', 'A', 0xFF, 0x12},
                            {':', 'A'},
                            {':', 0x7F},
                            {':', '"', 'A', 0xFF, 0},
                            {':', 0xF7, 0xFF},
                            {':', '1', 0x0F, 0xFF, 0},
                            {':', '.', 0xFF, 0}};
    for (const Bytes &image : images) {
        const LoadedProgram &program = added(image);
        ASSERT_GE(program.cellCount, 1);
        const ProgramCell &last = program.cells[program.cellCount - 1];
        EXPECT_TRUE(isToken(last, token::endOfProgram));
        for (int i = 0; i + 1 < program.cellCount; i++) EXPECT_FALSE(isToken(program.cells[i], token::endOfProgram));
    }
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
