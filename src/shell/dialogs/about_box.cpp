#include "shell/dialogs/about_box.h"

#include <QDesktopServices>
#include <QDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QMouseEvent>
#include <QPainter>
#include <QSvgRenderer>
#include <QTimer>
#include <QUrl>

#include "platform/program_folder.h"
#include "shell/parts/cursors.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "store/item_store.h"

namespace numalink {

namespace {

constexpr int pictureWidth = 300, pictureHeight = 200;
constexpr int bandLeft = 16, bandRight = 239;
constexpr int webTop = 146, webBottom = 156, mailTop = 161, mailBottom = 174;
constexpr int versionBaseline = 190;

const QString webPage = QStringLiteral("https://numalink.example/");
const QString mailAddress = QStringLiteral("hello@numalink.example");
const QString versionText = QStringLiteral(NUMALINK_VERSION " B\u00E8ta 1");

QSize pictureSize() { return QSize(pictureWidth, pictureHeight) * textScale(); }

void paintPicture(QWidget *widget) {
    static QSvgRenderer drawing(QStringLiteral(":/images/splash.svg"));
    QPainter painter(widget);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(textScale(), textScale());
    drawing.render(&painter, QRectF(0, 0, pictureWidth, pictureHeight));
    QFont font = widget->font();
    font.setPixelSize(11);
    painter.setFont(font);
    painter.setPen(QColor(0xE8, 0xEE, 0xF4));
    painter.drawText(bandLeft, versionBaseline, versionText);
    painter.setPen(QColor(0x9C, 0xD4, 0xFF));
    painter.drawText(QRect(bandLeft, webTop - 2, bandRight - bandLeft, webBottom - webTop + 4), Qt::AlignVCenter,
                     webPage);
    painter.drawText(QRect(bandLeft, mailTop - 2, bandRight - bandLeft, mailBottom - mailTop + 4), Qt::AlignVCenter,
                     mailAddress);
}

AboutBand bandAt(const QPointF &place) {
    const QPoint drawn = (place / textScale()).toPoint();
    return aboutBandAt(drawn.x(), drawn.y());
}

void clickAt(QWidget *widget, const QPointF &place) {
    switch (bandAt(place)) {
        case AboutBand::webPage:
            QDesktopServices::openUrl(QUrl(webPage));
            break;
        case AboutBand::mail:
            QDesktopServices::openUrl(QUrl(QStringLiteral("mailto:") + mailAddress));
            break;
        case AboutBand::none:
            widget->close();
            break;
    }
}

bool aboutEvent(QWidget *widget, QEvent *event) {
    switch (event->type()) {
        case QEvent::Paint:
            paintPicture(widget);
            return true;
        case QEvent::MouseMove: {
            const bool link = bandAt(static_cast<QMouseEvent *>(event)->position()) != AboutBand::none;
            widget->setCursor(link ? linkCursor() : QCursor(Qt::ArrowCursor));
            return true;
        }
        case QEvent::MouseButtonPress: {
            const auto &mouse = *static_cast<QMouseEvent *>(event);
            if (mouse.button() == Qt::LeftButton) clickAt(widget, mouse.position());
            return true;
        }
        case QEvent::KeyPress:
            widget->close();
            return true;
        default:
            return false;
    }
}

QDialog *makePicture(Qt::WindowFlags flags) {
    auto *dialog = new QDialog(mainWindow, flags);
    dialog->setObjectName(QStringLiteral("aboutBox"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setMouseTracking(true);
    dialog->setFixedSize(pictureSize());
    dialog->setWindowTitle(textOf(Text::menuAbout).remove(QLatin1Char('&')));
    dialog->move(mainWindow->geometry().center() - QPoint(dialog->width() / 2, dialog->height() / 2));
    hookEvents(dialog, aboutEvent);
    return dialog;
}

// Below the picture, which library is open and where. A path has no blanks to be broken at: it may be behind each "/".
void addLibrary(QDialog *about) {
    const QString text = textOf(storeIsReadOnly() ? Text::libraryOnlyRead : Text::libraryOf, {libraryFolder()});
    auto *label = new QLabel(QString(text).replace(QLatin1Char('/'), QStringLiteral("/\u200B")), about);
    label->setObjectName(QStringLiteral("aboutLibrary"));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setMargin(8);
    label->setAccessibleName(text);
    label->setToolTip(text.toHtmlEscaped());
    const QSize picture = pictureSize();
    label->setGeometry(0, picture.height(), picture.width(), label->heightForWidth(picture.width()));
    about->setFixedSize(picture.width(), picture.height() + label->height());
}

}  // namespace

AboutBand aboutBandAt(int x, int y) {
    if (x < bandLeft || x > bandRight) return AboutBand::none;
    if (y >= webTop && y <= webBottom) return AboutBand::webPage;
    return y >= mailTop && y <= mailBottom ? AboutBand::mail : AboutBand::none;
}

void showSplash() {
    QDialog *splash = makePicture(Qt::Tool | Qt::FramelessWindowHint);
    splash->setAttribute(Qt::WA_ShowWithoutActivating);
    splash->show();
    QTimer::singleShot(splashMilliseconds, splash, &QWidget::close);
}

void showAboutBox() {
    QDialog *about = makePicture(Qt::Dialog);
    addLibrary(about);
    runDialog(*about);
}

}  // namespace numalink
