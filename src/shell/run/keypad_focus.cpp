#include "shell/run/keypad_focus.h"

#include <QKeyEvent>
#include <cstdlib>
#include <limits>

#include "emulator/machine/keypad.h"
#include "shell/parts/command_states.h"

namespace numalink {

namespace {

constexpr int firstKey = 31;  // EXE, which most waits want

int picked = 0;
int pickedLast = firstKey;

void pick(int code) {
    picked = code;
    if (code != 0) pickedLast = code;
    keypadFocusChanged();
}

struct Place {
    int x, y;
};

Place centreOf(const KeyFace &face) {
    const KeySize size = keySize(face.shape);
    return {face.x + size.width / 2, face.y + size.height / 2};
}

}  // namespace

void toggleKeypadFocus() {
    pick(picked == 0 ? pickedLast : 0);
    commandStatesChanged();
}

bool keypadFocused() { return picked != 0; }
int pickedKey() { return picked; }

bool keypadKeyDown(const QKeyEvent &key) {
    if (picked == 0) return false;
    switch (key.key()) {
        case Qt::Key_Left:
        case Qt::Key_Right:
            pick(keyBeside(picked, key.key() == Qt::Key_Left ? -1 : 1, 0));
            return true;
        case Qt::Key_Up:
        case Qt::Key_Down:
            pick(keyBeside(picked, 0, key.key() == Qt::Key_Up ? -1 : 1));
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Space:
            if (!key.isAutoRepeat()) pressPadKey(picked);
            return true;
        case Qt::Key_Escape:
            toggleKeypadFocus();
            return true;
        default:
            return false;
    }
}

// The nearest in that direction, what lies aside of it counted thrice; nothing that lies more aside than ahead.
int keyBeside(int code, int stepX, int stepY) {
    const KeyFace *from = keyFaceOf(code);
    if (from == nullptr) return code;
    const Place start = centreOf(*from);
    int nearest = code, least = std::numeric_limits<int>::max();
    for (const KeyFace &face : keyFaces()) {
        const Place place = centreOf(face);
        const int across = place.x - start.x, down = place.y - start.y;
        const int along = across * stepX + down * stepY;
        const int aside = std::abs(across * stepY + down * stepX);
        if (along <= 0 || aside > 2 * along || along + 3 * aside >= least) continue;
        least = along + 3 * aside;
        nearest = face.code;
    }
    return nearest;
}

void leaveKeypad() {
    if (picked != 0) toggleKeypadFocus();
}

void forgetKeypadFocus() {
    picked = 0;
    pickedLast = firstKey;
}

}  // namespace numalink
