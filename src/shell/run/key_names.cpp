#include "shell/run/key_names.h"

#include <QKeyEvent>
#include <QPainter>
#include <QTimer>
#include <QWidget>
#include <algorithm>

#include "emulator/machine/keypad.h"
#include "shell/parts/main_widgets.h"
#include "shell/run/emulator_keys.h"
#include "shell/run/keypad_skin.h"

namespace numalink {

namespace {

constexpr int heldMilliseconds = 300;  // that their key is held: with others it is a command of the window
constexpr int keyNamesKey = Qt::Key_Control;

struct KeyNames {
    bool shown = false;
    QTimer *due = nullptr;  // runs from when their key is down; the emulator's window owns it
};
KeyNames state;

void nameKeys(bool named) {
    state.due->stop();
    if (named == state.shown) return;
    state.shown = named;
    emulatorWindow->update();
}

}  // namespace

void makeKeyNames() {
    state = {};
    state.due = new QTimer(emulatorWindow);
    state.due->setSingleShot(true);
    QObject::connect(state.due, &QTimer::timeout, emulatorWindow, [] { nameKeys(true); });
}

bool keyNamesShown() { return state.shown; }
void hideKeyNames() { nameKeys(false); }

void followNamesKey(const QKeyEvent &key) {
    if (key.isAutoRepeat()) return;
    hideKeyNames();
    if (key.type() == QEvent::KeyPress && key.key() == keyNamesKey) state.due->start(heldMilliseconds);
}

void paintKeyNames(QPainter &painter) {
    constexpr int padHeight = keypadHeight - keypadTop;
    const QSizeF room = emulatorWindow->size();
    const double scale = std::min(room.width() / keypadWidth, room.height() / padHeight);
    painter.fillRect(emulatorWindow->rect(), emulatorWindow->palette().window());
    painter.translate((room.width() - keypadWidth * scale) / 2, (room.height() - padHeight * scale) / 2);
    painter.scale(scale, scale);
    painter.setClipRect(QRectF(0, 0, keypadWidth, padHeight));
    painter.translate(0, -keypadTop);
    paintKeypad(painter, scale);
    paintKeyboardNames(painter, keyboardNamesOf);
}

}  // namespace numalink
