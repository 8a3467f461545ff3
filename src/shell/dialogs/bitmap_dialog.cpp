#include "shell/dialogs/bitmap_dialog.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QMainWindow>
#include <QPixmap>
#include <QRadioButton>
#include <QVBoxLayout>

#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr int previewZoom = 3;  // pixels a dot

// Whole pixels a dot, so that no dot is wider than another.
QPixmap pixmapOf(const Surface &surface) {
    const QImage dots(reinterpret_cast<const uchar *>(surface.dots.data()), surface.width, surface.height,
                      static_cast<qsizetype>(surface.width) * static_cast<qsizetype>(sizeof(Color)),
                      QImage::Format_RGB32);
    const qreal ratio = mainWindow->devicePixelRatioF();
    const int pixels = qRound(wholeDot(mainWindow, previewZoom) * ratio);
    QPixmap picture = QPixmap::fromImage(dots.scaled(surface.width * pixels, surface.height * pixels));
    picture.setDevicePixelRatio(ratio);
    return picture;
}

QGroupBox *pictureBox(const QString &title, QLabel *picture) {
    auto *box = new QGroupBox(title);
    picture->setFrameShape(QFrame::Panel);
    picture->setFrameShadow(QFrame::Sunken);
    picture->setAccessibleName(title);
    (new QVBoxLayout(box))->addWidget(picture, 0, Qt::AlignCenter);
    return box;
}

struct BitmapControls {
    QRadioButton *image = new QRadioButton(textOf(Text::rasterImage));
    QRadioButton *sharp = new QRadioButton(textOf(Text::rasterSharp));
    QLabel *result = new QLabel;
};

QGroupBox *choicesBox(const BitmapQuestion &question, const BitmapControls &controls) {
    auto *box = new QGroupBox(textOf(Text::rasterGroup));
    auto *layout = new QHBoxLayout(box);
    for (QRadioButton *choice : {controls.image, controls.sharp}) choice->setToolTip(textOf(Text::tipRaster));
    layout->addWidget(controls.image);
    layout->addWidget(controls.sharp);
    layout->addStretch();
    const auto show = [&question, controls] {
        controls.result->setPixmap(pixmapOf(controls.image->isChecked() ? question.image : question.sharp));
    };
    QObject::connect(controls.image, &QRadioButton::toggled, box, show);
    (question.type == RasterType::image ? controls.image : controls.sharp)->setChecked(true);
    show();
    return box;
}

}  // namespace

void askBitmap(BitmapQuestion &question) {
    QDialog dialog(mainWindow);
    dialog.setObjectName(QStringLiteral("bitmapDialog"));
    dialog.setWindowTitle(textOf(Text::bitmapImportTitle) + QStringLiteral(" - ") + toQt(question.fileName));
    const BitmapControls controls;
    auto *layout = new QVBoxLayout(&dialog);
    auto *original = new QLabel;
    original->setPixmap(pixmapOf(question.scaled));
    auto *pictures = new QHBoxLayout;  // beside each other: one above the other needs a high screen
    pictures->addWidget(pictureBox(textOf(Text::bitmapOriginal), original));
    pictures->addWidget(pictureBox(textOf(Text::bitmapResult), controls.result));
    layout->addLayout(pictures);
    layout->addWidget(choicesBox(question, controls));
    layout->addWidget(dialogButtons(&dialog));
    layout->setSizeConstraint(QLayout::SetFixedSize);
    controls.image->setFocus();
    question.accepted = runDialog(dialog) == QDialog::Accepted;
    question.type = controls.image->isChecked() ? RasterType::image : RasterType::sharp;
}

}  // namespace numalink
