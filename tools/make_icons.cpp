// make_icons DRAWING FOLDER SIZE...: the drawing (SVG) as FOLDER/SIZE.png for each size in dots.
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

int main(int argc, char **argv) {
    if (argc < 4) {
        std::fputs("make_icons DRAWING FOLDER SIZE...\n", stderr);
        return 1;
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    for (int i = 3; i < argc; i++) {
        const int size = QByteArray(argv[i]).toInt();
        QImage icon(size, size, QImage::Format_ARGB32);
        icon.fill(Qt::transparent);
        QPainter painter(&icon);
        drawing.render(&painter);
        painter.end();
        const QString path = QStringLiteral("%1/%2.png").arg(QString::fromLocal8Bit(argv[2])).arg(size);
        if (!drawing.isValid() || !icon.save(path)) {
            std::fprintf(stderr, "%s: can't be made\n", qPrintable(path));
            return 1;
        }
    }
    return 0;
}
