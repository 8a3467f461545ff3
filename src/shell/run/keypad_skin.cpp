#include "shell/run/keypad_skin.h"

#include <QKeySequence>
#include <QPainter>
#include <QPainterPath>
#include <utility>

#include "emulator/machine/keypad.h"

namespace numalink {

namespace {

constexpr double secondLegendScale = 1.5;  // pixels a dot from which SHIFT legends are legible

const QColor bodyTop(0x33, 0x44, 0x5A), bodyBottom(0x1D, 0x27, 0x36);
const QColor dark(0x3C, 0x43, 0x4E), light(0xE4, 0xE8, 0xEC), red(0xB5, 0x2A, 0x24), blue(0x25, 0x60, 0xAE);
const QColor shiftColor(0xF2, 0xC1, 0x2E), alphaColor(0xFF, 0x92, 0x88);
constexpr int shiftKey = 78, alphaKey = 77, exeKey = 31;

QColor faceColor(const KeyFace &face) {
    if (face.shape == KeyShape::stop) return red;
    if (face.code == exeKey) return blue;
    if (face.code == shiftKey) return shiftColor;
    if (face.code == alphaKey) return alphaColor;
    return face.shape == KeyShape::pad ? light : dark;
}

// A face is shaded from its top to its bottom.
QColor topOf(const QColor &face) { return face.lighter(118); }
QColor bottomOf(const QColor &face) { return face.darker(112); }

QColor legendColor(const QColor &face) {
    return qGray(face.rgb()) > 140 ? QColor(0x14, 0x1A, 0x22) : QColor(Qt::white);
}

QRectF rectangleOf(const KeyFace &face) {
    const KeySize size = keySize(face.shape);
    return QRectF(face.x, face.y, size.width, size.height);
}

// Text as large as asked, smaller where it would not fit the width.
void paintText(QPainter &painter, const QRectF &room, const QString &text, double height, bool bold, int alignment) {
    if (text.isEmpty()) return;
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setBold(bold);
    font.setPixelSize(64);
    const QFontMetricsF metrics(font);
    const double scale = std::min(height / metrics.capHeight(), room.width() / metrics.horizontalAdvance(text));
    painter.save();
    painter.setFont(font);
    const double width = metrics.horizontalAdvance(text) * scale;
    double x = room.left();
    if (alignment & Qt::AlignHCenter) x = room.center().x() - width / 2;
    if (alignment & Qt::AlignRight) x = room.right() - width;
    painter.translate(x, room.center().y() + metrics.capHeight() * scale / 2);
    painter.scale(scale, scale);
    painter.drawText(QPointF(0, 0), text);
    painter.restore();
}

void paintFace(QPainter &painter, const KeyFace &face) {
    const QRectF place = rectangleOf(face).adjusted(0.5, 0.5, -0.5, -0.5);
    const QColor color = faceColor(face);
    QLinearGradient shade(place.topLeft(), place.bottomLeft());
    shade.setColorAt(0, topOf(color));
    shade.setColorAt(1, bottomOf(color));
    painter.setPen(QPen(color.darker(190), 0.6));
    painter.setBrush(shade);
    painter.drawRoundedRect(place, 2.5, 2.5);
    painter.setPen(legendColor(color));
    const double height = face.shape == KeyShape::pad || face.shape == KeyShape::stop ? 6.5 : 5.2;
    paintText(painter, place.adjusted(1.5, 0, -1.5, 0), QString::fromUtf8(face.legend), height, true, Qt::AlignHCenter);
}

// The second legends stand in the gap above a key: SHIFT's to the left, ALPHA's letter to the right.
void paintSecondLegends(QPainter &painter, const KeyFace &face, double pixelsPerDot) {
    const QRectF key = rectangleOf(face);
    const QRectF gap(key.left(), key.top() - 6, key.width(), 6);
    painter.setPen(alphaColor);
    paintText(painter, gap.adjusted(gap.width() - 8, 0, -1.5, 0), QString::fromUtf8(face.alpha), 4.4, true,
              Qt::AlignRight);
    if (pixelsPerDot < secondLegendScale) return;
    painter.setPen(shiftColor);
    const double alphaRoom = face.alpha[0] == '\0' ? 0 : 7;
    paintText(painter, gap.adjusted(1.5, 0, -alphaRoom, 0), QString::fromUtf8(face.shift), 3.4, false, Qt::AlignLeft);
}

// A long name of a key can't be read on a key of the pad: its sign stands for it, as keyboards have it.
QStringList paintedNames(QStringList names) {
    constexpr int longName = 6;  // letters
    constexpr std::pair<Qt::Key, const char *> signs[] = {{Qt::Key_Shift, "⇧"}, {Qt::Key_Space, "␣"}};
    for (QString &name : names) {
        for (const auto &[key, sign] : signs)
            if (name.size() >= longName && name == QKeySequence(key).toString(QKeySequence::NativeText))
                name = QString::fromUtf8(sign);
    }
    return names;
}

}  // namespace

std::vector<KeypadText> keypadTexts() {
    std::vector<KeypadText> texts;
    for (const KeyFace &face : keyFaces()) {
        const QColor color = faceColor(face);
        for (const QColor &ground : {topOf(color), color, bottomOf(color)})
            texts.push_back({legendColor(color), ground});
    }
    for (const QColor &ground : {bodyTop, bodyBottom})
        for (const QColor &text : {shiftColor, alphaColor}) texts.push_back({text, ground});
    return texts;
}

void paintKeypad(QPainter &painter, double pixelsPerDot) {
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient body(0, 0, 0, keypadHeight);
    body.setColorAt(0, bodyTop);
    body.setColorAt(1, bodyBottom);
    painter.fillRect(QRectF(0, 0, keypadWidth, keypadHeight), body);
    for (const KeyFace &face : keyFaces()) {
        paintFace(painter, face);
        paintSecondLegends(painter, face, pixelsPerDot);
    }
}

void paintKeyboardNames(QPainter &painter, QStringList (*namesOf)(int keyCode)) {
    const QColor paper(0xFF, 0xFB, 0xE0), ink(0x14, 0x1A, 0x22);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const KeyFace &face : keyFaces()) {
        const QString names = paintedNames(namesOf(face.code)).join(QStringLiteral("  "));
        if (names.isEmpty()) continue;
        const QRectF badge = rectangleOf(face).adjusted(0.5, 0.5, -0.5, -0.5);
        painter.setPen(QPen(ink, 0.5));
        painter.setBrush(paper);
        painter.drawRoundedRect(badge, 2, 2);
        painter.setPen(ink);
        const double height = badge.width() < badge.height() ? 5 : badge.height() * 0.45;
        paintText(painter, badge.adjusted(1, 0, -1, 0), names, std::min(height, 6.0), true, Qt::AlignHCenter);
    }
}

// A dark line within a light one stands out on every key.
void paintKeyFocus(QPainter &painter, int keyCode) {
    const KeyFace *face = keyFaceOf(keyCode);
    if (face == nullptr) return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    const QRectF key = rectangleOf(*face);
    painter.setPen(QPen(Qt::white, 1.6));
    painter.drawRoundedRect(key.adjusted(-1, -1, 1, 1), 3, 3);
    painter.setPen(QPen(Qt::black, 0.8));
    painter.drawRoundedRect(key.adjusted(0.2, 0.2, -0.2, -0.2), 2.5, 2.5);
}

void paintKeyOutline(QPainter &painter, int keyCode) {
    const KeyFace *face = keyFaceOf(keyCode);
    if (face == nullptr) return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(face->shape == KeyShape::stop ? QColor(0xFF, 0, 0) : QColor(0xFF, 0xFF, 0x64), 1));
    painter.drawRoundedRect(rectangleOf(*face).adjusted(0.5, 0.5, -0.5, -0.5), keyCornerSize / 2.0,
                            keyCornerSize / 2.0);
}

}  // namespace numalink
