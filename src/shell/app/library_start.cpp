#include "shell/app/library_start.h"

#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>

#include "history/history.h"
#include "platform/files.h"
#include "platform/program_folder.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/shell_texts.h"
#include "store/care/daily_copies.h"
#include "store/care/library_check.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

enum class LibraryAnswer { takeCopy, begin, end };

// copy: the path of the newest in order, or empty.
LibraryAnswer askForCopy(Text question, const std::string &copy, bool mayBegin, Text refusal) {
    QMessageBox box(QMessageBox::Question, textOf(Text::warningTitle),
                    textOf(question, {libraryFolder() + "storage.dat", dailyCopyFolder()}), QMessageBox::NoButton,
                    mainWindow);
    box.setTextFormat(Qt::PlainText);
    QPushButton *take = nullptr, *begin = nullptr;
    if (!copy.empty()) take = box.addButton(textOf(Text::storeTakeCopy, {dateOfCopy(copy)}), QMessageBox::AcceptRole);
    if (mayBegin) begin = box.addButton(textOf(Text::storeBeginEmpty), QMessageBox::DestructiveRole);
    QPushButton *end = box.addButton(textOf(refusal), QMessageBox::RejectRole);
    box.setDefaultButton(take != nullptr ? take : end);
    box.setEscapeButton(end);
    runDialog(box);
    if (take != nullptr && box.clickedButton() == take) return LibraryAnswer::takeCopy;
    return begin != nullptr && box.clickedButton() == begin ? LibraryAnswer::begin : LibraryAnswer::end;
}

// With a copy in the place of the library, or an empty one begun.
bool openOtherwise(Text refusal) {
    const bool emptied = storeIsEmptied();
    const std::string copy = newestSoundCopy();
    if (!emptied && copy.empty()) return false;
    const Text question = emptied ? Text::storeAskEmptied : Text::storeAskDamaged;
    switch (askForCopy(question, copy, emptied, refusal)) {
        case LibraryAnswer::takeCopy:
            return restoreLibrary().repaired ? storeOpen() : failWith(Text::storeNotRestored);
        case LibraryAnswer::begin:
            return storeOpen(WhenEmptied::begin);
        case LibraryAnswer::end:
            return false;
    }
    return false;
}

}  // namespace

bool openLibraryFolder(WhenEmptied whenEmptied, Text refusal) {
    makeFolders(libraryFolder());  // where that fails, the opening tells
    const bool opened = (!storeIsEmptied() && storeOpen(whenEmptied)) || (libraryNeedsCopy() && openOtherwise(refusal));
    if (opened) historyOpen();
    return opened;
}

bool openLibraryAtStart() {
    if (!openLibraryFolder(WhenEmptied::refuse, Text::storeEndProgram)) return failWith(Text::noLibraryAtStart);
    if (storeIsReadOnly()) tellLibrary();
    return true;
}

void tellLibrary() {
    statusLine(StatusPart::item, storeIsReadOnly() ? Text::libraryOnlyRead : Text::libraryOf, {libraryFolder()});
}

void closeLibrary() {
    historyClose();
    storeClose();
}

}  // namespace numalink
