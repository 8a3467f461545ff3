// The key pad: one table of keys with code, shape, place and legends, the hit test, and the keyboard's map onto it.
// Dots of the emulator's surface, 128 wide and 255 high, the display in its top 64 rows. Fixed; any thread.
#pragma once

#include <span>

namespace numalink {

inline constexpr int keypadWidth = 128, keypadHeight = 255;
inline constexpr int keypadTop = 64;     // the first row below the display
inline constexpr int stopKey = 34;       // AC/ON
inline constexpr int keyCornerSize = 5;  // of an outline's rounded corners

enum class KeyShape { none, upper, pad, arrowUp, arrowLeft, arrowDown, arrowRight, stop };

struct KeySize {
    int width = 0;
    int height = 0;
};
KeySize keySize(KeyShape shape);

struct KeyFace {
    int code = 0;  // two digits, column and row of the key matrix
    KeyShape shape = KeyShape::none;
    int x = 0, y = 0;
    const char *legend = "";  // UTF-8, on the key
    const char *shift = "";   // above it, with SHIFT
    const char *alpha = "";   // above it, with ALPHA: a letter
};

std::span<const KeyFace> keyFaces();  // by rising code
const KeyFace *keyFaceOf(int code);   // null for what is no key
int keyHit(int x, int y);             // the code of the key strictly around the place, 0 if none

// Keys of a computer's keyboard by neutral names, digits and signs by their characters, on the number pad or not.
// Letters by their place where the layout has none.
// clang-format off
enum class KeyboardKey {
    tab, enter, shift, space, left, up, right, down, openBracket, openParenthesis, closeParenthesis, comma, erase,
    a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w, x, y, z,
    digit0, digit1, digit2, digit3, digit4, digit5, digit6, digit7, digit8, digit9,
    point, multiply, divide, plus, minus,
    f1, f2, f3, f4, f5, f6,
    count
};
// clang-format on
int keyCodeOf(KeyboardKey key);

}  // namespace numalink
