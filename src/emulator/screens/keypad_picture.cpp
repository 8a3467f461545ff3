#include "emulator/screens/keypad_picture.h"

#include <algorithm>
#include <string>

#include "calculator/charset.h"
#include "drawing/dot_fonts.h"
#include "emulator/machine/keypad.h"

namespace numalink {

namespace {

constexpr int shiftKey = 78, alphaKey = 77, exeKey = 31;

Color faceColor(const KeyFace &face, int heldKey) {
    if (face.code == heldKey) return padColor::held;
    if (face.shape == KeyShape::stop) return padColor::red;
    if (face.code == exeKey) return padColor::exe;
    if (face.code == shiftKey) return padColor::shift;
    if (face.code == alphaKey) return padColor::alpha;
    return face.shape == KeyShape::pad ? padColor::light : padColor::dark;
}

Color legendColor(Color face) {
    const bool isDark = face == padColor::red || face == padColor::exe || face == padColor::dark;
    return isDark ? padColor::paper : padColor::ink;
}

// With its corners off.
void drawFace(Surface &surface, const KeyFace &face, Color color) {
    const KeySize size = keySize(face.shape);
    const int right = face.x + size.width, bottom = face.y + size.height;
    fillRectangle(surface, face.x + 1, face.y, right - 1, bottom, color);
    fillRectangle(surface, face.x, face.y + 1, right, bottom - 1, color);
}

// A triangle that points to where the key moves.
void drawArrow(Surface &surface, const KeyFace &face, Color color) {
    const KeySize size = keySize(face.shape);
    const int x = face.x + size.width / 2, y = face.y + size.height / 2;
    constexpr int reach = 2;
    for (int step = -reach; step <= reach; step++) {
        const bool isBackward = face.shape == KeyShape::arrowUp || face.shape == KeyShape::arrowLeft;
        const int half = isBackward ? (step + reach) / 2 : (reach - step) / 2;
        for (int aside = -half; aside <= half; aside++) {
            const bool isUpright = face.shape == KeyShape::arrowUp || face.shape == KeyShape::arrowDown;
            isUpright ? putDot(surface, x + aside, y + step, color) : putDot(surface, x + step, y + aside, color);
        }
    }
}

int widthOf(const std::string &text) {
    Surface beside(1, 1);
    int width = 0;
    for (const char c : text) width += drawSmallChar(beside, 2, 2, static_cast<std::uint8_t>(c), 0, 0, true);
    return width - 1;
}

// Legends that the small font lacks a sign for, or that are wider than their key.
struct ShortLegend {
    int code;
    const char *text;
};
constexpr ShortLegend shortLegends[] = {{34, "AC"}, {57, "^"}, {65, "F-D"}, {75, "ab/c"}, {76, "X\xCE\xB8T"}};

std::string legendOf(const KeyFace &face) {
    const auto *const found = std::ranges::find(shortLegends, face.code, &ShortLegend::code);
    return calculatorFromUtf8(found == std::end(shortLegends) ? face.legend : found->text);
}

// In the middle of the key; what is wider loses its end.
void drawLegend(Surface &surface, const KeyFace &face, Color color, Color ground) {
    std::string text = legendOf(face);
    const KeySize size = keySize(face.shape);
    while (text.size() > 1 && widthOf(text) > size.width) text.pop_back();
    const int x = face.x + (size.width - widthOf(text)) / 2, y = face.y + (size.height - smallCharHeight) / 2;
    drawSmallText(surface, x, y, text, color, ground);
}

}  // namespace

Surface keypadPicture(const Surface &display, int heldKey) {
    Surface picture(keypadWidth, keypadHeight, padColor::body);
    copySurface(picture, 0, 0, display);
    for (const KeyFace &face : keyFaces()) {
        const Color color = faceColor(face, heldKey);
        drawFace(picture, face, color);
        const bool isArrow = face.shape >= KeyShape::arrowUp && face.shape <= KeyShape::arrowRight;
        isArrow ? drawArrow(picture, face, legendColor(color)) : drawLegend(picture, face, legendColor(color), color);
    }
    return picture;
}

}  // namespace numalink
