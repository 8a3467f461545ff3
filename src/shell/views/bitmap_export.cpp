#include "shell/views/bitmap_export.h"

#include <QFile>
#include <QFileDialog>
#include <QMainWindow>

#include "drawing/bitmap_file.h"
#include "drawing/item_picture.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "store/care/user_files.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

// A path that ends in .bmp, or nothing when cancelled. An existing file is asked about when it is written.
QString askBitmapPath(const QString &itemName) {
    QFileDialog dialog(mainWindow);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.setNameFilter(textOf(Text::filterBitmaps) + QStringLiteral(" (*.bmp)"));
    dialog.setDefaultSuffix(QStringLiteral("bmp"));
    dialog.selectFile(QString(itemName).replace(QLatin1Char('/'), QLatin1Char('-')));
    return runDialog(dialog) == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

}  // namespace

void saveSurface(const Surface &surface, const std::string &utf8Name) {
    const QString path = askBitmapPath(toQt(utf8Name));
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
