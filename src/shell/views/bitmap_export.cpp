#include "shell/views/bitmap_export.h"

#include <QFile>

#include "drawing/bitmap_file.h"
#include "drawing/item_picture.h"
#include "shell/parts/save_path.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "store/care/user_files.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

void saveSurface(const Surface &surface, const std::string &utf8Name) {
    const QString path = askSavePath(Text::filterBitmaps, QStringLiteral("bmp"), toQt(utf8Name));
    if (!path.isEmpty()) writeUserFile(QFile::encodeName(path).toStdString(), bitmapBytes(surface), false);
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
