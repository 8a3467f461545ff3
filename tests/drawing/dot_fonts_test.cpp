// The dot fonts: loading from good and damaged files, and where which dots go. The files that are built from the
// drawings: every code that calculators use has a character of its own, and the scalable face as Qt draws it shows the
// same dots.
#include "drawing/dot_fonts.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPainterPath>
#include <QRawFont>
#include <algorithm>
#include <fstream>
#include <map>

#include "calculator/charset.h"
#include "support/scratch_folder.h"
#include "support/ui_recorder.h"

namespace numalink {
namespace {

constexpr Color ink = 1, paper = 2, old = 3;

// "#" foreground, "." background, " " what was there before; a line a row.
std::string picture(const Surface &surface) {
    std::string text;
    for (int y = 0; y < surface.height; y++) {
        for (int x = 0; x < surface.width; x++)
            text += dotAt(surface, x, y) == ink ? '#' : dotAt(surface, x, y) == paper ? '.' : ' ';
        text += '\n';
    }
    return text;
}

// A small font of records of one width, every dot in the foreground, cut to size.
std::string solidSmallFont(int width, std::size_t size) {
    std::string file;
    for (int character = 0; character < 256; character++)
        file += static_cast<char>(width) + std::string(static_cast<std::size_t>(width) * 5, '\0');
    file.resize(size, '\7');
    return file;
}

ByteView view(const std::string &text) { return {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()}; }

struct FontFiles : testing::Test {
    std::string boxAfter(bool (*load)(), bool expected) const {
        uiRecord.boxes.clear();
        EXPECT_EQ(load(), expected);
        if (uiRecord.boxes.empty()) return "";
        EXPECT_EQ(uiRecord.boxes.size(), 1u);
        EXPECT_EQ(uiRecord.boxes[0].title, "Numalink Error");
        EXPECT_EQ(uiRecord.boxes[0].icon, BoxIcon::warning);
        return uiRecord.boxes[0].body;
    }

    EmptyProgramFolder folder;
    RecordedUi ui;
};

TEST_F(FontFiles, TellsAFontThatIsMissingOrOfAnotherLength) {
    EXPECT_EQ(boxAfter(loadLargeFont, false), "Cannot find large font file");
    folder.write("large.cft", std::string(8960, '\0'));
    EXPECT_EQ(boxAfter(loadLargeFont, true), "");
    for (const std::size_t size : {std::size_t{0}, std::size_t{8959}, std::size_t{8961}, std::size_t{2} << 20}) {
        folder.write("large.cft", std::string(size, '\1'));
        EXPECT_EQ(boxAfter(loadLargeFont, false), "Large Font file is corrupted") << size;
    }
    EXPECT_EQ(boxAfter(loadSmallFont, false), "Cannot find small font file");
    const std::size_t whole = 256 * 16;
    folder.write("small.cft", solidSmallFont(3, whole + 3));
    EXPECT_EQ(boxAfter(loadSmallFont, true), "");
    for (const std::size_t size : {std::size_t{0}, whole - 1, whole - 16}) {
        folder.write("small.cft", solidSmallFont(3, size));
        EXPECT_EQ(boxAfter(loadSmallFont, false), "Small Font file is corrupted") << size;
    }
    folder.write("small.cft", solidSmallFont(6, 256 * 31));
    EXPECT_EQ(boxAfter(loadSmallFont, false), "Small Font file is corrupted");
}

TEST_F(FontFiles, KeepsWhatADamagedFileHasAndNothingOfAnEarlierOne) {
    setSmallFont(view(solidSmallFont(5, 256 * 26)));
    EXPECT_FALSE(setSmallFont(view(solidSmallFont(2, 66 * 11))));
    Surface surface(4, 1, old);
    EXPECT_EQ(drawSmallChar(surface, 0, 0, 65, ink, paper, true), 3);
    EXPECT_EQ(drawSmallChar(surface, 3, 0, 66, ink, paper, true), 1);
    EXPECT_EQ(picture(surface), "##..\n");

    setLargeFont(view(std::string(8960, '\1')));
    EXPECT_FALSE(setLargeFont(view(std::string(35 * 65 + 7, '\1'))));
    Surface large(5, 1, old);
    drawLargeChar(large, 0, 0, 65, ink, paper);
    EXPECT_EQ(picture(large), "#....\n");
}

TEST(DotFonts, ReadsDotsColumnByColumnInOppositeSenses) {
    std::string largeFile(8960, '\0');
    largeFile[35 * 0xC8 + 7 * 1 + 3] = '\1';
    largeFile[35 * 0xC8 + 7 * 4 + 6] = '\5';
    ASSERT_TRUE(setLargeFont(view(largeFile)));
    Surface large(7, 7, old);
    drawLargeChar(large, 0, 0, 0xC8, ink, paper);
    EXPECT_EQ(picture(large), ".....  \n.....  \n.....  \n.#...  \n.....  \n.....  \n....#  \n");

    std::string smallFile = solidSmallFont(2, 256 * 11);
    smallFile[11 * 0xC8 + 1 + 5 * 1 + 3] = '\1';
    ASSERT_TRUE(setSmallFont(view(smallFile)));
    Surface small(4, 5, old);
    EXPECT_EQ(drawSmallChar(small, 0, 0, 0xC8, ink, paper, false), 3);
    EXPECT_EQ(picture(small), "##  \n##  \n##  \n#.  \n##  \n");
}

TEST(DotFonts, PutsAGapAfterEachSmallCharacterButTheLast) {
    std::string file = solidSmallFont(2, 256 * 11);
    file = file.substr(0, 11 * 'b') + '\0' + file.substr(11 * 'b' + 11);  // "b" has no glyph
    ASSERT_TRUE(setSmallFont(view(file)));
    Surface surface(10, 1, old);
    drawSmallText(surface, 1, 0, "abc", ink, paper);
    EXPECT_EQ(picture(surface), " ##..##   \n");
    surface = Surface(4, 1, old);
    drawSmallText(surface, 0, 0, std::string_view("a\0a", 3), ink, paper);
    EXPECT_EQ(picture(surface), "##  \n");
}

TEST(DotFonts, EndsDigitsTwoDotsLeftOfTheRightEdgeGiven) {
    Surface surface(17, 5, old);
    drawDigitText(surface, 17, 0, "-x4e", ink);
    EXPECT_EQ(picture(surface),
              "         # # ### \n"
              "         # # #   \n"
              " ###     # # ### \n"
              "         ### #   \n"
              "           # ### \n");
}

TEST(DotFonts, DropsWhatLiesOutsideTheSurface) {
    setLargeFont(view(std::string(8960, '\1')));
    Surface surface(3, 3, old);
    drawLargeText(surface, -10, -5, "abc", ink, paper);
    EXPECT_EQ(picture(surface), "# #\n# #\n   \n");
}

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
