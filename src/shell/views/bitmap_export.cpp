#include "shell/views/bitmap_export.h"

#include <QBuffer>
#include <QFile>

#include "drawing/bitmap_file.h"
#include "drawing/item_picture.h"
#include "shell/parts/save_path.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/views/surface_view.h"
#include "store/care/user_files.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr int zoomWhenFitted = 3;

Bytes pngBytes(const Surface &surface) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    zoomedImage(surface).save(&buffer, "PNG");
    return {bytes.begin(), bytes.end()};
}

}  // namespace

int zoomOfPictures() { return surfaceZoom() == zoomToFit ? zoomWhenFitted : surfaceZoom(); }

QImage zoomedImage(const Surface &surface) {
    const QImage image(reinterpret_cast<const uchar *>(surface.dots.data()), surface.width, surface.height,
                       static_cast<qsizetype>(surface.width) * static_cast<qsizetype>(sizeof(Color)),
                       QImage::Format_RGB32);
    return image.copy().scaled(image.size() * zoomOfPictures(), Qt::IgnoreAspectRatio, Qt::FastTransformation);
}

void saveSurface(const Surface &surface, const std::string &utf8Name) {
    const QString path = askSavePath({{Text::filterBitmaps, "bmp"}, {Text::filterPng, "png"}}, toQt(utf8Name));
    if (path.isEmpty()) return;
    const bool isPng = path.endsWith(QLatin1String(".png"), Qt::CaseInsensitive);
    writeUserFile(QFile::encodeName(path).toStdString(), isPng ? pngBytes(surface) : bitmapBytes(surface), false);
}

void saveItemAsBitmap() {
    StoredItem item;
    if (!storeReadItem(selectedItemId(), item)) return;
    const bool isPicture = item.kind == kind::picture;
    if (!isPicture && !isScreenKind(item.kind)) return;
    const Surface surface = screenSurface(item.kind, item.head, item.data);
    saveSurface(surface, utf8FromCalculator(item.name));
}

}  // namespace numalink
