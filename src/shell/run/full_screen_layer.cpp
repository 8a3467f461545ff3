#include "shell/run/full_screen_layer.h"

#include <QScreen>
#include <QWidget>

namespace numalink {

namespace {

QWidget *holder = nullptr;

}  // namespace

int FSDLLCreate(QWidget *window) {
    const QScreen *screen = window->screen();
    if (screen == nullptr || screen->size().width() < 320 || screen->size().height() < 240) return 0;
    holder = window;
    window->setGeometry(screen->geometry());  // where no window manager does it
    window->showFullScreen();
    window->raise();
    window->activateWindow();
    return screen->size().width() < 640 || screen->size().height() < 480 ? 1 : 2;
}

void FSDLLDestroy() {
    if (holder != nullptr) holder->showNormal();
    holder = nullptr;
}

}  // namespace numalink
