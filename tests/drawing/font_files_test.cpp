// The font files that are built from the drawings: every code that calculators use has a character of its own, and the
// scalable face as Qt draws it shows the same dots.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPainterPath>
#include <QRawFont>
#include <algorithm>
#include <fstream>
#include <map>
#include <vector>

#include "calculator/charset.h"
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

// A glyph's dots as "#" and "." at this many pixels a dot; "?" is one that is filled in part.
std::string drawnDots(const QRawFont &face, quint32 glyph, int scale) {
    const QPainterPath path = face.pathForGlyph(glyph);
    std::string dots;
    for (int row = 0; row < largeCharHeight; row++) {
        for (int column = 0; column < largeCharWidth; column++) {
            const QRectF cell((column + 0.5) * scale, (row - largeCharHeight) * scale, scale, scale);
            const QRectF inner = cell.adjusted(0.1, 0.1, -0.1, -0.1);
            dots += path.contains(inner) ? '#' : path.intersects(inner) ? '?' : '.';
        }
    }
    return dots;
}

TEST(ScreenFace, ShowsEveryCodePointOfTheCharacterSetDotByDot) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int count = 1;
    char name[] = "test", *arguments[] = {name, nullptr};
    const QGuiApplication application(count, arguments);
    ASSERT_TRUE(loadLargeFont());
    const QRawFont face(QString(NUMALINK_SCREEN_FACE), 21, QFont::PreferNoHinting);
    ASSERT_TRUE(face.isValid());
    EXPECT_EQ(face.familyName(), "Numalink Screen");
    EXPECT_EQ(face.ascent() + face.descent(), 21);
    for (int code = 1; code < 256; code++) {
        const char32_t codePoint = charsetToUnicode(static_cast<std::uint8_t>(code));
        if (codePoint < ' ') continue;
        const QList<quint32> glyphs = face.glyphIndexesForString(QString::fromUcs4(&codePoint, 1));
        ASSERT_EQ(glyphs.size(), 1);
        EXPECT_NE(glyphs[0], 0u) << std::hex << code;
        EXPECT_EQ(face.advancesForGlyphIndexes(glyphs)[0].x(), 12) << std::hex << code;
        EXPECT_EQ(drawnDots(face, glyphs[0], 2), large(static_cast<std::uint8_t>(code))) << std::hex << code;
    }
}

}  // namespace
}  // namespace numalink
