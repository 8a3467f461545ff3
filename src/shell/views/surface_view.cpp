#include "shell/views/surface_view.h"

#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"

namespace numalink {

namespace {

QScrollArea *area = nullptr;
QWidget *picture = nullptr;
Surface shown;  // all of it, or nothing when it is drawn in parts
QSize dots;     // of what is on view
SurfacePart partDrawn = nullptr;
SurfaceKeys keysFirst = nullptr;
int zoom = 1;

int dotSize() {
    if (zoom != zoomToFit) return zoom;
    if (dots.isEmpty()) return 1;
    const QSize room = area->size() - QSize(2 * area->frameWidth(), 2 * area->frameWidth());
    return std::clamp(std::min(room.width() / dots.width(), room.height() / dots.height()), 1, 64);
}

void resizePicture() {
    picture->setFixedSize(dots * dotSize());
    picture->update();
}

QImage imageOf(const Surface &surface) {
    return QImage(reinterpret_cast<const uchar *>(surface.dots.data()), surface.width, surface.height,
                  static_cast<qsizetype>(surface.width) * static_cast<qsizetype>(sizeof(Color)), QImage::Format_RGB32);
}

// Only the dots that are asked for, each as a whole number of pixels.
void paintSurface(const QRect &asked) {
    const int size = dotSize();
    const QRect part =
        QRect(QPoint(asked.left() / size, asked.top() / size), QPoint(asked.right() / size, asked.bottom() / size)) &
        QRect(QPoint(0, 0), dots);
    if (part.isEmpty()) return;
    QPainter painter(picture);
    const QRect place(part.topLeft() * size, part.size() * size);
    if (partDrawn == nullptr) {
        painter.drawImage(place, imageOf(shown), part);
        return;
    }
    const Surface drawn = partDrawn(part.left(), part.top(), part.width(), part.height());
    painter.drawImage(place, imageOf(drawn));
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

void forgetDrawing() {
    shown = {};
    dots = {};
    partDrawn = nullptr;
    keysFirst = nullptr;
}

void showFromTop() {
    resizePicture();
    area->ensureVisible(0, 0, 0, 0);
    area->show();
    containerWindow->show();
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
    containerWindow->setFocusProxy(area);
    hookEvents(picture, pictureEvent);
    hookEvents(area, areaEvent);
    zoom = 1;
}

void forgetSurfaceView() {
    area = nullptr;
    picture = nullptr;
    forgetDrawing();
}

void showSurface(Surface surface) {
    forgetDrawing();
    shown = std::move(surface);
    dots = QSize(shown.width, shown.height);
    showFromTop();
}

void showSurfaceInParts(int width, int height, SurfacePart part, SurfaceKeys keys) {
    forgetDrawing();
    dots = QSize(width, height);
    partDrawn = part;
    keysFirst = keys;
    showFromTop();
}

void redrawSurface() { picture->update(); }

void hideSurface() {
    containerWindow->hide();
    area->hide();
    forgetDrawing();
}

void describeSurface(const QString &name, const QString &detail) {
    area->setAccessibleName(name);
    area->setAccessibleDescription(detail);
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
