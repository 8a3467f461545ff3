#include "shell/help/key_picture.h"

#include <QPainter>

#include "emulator/machine/keypad.h"
#include "shell/run/emulator_keys.h"
#include "shell/run/keypad_skin.h"

namespace numalink {

QImage keyPicture() {
    constexpr double scale = 2.1;  // pixels a dot
    constexpr int gap = 12;        // pixels between the two halves: as it is, and with the names
    const QSize half(qRound(keypadWidth * scale), qRound((keypadHeight - keypadTop) * scale));
    QImage picture(2 * half.width() + gap, half.height(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    for (const bool named : {false, true}) {
        QPainter painter(&picture);
        painter.setClipRect(named ? half.width() + gap : 0, 0, half.width(), half.height());
        painter.translate(named ? half.width() + gap : 0, 0);
        painter.scale(scale, scale);
        painter.translate(0, -keypadTop);
        paintKeypad(painter, scale);
        if (named) paintKeyboardNames(painter, keyboardNamesOf);
    }
    return picture;
}

}  // namespace numalink
