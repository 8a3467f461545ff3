#include "shell/parts/scale.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace numalink {

namespace {

constexpr double usualDotsPerInch = 96, greatestScale = 4;

}  // namespace

double textScale() {
    static const double scale =
        std::clamp(QGuiApplication::primaryScreen()->logicalDotsPerInch() / usualDotsPerInch, 1.0, greatestScale);
    return scale;
}

int grown(int pixels) { return qRound(pixels * textScale()); }

int grownWhole(int pixels) { return pixels * qRound(textScale()); }

double wholeDot(const QWidget *widget, double pixels) {
    const double ratio = widget->devicePixelRatioF();
    return std::max(1.0, std::round(pixels * ratio)) / ratio;
}

double largestDot(const QWidget *widget, const QSizeF &room, const QSize &dots, int limit) {
    const double ratio = widget->devicePixelRatioF();
    const double fitting = std::min(room.width() / dots.width(), room.height() / dots.height());
    return std::max(1.0, std::floor(std::min<double>(fitting, limit) * ratio)) / ratio;
}

QPointF onPixel(const QWidget *widget, const QPointF &place) {
    const double ratio = widget->devicePixelRatioF();
    const QPointF corner = widget->mapTo(widget->window(), QPointF(0, 0));
    return (((corner + place) * ratio).toPoint()).toPointF() / ratio - corner;
}

}  // namespace numalink
