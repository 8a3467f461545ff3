// The scalable face as Qt draws it, against the dot font it was made with.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPainterPath>
#include <QRawFont>

#include "calculator/charset.h"
#include "drawing/dot_fonts.h"

namespace numalink {
namespace {

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

std::string fontDots(std::uint8_t code) {
    Surface surface(largeCharWidth, largeCharHeight, 0);
    drawLargeChar(surface, 0, 0, code, 1, 0);
    std::string dots;
    for (const Color dot : surface.dots) dots += dot == 1 ? '#' : '.';
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
        EXPECT_EQ(drawnDots(face, glyphs[0], 2), fontDots(static_cast<std::uint8_t>(code))) << std::hex << code;
    }
}

}  // namespace
}  // namespace numalink
