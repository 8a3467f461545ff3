#include "shell/surface_view.h"

#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "shell/event_hook.h"
#include "shell/shell_widgets.h"

namespace numalink {

namespace {

QScrollArea *area = nullptr;
QWidget *picture = nullptr;
Surface shown;
bool (*keysFirst)(const QKeyEvent &key) = nullptr;
int zoom = 1;

int dotSize() {
    if (zoom != zoomToFit) return zoom;
    if (shown.width == 0 || shown.height == 0) return 1;
    const QSize room = area->size() - QSize(2 * area->frameWidth(), 2 * area->frameWidth());
    return std::clamp(std::min(room.width() / shown.width, room.height() / shown.height), 1, 64);
}

void resizePicture() {
    picture->setFixedSize(shown.width * dotSize(), shown.height * dotSize());
    picture->update();
}

// Only the dots that are asked for, each as a whole number of pixels.
void paintSurface(const QRect &asked) {
    if (shown.dots.empty()) return;
    QPainter painter(picture);
    const int size = dotSize();
    const QImage image(reinterpret_cast<const uchar *>(shown.dots.data()), shown.width, shown.height,
                       static_cast<qsizetype>(shown.width) * static_cast<qsizetype>(sizeof(Color)),
                       QImage::Format_RGB32);
    const QRect dots =
        QRect(QPoint(asked.left() / size, asked.top() / size), QPoint(asked.right() / size, asked.bottom() / size)) &
        image.rect();
    painter.drawImage(QRect(dots.topLeft() * size, dots.size() * size), image, dots);
}

bool pictureEvent(QWidget *, QEvent *event) {
    if (event->type() != QEvent::Paint) return false;
    paintSurface(static_cast<QPaintEvent *>(event)->rect());
    return true;
}

bool areaEvent(QWidget *, QEvent *event) {
    if (event->type() == QEvent::Resize && zoom == zoomToFit) resizePicture();
    if (event->type() == QEvent::KeyPress && keysFirst != nullptr) return keysFirst(*static_cast<QKeyEvent *>(event));
    return false;
}

}  // namespace

void makeSurfaceView() {
    area = new QScrollArea(containerWindow);
    area->setObjectName(QStringLiteral("surfaceView"));
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::StrongFocus);
    picture = new QWidget;
    picture->setObjectName(QStringLiteral("surface"));
    area->setWidget(picture);
    auto *layout = new QVBoxLayout(containerWindow);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area);
    hookEvents(picture, pictureEvent);
    hookEvents(area, areaEvent);
    zoom = 1;
}

void forgetSurfaceView() {
    area = nullptr;
    picture = nullptr;
    shown = {};
    keysFirst = nullptr;
}

void showSurface(Surface surface, bool (*keys)(const QKeyEvent &key)) {
    keysFirst = keys;
    changeSurface(std::move(surface));
    area->ensureVisible(0, 0, 0, 0);
    area->show();
    containerWindow->show();
}

void changeSurface(Surface surface) {
    shown = std::move(surface);
    resizePicture();
}

void hideSurface() {
    containerWindow->hide();
    area->hide();
    keysFirst = nullptr;
    shown = {};
}

void showSurfacePart(int x, int y, int width, int height) {
    const int size = dotSize();
    const QRect part(x * size, y * size, width * size, height * size);
    area->ensureVisible(part.center().x(), part.center().y(), part.width() / 2 + size, part.height() / 2 + size);
}

int surfaceZoom() { return zoom; }

void setSurfaceZoom(int wanted) {
    zoom = std::clamp(wanted, zoomToFit, zoomLimit);
    if (picture != nullptr) resizePicture();
}

}  // namespace numalink
