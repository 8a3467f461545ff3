// Limits of the ProgramTable, bytes that aren't a sound image, and names.
#include "emulator/programs.h"

#include <gtest/gtest.h>

#include "emulator/statements.h"

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

TEST(Programs, ALoneFirstByteOfAPairIsNoPair) {
    const LoadedProgram &program = added({':', 'A', 0xF7});
    ASSERT_EQ(program.cellCount, 3);
    EXPECT_FALSE(isToken(program.cells[1], {0xF7, 0x00}));
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
    Bytes large(400000, 'A');
    large[0] = ':';
    EXPECT_TRUE(programAdd("A", large));
    EXPECT_TRUE(programAdd("B", large));
    EXPECT_FALSE(programAdd("C", large));
    EXPECT_EQ(programCount(), 2);
    programsClear();
}

TEST(Programs, NamesCompareWithoutCaseAndWithEitherHyphen) {
    EXPECT_TRUE(sameProgramName("a-b",
                                "A\x99"
                                "B"));
    EXPECT_FALSE(sameProgramName("AB", "ABC"));
    EXPECT_FALSE(sameProgramName("A", "B"));
    EXPECT_TRUE(sameProgramName("", ""));
}

TEST(Programs, GraphFunctionsAreNamedExactly) {
    programsClear();
    programAdd("F1", Bytes{':', 0xFF, 0});
    EXPECT_EQ(findGraphFunction(1), -1);
    programAdd("f1", Bytes{':', 0xFF, 0});
    EXPECT_EQ(findGraphFunction(1), 1);
    programsClear();
}

// Prefixes work only for later rows, so that the order of the table is part of the language.
TEST(Statements, TheTableHasTheOrderOfTesting) {
    const auto rows = statementRows();
    const auto indexOf = [&](Token which) {
        for (std::size_t i = 0; i < rows.size(); i++) {
            if (rows[i].kind == CellKind::token && rows[i].token == which) return i;
        }
        return rows.size();
    };
    const Token order[] = {{0x27}, {0xD9}, {0xE2}, {0xE8}, {0xE9}, {0xEB}, {0xEC}, {0x7F, 0x34}, {0x7F, 0x47}, {0xD1}};
    for (std::size_t i = 0; i < std::size(order); i++) EXPECT_EQ(indexOf(order[i]), i);
    for (std::size_t i = 14; i + 1 < rows.size(); i++) EXPECT_LT(rows[i].token.second, rows[i + 1].token.second);
    EXPECT_EQ(rows[12].kind, CellKind::string);
    EXPECT_EQ(rows.size(), 49u);
}

}  // namespace numalink
