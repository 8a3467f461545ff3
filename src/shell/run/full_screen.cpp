#include "shell/run/full_screen.h"

#include <QKeyEvent>
#include <QMainWindow>
#include <QPainter>
#include <QWidget>

#include "emulator/screens/display.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/run/emulator_keys.h"
#include "shell/run/full_screen_layer.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

QWidget *fullScreenWindow = nullptr;
bool fullScreenOn = false;
int fullScreenWidth = 0, fullScreenHeight = 0;
constexpr double displayShare = 0.667;  // of the height: keeps the display's two to one nearly

#ifdef NUMALINK_FULL_SCREEN
constexpr bool layerThere = true;
#else
constexpr bool layerThere = false;
int FSDLLCreate(QWidget *) { return 0; }
void FSDLLDestroy() {}
#endif

// The display is that of a screen of 320 by 240 or 640 by 480 dots, as large as such a screen can be made here.
QRect displayPlace() {
    const QRect room = fullScreenWindow->rect();
    const double scale = std::min(static_cast<double>(room.width()) / fullScreenWidth,
                                  static_cast<double>(room.height()) / fullScreenHeight);
    QRect place(0, 0, qRound(fullScreenWidth * scale),
                qRound(static_cast<int>(fullScreenHeight * displayShare) * scale));
    place.moveCenter(room.center());
    return place;
}

void paintFullScreen(QWidget *window) {
    QPainter painter(window);
    painter.fillRect(window->rect(), QColor::fromRgb(lcdColor::background));
    const Surface display = displayNow();
    const QImage image(reinterpret_cast<const uchar *>(display.dots.data()), display.width, display.height,
                       static_cast<qsizetype>(display.width) * static_cast<qsizetype>(sizeof(Color)),
                       QImage::Format_RGB32);
    painter.drawImage(displayPlace(), image);
}

// A key that goes up isn't passed on: the code stays until the run clears it.
bool fullScreenEvent(QWidget *window, QEvent *event) {
    switch (event->type()) {
        case QEvent::Paint:
            if (!fullScreenOn) return false;
            paintFullScreen(window);
            return true;
        case QEvent::ShortcutOverride:
            event->accept();
            return true;
        case QEvent::KeyPress:
            return emulatorKeyDown(*static_cast<QKeyEvent *>(event));
        case QEvent::FocusOut:
            keyCode = 0;
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
    if (fullScreenWindow == nullptr) {
        fullScreenWindow = new QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint);
        fullScreenWindow->setObjectName(QStringLiteral("fullScreenWindow"));
        fullScreenWindow->setWindowTitle(QStringLiteral("Numalink Emulator"));
        hookEvents(fullScreenWindow, fullScreenEvent);
    }
    fullScreenWindow->setScreen(mainWindow->screen());
    const int result = FSDLLCreate(fullScreenWindow);
    fullScreenOn = result != 0;
    fullScreenWidth = result == 1 ? 320 : 640;
    fullScreenHeight = result == 1 ? 240 : 480;
}

void fullScreenLeave() {
    if (!fullScreenOn) return;
    fullScreenOn = false;
    FSDLLDestroy();
    fullScreenWindow->hide();
}

QWidget *fullScreenShown() { return fullScreenOn ? fullScreenWindow : nullptr; }

QRect fullScreenDisplay() { return fullScreenOn ? displayPlace() : QRect(); }

void fullScreenRepaint() {
    if (fullScreenOn) fullScreenWindow->update();
}

void forgetFullScreen() {
    delete fullScreenWindow;
    fullScreenWindow = nullptr;
    fullScreenOn = false;
}

}  // namespace numalink
