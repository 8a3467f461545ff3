#include "shell/cursors.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace numalink {

namespace {

constexpr int cursorSize = 32;

// The pointing dot of each is near the top left corner of its drawing.
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

QCursor linkCursor() { return cursorFrom(QStringLiteral("cursor-link"), 10, 2); }
QCursor dropCursor() { return cursorFrom(QStringLiteral("cursor-drop"), 2, 2); }
QCursor noDropCursor() { return cursorFrom(QStringLiteral("cursor-nodrop"), 2, 2); }

}  // namespace numalink
