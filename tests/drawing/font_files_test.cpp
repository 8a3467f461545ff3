// The font files that are built from the drawings: every code that calculators use has a character of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>

#include "drawing/dot_fonts.h"
#include "platform/program_folder.h"

namespace numalink {
namespace {

struct CharsetRow {
    std::uint8_t code;
    std::string looksLike, kind;

    bool used() const { return kind != "free" && kind != "none"; }
};

std::vector<CharsetRow> charsetRows() {
    std::ifstream file(NUMALINK_DATA "/charset.tsv");
    std::vector<CharsetRow> rows;
    std::string line, code, unicode;
    std::getline(file, line);
    while (std::getline(file, line)) {
        std::istringstream fields(line);
        CharsetRow row;
        std::getline(fields, code, '\t');
        std::getline(fields, unicode, '\t');
        std::getline(fields, row.looksLike, '\t');
        std::getline(fields, row.kind);
        row.code = static_cast<std::uint8_t>(std::stoi(code, nullptr, 16));
        rows.push_back(row);
    }
    return rows;
}

std::string large(std::uint8_t code) {
    Surface surface(5, 7, 0);
    drawLargeChar(surface, 0, 0, code, 1, 0);
    std::string dots;
    for (const Color dot : surface.dots) dots += dot == 1 ? '#' : '.';
    return dots;
}

struct BuiltFonts : testing::Test {
    void SetUp() override {
        ASSERT_TRUE(loadLargeFont());
        ASSERT_TRUE(loadSmallFont());
        rows = charsetRows();
        ASSERT_EQ(rows.size(), 256u);
    }

    std::vector<CharsetRow> rows;
};

TEST_F(BuiltFonts, DrawEveryUsedCodeInTheLargeFontAndNoTwoAlike) {
    std::map<std::string, std::uint8_t> seen;
    for (const CharsetRow &row : rows) {
        if (!row.used()) continue;
        const std::string dots = large(row.code);
        EXPECT_EQ(dots.find('#') == std::string::npos, row.code == ' ') << std::hex << int{row.code};
        const auto [other, isNew] = seen.emplace(dots, row.code);
        EXPECT_TRUE(isNew) << std::hex << int{row.code} << " looks like " << int{other->second};
    }
    EXPECT_EQ(seen.size(), 195u);  // 194 and the blank
}

TEST_F(BuiltFonts, DrawEveryUsedCodeInTheSmallFont) {
    for (const CharsetRow &row : rows) {
        if (!row.used()) continue;
        Surface surface(6, 5, 0);
        const int advance = drawSmallChar(surface, 0, 0, row.code, 1, 0, false);
        EXPECT_GE(advance, 2) << std::hex << int{row.code};
        const bool hasDot = std::ranges::find(surface.dots, Color{1}) != surface.dots.end();
        EXPECT_EQ(hasDot, row.code != ' ') << std::hex << int{row.code};
    }
}

TEST_F(BuiltFonts, GiveACodeTheDrawingThatTheTableSaysItShares) {
    int shared = 0;
    for (const CharsetRow &row : rows) {
        for (const std::string mark : {"same as ", "drawn, as "}) {
            const std::size_t at = row.looksLike.find(mark);
            if (at == std::string::npos || row.looksLike.find("same as 66 D") != std::string::npos) continue;
            const int other = std::stoi(row.looksLike.substr(at + mark.size(), 2), nullptr, 16);
            EXPECT_EQ(large(row.code), large(static_cast<std::uint8_t>(other))) << std::hex << int{row.code};
            shared++;
        }
    }
    EXPECT_EQ(shared, 24);
}

}  // namespace
}  // namespace numalink
