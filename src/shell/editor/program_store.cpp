#include "shell/editor/program_store.h"

#include <QElapsedTimer>
#include <QMainWindow>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTextBlock>
#include <QTextDocument>
#include <QTimer>

#include "calculator/frames.h"
#include "calculator/program_info.h"
#include "link/transmit_queue.h"
#include "shell/editor/program_document.h"
#include "shell/editor/program_drafts.h"
#include "shell/editor/program_status.h"
#include "shell/editor/program_view.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/tree_refresh.h"
#include "telling/tell_user.h"
#include "text/text_faults.h"

namespace numalink {

namespace {

// A draft is written once nothing was typed for a moment, since that waits for the disk; while somebody types on and
// on, now and then.
constexpr int draftRestMilliseconds = 1500, draftLongestMilliseconds = 10000;

// The program on view as it was when it was opened.
struct Opened {
    ItemEntry entry;
    Bytes head;
    QPointer<QTimer> draftTimer;  // the editor's child
    QElapsedTimer sinceSaved;     // while the timer runs
};
Opened state;

struct ReadText {
    std::vector<LineBytes> lines;
    std::vector<ViewLine> kept;  // what each line is once it is stored
    std::vector<TextFault> faults;
    int faultAt = -1;  // position of the first in the document
};

ReadText readText() {
    ReadText read;
    const QTextDocument *document = programEdit->document();
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        ViewLine line;
        const LineReading reading = readBlock(block, line);
        if (reading.faultAt >= 0) {
            if (read.faults.empty()) read.faultAt = block.position() + static_cast<int>(reading.faultAt);
            read.faults.push_back(
                {block.blockNumber() + 1, characterAt(line, static_cast<std::size_t>(reading.faultAt))});
            continue;
        }
        read.lines.push_back(lineBytes(reading));
        read.kept.push_back(keptLine(line, reading));
    }
    return read;
}

enum class Choice { goBack, discard, draft };

void putCaretOn(int place) {
    putCaretAt(place);
    programEdit->setFocus();
}

Choice askUnstored(const QString &why, bool mayKeepDraft) {
    QMessageBox box(QMessageBox::Critical, boxTitle(true), why, QMessageBox::NoButton, mainWindow);
    box.setTextFormat(Qt::PlainText);
    QPushButton *goBack = box.addButton(textOf(Text::goBack), QMessageBox::RejectRole);
    const QPushButton *discard = box.addButton(textOf(Text::discardChanges), QMessageBox::DestructiveRole);
    const QPushButton *draft = mayKeepDraft ? box.addButton(textOf(Text::keepDraft), QMessageBox::AcceptRole) : nullptr;
    box.setDefaultButton(goBack);
    box.setEscapeButton(goBack);
    runDialog(box);
    if (box.clickedButton() == discard) return Choice::discard;
    return draft != nullptr && box.clickedButton() == draft ? Choice::draft : Choice::goBack;
}

// The record of the text under the item's own id; a free name in its folder when the item has gone.
NewItem recordOf(Bytes image) {
    StoredItem stored;
    const bool isThere = storeReadEntry(viewItemId) && storeReadItem(viewItemId, stored);
    NewItem item;
    item.name = isThere ? stored.name : state.entry.name;
    item.parent = isThere ? stored.parent : state.entry.parent;
    item.kind = viewKind;
    ProgramInfo info = decodeProgramInfo(isThere ? stored.head : state.head)
                           .value_or(ProgramInfo{.imageLength = 1, .name = item.name, .password = {}});
    info.imageLength = static_cast<std::uint32_t>(image.size());
    item.head = encodeProgramInfo(info);
    item.data = std::move(image);
    return item;
}

bool addAsNew(NewItem item) {
    item.whenTaken = NameTaken::nextFreeName;
    if (!storeReadEntry(item.parent) && item.parent != rootId)
        item.parent = storeStandardFolder(standardFolderOfKind(item.kind));
    std::string name = storeFreeName(item.name, item.parent, item.kind);
    item.name = name;
    if (std::optional<ProgramInfo> info = decodeProgramInfo(item.head)) {
        info->name = name.substr(0, programNameLimit);
        item.head = encodeProgramInfo(*info);
    }
    const ItemId id = storeAddItem(item, &name);
    if (id == noItem) {
        refreshTree();  // the folder may have been made
        return false;
    }
    viewItemId = id;
    if (const std::optional<ItemEntry> entry = storeReadEntry(id)) state.entry = *entry;
    refreshTree();
    tellUser(Text::storedAsNew, {utf8FromCalculator(name)}, BoxIcon::information);
    return true;
}

bool writeText(const ReadText &read) {
    Bytes image = imageOfLines(read.lines);
    image.push_back(0);
    frameChecksum(image);
    NewItem item = recordOf(std::move(image));
    const bool written = storeReadEntry(viewItemId) ? storeWriteItem(viewItemId, item) : addAsNew(std::move(item));
    if (!written) return false;
    QTextBlock block = programEdit->document()->begin();
    for (const ViewLine &line : read.kept) {
        rememberLine(block, line);
        block = block.next();
    }
    takeReference();
    forgetDraft();
    programToStatus(viewItemId);
    programStored(viewItemId);
    refreshTree();  // which may be ordered by size or time
    tellWhenTooLong(viewItemId);
    return true;
}

QString whyNot(const ReadText &read) {
    return read.faults.empty() ? textOf(Text::programNotStored) : toQt(textOfFaults(read.faults));
}

// False to go back.
bool settleUnstored(const ReadText &read, bool mayKeepDraft) {
    for (;;) {
        if (read.faultAt >= 0) putCaretOn(read.faultAt);
        switch (askUnstored(whyNot(read), mayKeepDraft)) {
            case Choice::discard:
                forgetDraft();
                return true;
            case Choice::draft:
                if (keepDraft(state.entry, viewToText())) return true;
                tellUser(Text::draftNotWritten, {draftFolder()});
                break;
            case Choice::goBack:
                if (read.faultAt >= 0) putCaretOn(read.faultAt);
                return false;
        }
    }
}

bool tryToStore(ReadText &read) {
    read = readText();
    return read.faultAt < 0 && writeText(read);
}

// The link and a run may still be speaking to the user interface: only what this thread says is left out.
bool leaveAtOnce() {
    silenceBoxes(true);
    ReadText read;
    const bool left = tryToStore(read) || keepDraft(state.entry, viewToText());
    silenceBoxes(false);
    return left;
}

// Should it fail, the text is no worse off than without.
void saveTextOnView() {
    if (!isTextKind(viewKind) || programEdit->isReadOnly()) return;
    if (programChanged())
        saveDraft(state.entry, viewToText());
    else
        dropSavedDraft();
}

}  // namespace

void takeOpenedProgram(const StoredItem &item) {
    state.entry = static_cast<const ItemEntry &>(item);  // without what it holds
    state.head = item.head;
}

void forgetOpenedProgram() {
    state.entry = {};
    state.head.clear();
    if (state.draftTimer != nullptr) state.draftTimer->stop();
    releaseDraft();
}

void saveDraftSoon() {
    if (state.draftTimer == nullptr) {
        state.draftTimer = new QTimer(programEdit);
        state.draftTimer->setSingleShot(true);
        QObject::connect(state.draftTimer, &QTimer::timeout, programEdit, saveTextOnView);
    }
    if (!state.draftTimer->isActive()) state.sinceSaved.start();
    if (state.sinceSaved.elapsed() < draftLongestMilliseconds) state.draftTimer->start(draftRestMilliseconds);
}

Bytes imageOnView() {
    std::vector<LineBytes> lines;
    for (QTextBlock block = programEdit->document()->begin(); block.isValid(); block = block.next()) {
        ViewLine line;
        lines.push_back(lineBytes(readBlock(block, line)));
    }
    return imageOfLines(lines);
}

bool storeEditedProgram() {
    ReadText read;
    if (tryToStore(read)) return true;
    if (read.faultAt >= 0) {
        tellFaults(read.faults);
        putCaretOn(read.faultAt);
    }
    return false;
}

bool leaveProgram(Leaving leaving) {
    if (!programChanged()) {
        dropSavedDraft();
        releaseDraft();
        return true;
    }
    if (leaving == Leaving::atOnce) return leaveAtOnce();
    ReadText read;
    return tryToStore(read) || settleUnstored(read, leaving == Leaving::program);
}

bool storeProgramFirst() {
    if (!isTextKind(viewKind) || !programChanged()) return true;
    ReadText read;
    if (tryToStore(read)) return true;
    if (!settleUnstored(read, false)) return false;
    StoredItem item;
    if (storeReadItem(viewItemId, item)) programToView(item.data);
    return true;
}

}  // namespace numalink
