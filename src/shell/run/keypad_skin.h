// The picture of the key pad, drawn from the key table at any scale. Graphical thread only.
#pragma once

#include <QColor>
#include <QStringList>
#include <vector>

class QPainter;

namespace numalink {

// The whole skin in dots: 128 wide and 255 high, the rows under the display included. The painter is scaled to pixels
// ahead; pixelsPerDot says by how much, since small legends are left out where they can't be read.
void paintKeypad(QPainter &painter, double pixelsPerDot);

// Over it, on each key that a keyboard has, what it is there.
void paintKeyboardNames(QPainter &painter, QStringList (*namesOf)(int keyCode));

// The outline of a key under the mouse; nothing for 0.
void paintKeyOutline(QPainter &painter, int keyCode);
void paintKeyFocus(QPainter &painter, int keyCode);  // of the one that has the focus

// Each colour of a text on the pad, with each ground that it stands on.
struct KeypadText {
    QColor text;
    QColor ground;
};
std::vector<KeypadText> keypadTexts();

}  // namespace numalink
