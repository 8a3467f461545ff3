// The calculator as one picture of few colours: the display, and below it the key pad, drawn from the table of keys in
// the dots of the display. For files; the window draws its own. Any thread, once the dot fonts are loaded.
#pragma once

#include "platform/surface.h"

namespace numalink {

namespace padColor {
inline constexpr Color body = 0x283549, dark = 0x3C434E, light = 0xE4E8EC, red = 0xB52A24, exe = 0x2560AE;
inline constexpr Color shift = 0xF2C12E, alpha = 0xFF9288, ink = 0x141A22, paper = 0xFFFFFF, held = 0xFFFF64;
}  // namespace padColor
inline constexpr Color padColors[] = {padColor::body,  padColor::dark,  padColor::light, padColor::red,
                                      padColor::exe,   padColor::shift, padColor::alpha, padColor::ink,
                                      padColor::paper, padColor::held};

// keypadWidth by keypadHeight dots, with the key of that code held; 0: none.
Surface keypadPicture(const Surface &display, int heldKey);

}  // namespace numalink
