#include "shell/views/bitmap_export.h"

#include <QFile>
#include <QFileDialog>
#include <QMainWindow>
#include <optional>

#include "drawing/bitmap_file.h"
#include "drawing/item_picture.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/item_tree.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

// A path that ends in .bmp, or nothing when cancelled. An existing file is asked for by the dialog.
QString askBitmapPath(const QString &itemName) {
    QFileDialog dialog(mainWindow);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilter(textOf(Text::filterBitmaps) + QStringLiteral(" (*.bmp)"));
    dialog.setDefaultSuffix(QStringLiteral("bmp"));
    dialog.selectFile(QString(itemName).replace(QLatin1Char('/'), QLatin1Char('-')));
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

}  // namespace

void tellFileResult(FileResult result, const std::string &path) {
    if (result != FileResult::done) tellUser(fileTrouble(result), {path}, BoxIcon::error);
}

void saveSurface(const Surface &surface, const std::string &utf8Name) {
    const QString path = askBitmapPath(toQt(utf8Name));
    if (path.isEmpty()) return;
    tellFileResult(writeBitmapFile(QFile::encodeName(path).toStdString(), surface), path.toStdString());
}

int saveItemAsBitmap() {
    StoredItem item;
    if (!storeReadItem(selectedItemId(), item)) return 1;
    const bool isPicture = item.kind == kind::picture;
    if (!isPicture && !isScreenKind(item.kind)) return 1;
    const Surface surface = screenSurface(item.kind, item.head, item.data);
    saveSurface(surface, utf8FromCalculator(item.name));
    return 1;
}

}  // namespace numalink
