// The font files that are built from the drawings: every code that calculators use has a character of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <vector>

#include "drawing/dot_fonts.h"
#include "platform/program_folder.h"

namespace numalink {
namespace {

std::vector<std::uint8_t> usedCodes() {
    std::ifstream file(NUMALINK_DATA "/charset.tsv");
    std::vector<std::uint8_t> codes;
    std::string line;
    std::getline(file, line);
    while (std::getline(file, line)) {
        const std::string kind = line.substr(line.rfind('\t') + 1);
        if (kind != "free" && kind != "none") codes.push_back(static_cast<std::uint8_t>(std::stoi(line, nullptr, 16)));
    }
    return codes;
}

std::string large(std::uint8_t code) {
    Surface surface(5, 7, 0);
    drawLargeChar(surface, 0, 0, code, 1, 0);
    std::string dots;
    for (const Color dot : surface.dots) dots += dot == 1 ? '#' : '.';
    return dots;
}

TEST(BuiltFonts, DrawEveryUsedCodeAndNoTwoOfTheLargeFontAlike) {
    ASSERT_TRUE(loadLargeFont());
    ASSERT_TRUE(loadSmallFont());
    std::map<std::string, std::uint8_t> seen;
    for (const std::uint8_t code : usedCodes()) {
        const std::string dots = large(code);
        EXPECT_EQ(dots.find('#') == std::string::npos, code == ' ') << std::hex << int{code};
        const auto [other, isNew] = seen.emplace(dots, code);
        EXPECT_TRUE(isNew) << std::hex << int{code} << " looks like " << int{other->second};
        Surface surface(6, 5, 0);
        EXPECT_GE(drawSmallChar(surface, 0, 0, code, 1, 0, false), 2) << std::hex << int{code};
        const bool hasDot = std::ranges::find(surface.dots, Color{1}) != surface.dots.end();
        EXPECT_EQ(hasDot, code != ' ') << std::hex << int{code};
    }
    EXPECT_EQ(seen.size(), 195u);  // 194 and the blank
}

}  // namespace
}  // namespace numalink
