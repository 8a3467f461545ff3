#include "shell/parts/cursors.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace numalink {

namespace {

constexpr int cursorSize = 32;

// The hot place is the one that the drawing names.
QCursor cursorFrom(const QString &name, int hotX, int hotY) {
    const qreal scale = qGuiApp->devicePixelRatio();
    QPixmap picture(qRound(cursorSize * scale), qRound(cursorSize * scale));
    picture.fill(Qt::transparent);
    QSvgRenderer drawing(QStringLiteral(":/images/%1.svg").arg(name));
    if (!drawing.isValid()) return {Qt::ArrowCursor};
    QPainter painter(&picture);
    drawing.render(&painter, QRectF(0, 0, picture.width(), picture.height()));
    painter.end();
    picture.setDevicePixelRatio(scale);
    return QCursor(picture, hotX, hotY);
}

}  // namespace

QCursor linkCursor() { return cursorFrom(QStringLiteral("cursor-link"), 12, 3); }
QCursor dropCursor() { return cursorFrom(QStringLiteral("cursor-drop"), 3, 3); }
QCursor noDropCursor() { return cursorFrom(QStringLiteral("cursor-nodrop"), 16, 16); }

}  // namespace numalink
