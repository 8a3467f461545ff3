// The key table and the keyboard's map.
#include "emulator/machine/keypad.h"

#include <algorithm>
#include <array>

namespace numalink {

namespace {

using enum KeyShape;

// By code, so that a search by place and one by code read alike.
constexpr KeyFace faces[] = {
    {25, upper, 107, 153, "→", "", "L"},
    {26, upper, 107, 133, "tan", "tan⁻¹", "F"},
    {27, arrowRight, 117, 98, "▶"},
    {28, arrowUp, 97, 91, "▲"},
    {29, upper, 107, 70, "F6", "G↔T"},
    {31, pad, 104, 239, "EXE", "↵"},
    {32, pad, 104, 217, "−", "]", "Y"},
    {33, pad, 104, 195, "÷", "}", "T"},
    {34, stop, 104, 172, "AC/ON", "OFF"},
    {35, upper, 87, 153, ",", "", "K"},
    {36, upper, 87, 133, "cos", "cos⁻¹", "E"},
    {37, arrowDown, 97, 116, "▼"},
    {38, arrowLeft, 90, 98, "◀"},
    {39, upper, 87, 70, "F5", "G-Solv"},
    {41, pad, 79, 239, "(−)", "Ans"},
    {42, pad, 79, 217, "+", "[", "X"},
    {43, pad, 79, 195, "×", "{", "S"},
    {44, pad, 79, 172, "DEL", "INS"},
    {45, upper, 65, 153, ")", "x⁻¹", "J"},
    {46, upper, 65, 133, "sin", "sin⁻¹", "D"},
    {47, upper, 65, 112, "EXIT", "QUIT"},
    {48, upper, 65, 92, "MENU", "SET UP"},
    {49, upper, 65, 70, "F4", "Sketch"},
    {51, pad, 53, 239, "EXP", "π"},
    {52, pad, 53, 217, "3", "", "W"},
    {53, pad, 53, 195, "6", "", "R"},
    {54, pad, 53, 172, "9", "", "O"},
    {55, upper, 45, 153, "(", "∛", "I"},
    {56, upper, 45, 133, "ln", "eˣ", "C"},
    {57, upper, 45, 112, "∧", "ˣ√", "θ"},
    {58, upper, 45, 92, "VARS", "PRGM"},
    {59, upper, 45, 70, "F3", "V-Win"},
    {61, pad, 27, 239, ".", "=", "␣"},
    {62, pad, 27, 217, "2", "", "V"},
    {63, pad, 27, 195, "5", "", "Q"},
    {64, pad, 27, 172, "8", "", "N"},
    {65, upper, 22, 153, "F↔D", "", "H"},
    {66, upper, 22, 133, "log", "10ˣ", "B"},
    {67, upper, 22, 112, "x²", "√", "r"},
    {68, upper, 22, 92, "OPTN"},
    {69, upper, 22, 70, "F2", "Zoom"},
    {71, pad, 1, 239, "0", "", "Z"},
    {72, pad, 1, 217, "1", "", "U"},
    {73, pad, 1, 195, "4", "", "P"},
    {74, pad, 1, 172, "7", "", "M"},
    {75, upper, 1, 153, "a b/c", "d/c", "G"},
    {76, upper, 1, 133, "X,θ,T", "", "A"},
    {77, upper, 1, 112, "ALPHA", "A-LOCK"},
    {78, upper, 1, 92, "SHIFT"},
    {79, upper, 1, 70, "F1", "Trace"},
};
static_assert(std::ranges::is_sorted(faces, {}, &KeyFace::code));

constexpr KeySize sizes[] = {{0, 0}, {20, 12}, {22, 17}, {20, 8}, {8, 20}, {20, 8}, {8, 20}, {22, 17}};

constexpr std::array<int, static_cast<std::size_t>(KeyboardKey::count)> keyboardMap = {
    25, 31, 78, 61, 38, 28, 27, 37, 45, 55, 45, 35, 44,                                                      // tab …
    76, 66, 56, 46, 36, 26, 75, 65, 55, 45, 35, 25, 74, 64, 54, 73, 63, 53, 43, 33, 72, 62, 52, 42, 32, 71,  // a to z
    71, 72, 62, 52, 73, 63, 53, 74, 64, 54, 61, 43, 33, 42, 32,  // digits and signs
    79, 69, 59, 49, 39, 29,                                      // f1 to f6
};

}  // namespace

KeySize keySize(KeyShape shape) { return sizes[static_cast<std::size_t>(shape)]; }

std::span<const KeyFace> keyFaces() { return faces; }

const KeyFace *keyFaceOf(int code) {
    const auto *found = std::ranges::lower_bound(faces, code, {}, &KeyFace::code);
    return found != std::end(faces) && found->code == code ? found : nullptr;
}

int keyHit(int x, int y) {
    for (const KeyFace &face : faces) {
        const KeySize size = keySize(face.shape);
        if (x > face.x && x < face.x + size.width && y > face.y && y < face.y + size.height) return face.code;
    }
    return 0;
}

int keyCodeOf(KeyboardKey key) { return keyboardMap[static_cast<std::size_t>(key)]; }

}  // namespace numalink
