#include "drawing/dot_fonts.h"

#include <algorithm>
#include <array>
#include <string>

#include "platform/files.h"
#include "platform/program_folder.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr int characterCount = 256;
constexpr std::size_t largeGlyphSize = std::size_t{largeCharWidth} * largeCharHeight;
constexpr std::size_t smallGlyphSize = std::size_t{smallCharWidthLimit} * smallCharHeight;
static_assert(characterCount * largeGlyphSize == largeFontSize);

// Far more than either font; a file beyond it isn't read at all.
constexpr std::uint64_t fontFileLimit = 1 << 20;

// As it lies in the file, column by column: 0 is a dot in the foreground, the opposite of the large font.
struct SmallGlyph {
    std::int32_t width = 0;
    std::array<std::uint8_t, smallGlyphSize> dots{};
};

// Written by the loading on the graphical thread alone, before any other thread draws.
std::array<std::uint8_t, largeFontSize> largeFont;  // column by column, 0 is background
std::array<SmallGlyph, characterCount> smallFont;

constexpr int digitWidth = 3, digitHeight = 5, digitAdvance = 4, digitCount = 13;
// Row by row, a blank between rows.
constexpr std::array<std::string_view, digitCount> digitFont{
    "### #.# #.# #.# ###",  // 0
    ".#. .#. .#. .#. .#.",  // 1
    "### ..# ### #.. ###",  // 2
    "### ..# ### ..# ###",  // 3
    "#.# #.# #.# ### ..#",  // 4
    "### #.. ### ..# ###",  // 5
    "### #.. ### #.# ###",  // 6
    "### #.# ..# ..# ..#",  // 7
    "### #.# ### #.# ###",  // 8
    "### #.# ### ..# ###",  // 9
    "### #.. ### #.. ###",  // E
    "... ... ... ##. ##.",  // .
    "... ... ### ... ...",  // -
};
static_assert(std::ranges::all_of(digitFont,
                                  [](auto rows) { return rows.size() == (digitWidth + 1) * digitHeight - 1; }));

int digitIndex(char character) {
    if (character >= '0' && character <= '9') return character - '0';
    if (character == 'E' || character == 'e') return 10;
    if (character == '.') return 11;
    return character == '-' ? 12 : -1;
}

bool fontFault(const std::string &wording) {
    tellFixed(Text::none, wording, errorTitle);
    return false;
}

bool loadFont(const std::string &name, bool (*setFont)(ByteView), const std::string &missing,
              const std::string &damaged) {
    Bytes file;
    const FileResult result = readWholeFile(dataPath(name), file, fontFileLimit);
    const bool opened = result == FileResult::done || result == FileResult::tooLarge;
    const bool whole = setFont(file);
    if (!opened) return fontFault(missing);
    return whole || fontFault(damaged);
}

// A text ends at its first zero.
std::string_view upToZero(std::string_view text) { return text.substr(0, text.find('\0')); }

// Beyond the right or lower edge nothing of a character shows; its place needn't be counted up any further then.
bool beyond(const Surface &surface, int x, int y) { return x >= surface.width || y >= surface.height; }

}  // namespace

bool loadLargeFont() {
    return loadFont("large.cft", setLargeFont, "Cannot find large font file", "Large Font file is corrupted");
}

bool loadSmallFont() {
    return loadFont("small.cft", setSmallFont, "Cannot find small font file", "Small Font file is corrupted");
}

bool setLargeFont(ByteView file) {
    largeFont.fill(0);
    std::copy_n(file.begin(), std::min(file.size(), largeFontSize), largeFont.begin());
    return file.size() == largeFontSize;
}

// The record that ends early keeps what is there of it.
bool setSmallFont(ByteView file) {
    smallFont.fill({});
    std::size_t at = 0;
    for (SmallGlyph &glyph : smallFont) {
        if (at == file.size() || file[at] > smallCharWidthLimit) return false;
        glyph.width = file[at++];
        const std::size_t size = static_cast<std::size_t>(glyph.width) * smallCharHeight;
        const std::size_t present = std::min(size, file.size() - at);
        std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(at), present, glyph.dots.begin());
        if (present < size) return false;
        at += size;
    }
    return true;
}

void drawLargeChar(Surface &surface, int x, int y, std::uint8_t character, Color foreground, Color background) {
    if (beyond(surface, x, y)) return;
    std::size_t place = character * largeGlyphSize;
    for (int column = 0; column < largeCharWidth; column++) {
        for (int row = 0; row < largeCharHeight; row++)
            putDot(surface, x + column, y + row, largeFont[place++] != 0 ? foreground : background);
    }
}

void drawLargeText(Surface &surface, int x, int y, std::string_view text, Color foreground, Color background) {
    for (const char character : upToZero(text)) {
        if (beyond(surface, x, y)) return;
        drawLargeChar(surface, x, y, static_cast<std::uint8_t>(character), foreground, background);
        x += largeCharAdvance;
    }
}

int drawSmallChar(Surface &surface, int x, int y, std::uint8_t character, Color foreground, Color background,
                  bool withGap) {
    const SmallGlyph &glyph = smallFont[character];
    if (beyond(surface, x, y)) return glyph.width + 1;
    std::size_t place = 0;
    for (int column = 0; column < glyph.width; column++) {
        for (int row = 0; row < smallCharHeight; row++)
            putDot(surface, x + column, y + row, glyph.dots[place++] == 0 ? foreground : background);
    }
    for (int row = 0; withGap && row < smallCharHeight; row++) putDot(surface, x + glyph.width, y + row, background);
    return glyph.width + 1;
}

void drawSmallText(Surface &surface, int x, int y, std::string_view text, Color foreground, Color background) {
    text = upToZero(text);
    for (std::size_t i = 0; i < text.size(); i++) {
        if (beyond(surface, x, y)) return;
        const bool withGap = i + 1 < text.size();
        x += drawSmallChar(surface, x, y, static_cast<std::uint8_t>(text[i]), foreground, background, withGap);
    }
}

void drawDigit(Surface &surface, int x, int y, int index, Color color) {
    if (index < 0 || index >= digitCount || beyond(surface, x, y)) return;
    const std::string_view dots = digitFont[static_cast<std::size_t>(index)];
    for (int place = 0; place < static_cast<int>(dots.size()); place++) {
        if (dots[static_cast<std::size_t>(place)] == '#')
            putDot(surface, x + place % (digitWidth + 1), y + place / (digitWidth + 1), color);
    }
}

void drawDigitText(Surface &surface, int rightX, int y, std::string_view text, Color color) {
    text = upToZero(text);
    std::int64_t x = rightX - static_cast<std::int64_t>(text.size()) * digitAdvance;
    for (const char character : text) {
        if (x > -digitWidth && x < surface.width)
            drawDigit(surface, static_cast<int>(x), y, digitIndex(character), color);
        x += digitAdvance;
    }
}

}  // namespace numalink
