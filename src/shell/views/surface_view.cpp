#include "shell/views/surface_view.h"

#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>
#include <QtMath>
#include <algorithm>
#include <utility>

#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/scale.h"

namespace numalink {

namespace {

// What is on view.
struct Drawing {
    Surface whole;  // or nothing when it is drawn in parts
    QSize dots;
    SurfacePart part = nullptr;
    SurfaceKeys keysFirst = nullptr;
};

struct SurfaceView {
    QScrollArea *area = nullptr;
    QWidget *picture = nullptr;
    Drawing drawing;
    int zoom = 1;
};
SurfaceView state;

// Pixels of the window a dot.
double dotSize() {
    if (state.zoom != zoomToFit) return wholeDot(state.area, state.zoom);
    if (state.drawing.dots.isEmpty()) return 1;
    const QSize room = state.area->size() - QSize(2 * state.area->frameWidth(), 2 * state.area->frameWidth());
    return largestDot(state.area, room, state.drawing.dots, 64);
}

// On the grid of the screen's pixels, in the picture.
QPointF origin() { return onPixel(state.picture, {0, 0}); }

void resizePicture() {
    if (state.drawing.dots.isEmpty()) return;  // nothing is on view
    const QSizeF size = QSizeF(state.drawing.dots) * dotSize();
    state.picture->setFixedSize(qCeil(size.width()), qCeil(size.height()));
    state.picture->update();
}

QImage imageOf(const Surface &surface) {
    return QImage(reinterpret_cast<const uchar *>(surface.dots.data()), surface.width, surface.height,
                  static_cast<qsizetype>(surface.width) * static_cast<qsizetype>(sizeof(Color)), QImage::Format_RGB32);
}

// Only the dots that are asked for, each as a whole number of pixels.
void paintSurface(const QRect &asked) {
    const double size = dotSize();
    const auto dotUnder = [&](const QPoint &place) {
        const QPointF dot = (QPointF(place) - origin()) / size;
        return QPoint(qFloor(dot.x()), qFloor(dot.y()));
    };
    const QRect part = QRect(dotUnder(asked.topLeft()), dotUnder(asked.bottomRight() + QPoint(1, 1))) &
                       QRect({0, 0}, state.drawing.dots);
    if (part.isEmpty()) return;
    QPainter painter(state.picture);
    const QRectF place(origin() + QPointF(part.topLeft()) * size, QSizeF(part.size()) * size);
    if (state.drawing.part == nullptr) {
        painter.drawImage(place, imageOf(state.drawing.whole), part);
        return;
    }
    const Surface drawn = state.drawing.part(part.left(), part.top(), part.width(), part.height());
    painter.drawImage(place, imageOf(drawn), QRectF(QPointF(0, 0), part.size()));
}

bool pictureEvent(QWidget *, QEvent *event) {
    if (event->type() != QEvent::Paint) return false;
    paintSurface(static_cast<QPaintEvent *>(event)->rect());
    return true;
}

bool areaEvent(QWidget *, QEvent *event) {
    if (event->type() == QEvent::Resize && state.zoom == zoomToFit) resizePicture();
    if (event->type() == QEvent::KeyPress && state.drawing.keysFirst != nullptr)
        return state.drawing.keysFirst(*static_cast<QKeyEvent *>(event));
    return false;
}

void showFromTop() {
    resizePicture();
    state.area->ensureVisible(0, 0, 0, 0);
    state.area->show();
    containerWindow->show();
}

}  // namespace

void makeSurfaceView() {
    state.area = new QScrollArea(containerWindow);
    state.area->setObjectName(QStringLiteral("surfaceView"));
    state.area->setFrameShape(QFrame::NoFrame);
    state.area->setFocusPolicy(Qt::StrongFocus);
    state.picture = new QWidget;
    state.picture->setObjectName(QStringLiteral("surface"));
    state.area->setWidget(state.picture);
    auto *layout = new QVBoxLayout(containerWindow);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(state.area);
    containerWindow->setFocusProxy(state.area);
    hookEvents(state.picture, pictureEvent);
    hookEvents(state.area, areaEvent);
}

void forgetSurfaceView() { state = {}; }

void showSurface(Surface surface) {
    const QSize dots(surface.width, surface.height);
    state.drawing = {.whole = std::move(surface), .dots = dots};
    showFromTop();
}

void showSurfaceInParts(int width, int height, SurfacePart part, SurfaceKeys keys) {
    state.drawing = {.whole = {}, .dots = QSize(width, height), .part = part, .keysFirst = keys};
    showFromTop();
}

void redrawSurface() { state.picture->update(); }

void hideSurface() {
    containerWindow->hide();
    state.area->hide();
    state.drawing = {};
}

void describeSurface(const QString &name, const QString &detail) {
    state.area->setAccessibleName(name);
    state.area->setAccessibleDescription(detail);
}

void showSurfacePart(int x, int y, int width, int height) {
    const double size = dotSize();
    const QRect part = QRectF(x * size, y * size, width * size, height * size).toAlignedRect();
    const int margin = qCeil(size);
    state.area->ensureVisible(part.center().x(), part.center().y(), part.width() / 2 + margin,
                              part.height() / 2 + margin);
}

int surfaceZoom() { return state.zoom; }

void setSurfaceZoom(int wanted) {
    state.zoom = std::clamp(wanted, zoomToFit, zoomLimit);
    if (state.picture != nullptr) resizePicture();
}

}  // namespace numalink
