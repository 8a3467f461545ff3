#include "shell/run/display_out.h"

#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>
#include <QWidget>
#include <memory>
#include <optional>

#include "calculator/charset.h"
#include "emulator/screens/display.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/emulator_window.h"
#include "shell/views/bitmap_export.h"
#include "store/item_store.h"

namespace numalink {

namespace {

// Until the program ends: whoever was given a file may read it late.
std::unique_ptr<QTemporaryDir> dragged;

std::string programName() {
    const std::optional<ItemEntry> item = storeReadEntry(emulatedItem());
    return item ? utf8FromCalculator(item->name) : std::string();
}

// Empty where no file could be written: the picture is dragged all the same.
QString fileToDrag(const QImage &image) {
    if (dragged == nullptr) dragged = std::make_unique<QTemporaryDir>();
    if (!dragged->isValid()) return {};
    QString name;
    for (const QChar sign : toQt(programName())) name += sign.isLetterOrNumber() ? sign : QLatin1Char('_');
    const QString path =
        dragged->filePath((name.isEmpty() ? QStringLiteral("display") : name) + QStringLiteral(".png"));
    return image.save(path, "PNG") ? path : QString();
}

}  // namespace

void saveScreenshot() { saveSurface(displayNow(), programName()); }

void copyDisplayPicture() { QApplication::clipboard()->setImage(zoomedImage(displayNow())); }

void copyDisplayText() {
    const std::string text = displayText();
    if (!text.empty()) QApplication::clipboard()->setText(toQt(text));
}

QMimeData *displayToDrag() {
    const QImage image = zoomedImage(displayNow());
    auto *content = new QMimeData;
    content->setImageData(image);
    if (const QString path = fileToDrag(image); !path.isEmpty()) content->setUrls({QUrl::fromLocalFile(path)});
    return content;
}

// On the window's own tree it is a file like any other, and becomes a picture of the library.
void dragDisplay() {
    auto *drag = new QDrag(emulatorWindow);
    drag->setMimeData(displayToDrag());
    drag->setPixmap(QPixmap::fromImage(zoomedImage(displayNow())));
    drag->exec(Qt::CopyAction);
}

void forgetDraggedFiles() { dragged.reset(); }

}  // namespace numalink
