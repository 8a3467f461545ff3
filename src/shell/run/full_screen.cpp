#include "shell/run/full_screen.h"

#include <QKeyEvent>
#include <QMainWindow>
#include <QPainter>
#include <QWidget>

#include "emulator/screens/display.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/scale.h"
#include "shell/run/emulator_keys.h"
#include "shell/run/full_screen_layer.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

struct FullScreen {
    QWidget *window = nullptr;
    bool isOn = false;
    int width = 0, height = 0;  // dots of the screen that it stands for
};
FullScreen state;

constexpr double displayShare = 0.667;  // of the height: keeps the display's two to one nearly

#ifdef NUMALINK_FULL_SCREEN
constexpr bool layerThere = true;
#else
constexpr bool layerThere = false;
int FSDLLCreate(QWidget *) { return 0; }
void FSDLLDestroy() {}
#endif

// The display is that of a screen of 320 by 240 or 640 by 480 dots, as large as such a screen can be made here with
// dots that are whole pixels.
QRectF displayPlace() {
    const QSizeF room = state.window->size();
    const QSizeF ofScreen = QSizeF(state.width, state.height).scaled(room, Qt::KeepAspectRatio);
    const double dot = largestDot(state.window, {ofScreen.width(), ofScreen.height() * displayShare},
                                  {displayWidth, displayHeight}, state.window->width());
    const QSizeF size = QSizeF(displayWidth, displayHeight) * dot;
    return {onPixel(state.window, QPointF(room.width() - size.width(), room.height() - size.height()) / 2), size};
}

void paintFullScreen(QWidget *window) {
    QPainter painter(window);
    painter.fillRect(window->rect(), QColor::fromRgb(lcdColor::background));
    const Surface display = displayNow();
    const QImage image(reinterpret_cast<const uchar *>(display.dots.data()), display.width, display.height,
                       static_cast<qsizetype>(display.width) * static_cast<qsizetype>(sizeof(Color)),
                       QImage::Format_RGB32);
    painter.drawImage(displayPlace(), image, QRectF(image.rect()));
}

// A key that goes up isn't passed on: the code stays until the run clears it.
bool fullScreenEvent(QWidget *window, QEvent *event) {
    switch (event->type()) {
        case QEvent::Paint:
            if (!state.isOn) return false;
            paintFullScreen(window);
            return true;
        case QEvent::ShortcutOverride:
            event->accept();
            return true;
        case QEvent::KeyPress:
            return emulatorKeyDown(*static_cast<QKeyEvent *>(event));
        case QEvent::KeyRelease:
            return fastKeyUp(*static_cast<QKeyEvent *>(event));
        case QEvent::FocusOut:
            releaseAllKeys();
            return false;
        case QEvent::Close:
            event->ignore();
            return true;
        default:
            return false;
    }
}

}  // namespace

void fullScreenEnter() {
    if (!layerThere) {
        tellUser(Text::fullScreenMissing);
        return;
    }
    if (state.window == nullptr) {
        state.window = new QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint);
        state.window->setObjectName(QStringLiteral("fullScreenWindow"));
        state.window->setWindowTitle(QStringLiteral("Numalink Emulator"));
        hookEvents(state.window, fullScreenEvent);
    }
    state.window->setScreen(mainWindow->screen());
    const int result = FSDLLCreate(state.window);
    state.isOn = result != 0;
    state.width = result == 1 ? 320 : 640;
    state.height = result == 1 ? 240 : 480;
}

void fullScreenLeave() {
    if (!state.isOn) return;
    state.isOn = false;
    FSDLLDestroy();
    state.window->hide();
}

QWidget *fullScreenShown() { return state.isOn ? state.window : nullptr; }

QRect fullScreenDisplay() { return state.isOn ? displayPlace().toAlignedRect() : QRect(); }

void fullScreenRepaint() {
    if (state.isOn) state.window->update();
}

void forgetFullScreen() {
    fullScreenLeave();
    delete state.window;
    state = {};
}

}  // namespace numalink
