// The calculators' dot fonts and the tiny digits, drawn dot by dot on any surface. Loaded once on the graphical
// thread, then only read, by any thread. Places in dots, (x, y) the top left dot of the first character. Text is
// calculator codes up to the first zero. Dots outside the surface are dropped.
#pragma once

#include <string_view>

#include "platform/bytes.h"
#include "platform/surface.h"

namespace numalink {

inline constexpr std::size_t largeFontSize = 8960;  // bytes of large.cft: 256 glyphs of 5 columns by 7 rows
inline constexpr int largeCharWidth = 5, largeCharHeight = 7, largeCharAdvance = 6;
inline constexpr int smallCharHeight = 5, smallCharWidthLimit = 5;

// From the program folder, with a box (fixed wording, title "Numalink Error") and false when the file is missing or
// damaged. Characters that weren't read are blank; a small record that ends early keeps what is there of it, and a
// width above 5 counts as damage. A file above 1 MiB is damaged and not read.
bool loadLargeFont();
bool loadSmallFont();
// The same from bytes; false when damaged.
bool setLargeFont(ByteView file);
bool setSmallFont(ByteView file);

void drawLargeChar(Surface &surface, int x, int y, std::uint8_t character, Color foreground, Color background);
void drawLargeText(Surface &surface, int x, int y, std::string_view text, Color foreground, Color background);
// The advance: the glyph's width + 1.
int drawSmallChar(Surface &surface, int x, int y, std::uint8_t character, Color foreground, Color background,
                  bool withGap);
void drawSmallText(Surface &surface, int x, int y, std::string_view text, Color foreground, Color background);
void drawDigit(Surface &surface, int x, int y, int index, Color color);  // index 0 to 12: 0-9, E, ".", "-"
void drawDigitText(Surface &surface, int rightX, int y, std::string_view text, Color color);

}  // namespace numalink
