#include "shell/editor/program_drafts.h"

#include <QFile>
#include <QMainWindow>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStringList>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "platform/files.h"
#include "platform/program_folder.h"
#include "shell/editor/program_view.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/item_tree.h"
#include "shell/views/item_views.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

// First line, then the item's id, kind and name, a line each, then the text.
constexpr char draftHead[] = "Numalink draft 1";
constexpr int draftLimit = 99;
constexpr std::uint64_t draftSizeLimit = 16u << 20;  // bytes
constexpr int headLines = 4;

std::string openDraft;  // path of the one whose text is on view, or empty

struct Draft {
    std::string path;
    ItemId id = noItem;
    ItemKind kind = kind::program;
    QString name;
    QString text;
};

std::string draftPath(int number) { return libraryFolder() + "draft-" + std::to_string(number) + ".txt"; }
bool fileThere(const std::string &path) { return QFile::exists(QFile::decodeName(path.c_str())); }

std::string freePath() {
    for (int number = 1; number <= draftLimit; number++)
        if (!fileThere(draftPath(number))) return draftPath(number);
    return {};
}

bool readDraft(const std::string &path, Draft &draft) {
    Bytes bytes;
    if (readWholeFile(path, bytes, draftSizeLimit) != FileResult::done) return false;
    const QString all =
        QString::fromUtf8(reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size()));
    if (!all.startsWith(QLatin1String(draftHead) + QLatin1Char('\n'))) return false;
    const QStringList lines = all.split(QLatin1Char('\n'));
    if (lines.size() <= headLines) return false;
    draft.path = path;
    draft.id = lines[1].toUInt();
    draft.kind = lines[2].toUInt() == kind::functionMemory ? kind::functionMemory : kind::program;
    draft.name = lines[3];
    draft.text = lines.mid(headLines).join(QLatin1Char('\n'));
    return true;
}

enum class DraftAnswer { open, remove, later };

DraftAnswer askDraft(const Draft &draft) {
    QMessageBox box(QMessageBox::Question, boxTitle(false), textOf(Text::draftFound, {draft.name.toStdString()}),
                    QMessageBox::NoButton, mainWindow);
    box.setTextFormat(Qt::PlainText);
    QPushButton *open = box.addButton(textOf(Text::draftOpen), QMessageBox::AcceptRole);
    const QPushButton *remove = box.addButton(textOf(Text::draftDelete), QMessageBox::DestructiveRole);
    QPushButton *later = box.addButton(textOf(Text::draftLater), QMessageBox::RejectRole);
    box.setDefaultButton(open);
    box.setEscapeButton(later);
    box.exec();
    if (box.clickedButton() == open) return DraftAnswer::open;
    return box.clickedButton() == remove ? DraftAnswer::remove : DraftAnswer::later;
}

// The draft's item, or an empty program in its place.
ItemId itemFor(const Draft &draft) {
    const std::optional<ItemEntry> entry = storeReadEntry(draft.id);
    const std::string name = calculatorName(draft.name.toStdString());
    if (entry && isTextKind(entry->kind) && entry->name == name) return draft.id;
    NewItem item;
    item.kind = draft.kind;
    item.parent = storeStandardFolder(standardFolderOfKind(draft.kind));
    item.name = storeFreeName(name, item.parent, item.kind);
    item.head = encodeProgramInfo({.imageLength = 1, .name = item.name, .password = {}});
    item.data = {':', 0xFF};
    item.whenTaken = NameTaken::nextFreeName;
    const ItemId id = storeAddItem(item);
    refreshTree();
    return id;
}

bool openInView(const Draft &draft) {
    const ItemId id = itemFor(draft);
    if (id == noItem || !selectItem(id) || viewItemId != id) return false;
    openDraft = draft.path;
    replaceProgramText(draft.text);
    programEdit->setFocus();
    return true;
}

}  // namespace

std::string draftFolder() { return libraryFolder(); }

bool keepDraft(const ItemEntry &item, const QString &text) {
    const std::string path = openDraft.empty() ? freePath() : openDraft;
    if (path.empty()) return false;
    std::string name = utf8FromCalculator(item.name);
    std::erase(name, '\n');
    std::string file = draftHead;
    for (const std::string &line : {std::to_string(item.id), std::to_string(item.kind), name, text.toStdString()})
        file.append("\n").append(line);
    // Nobody reads in a draft what they could not read in the library.
    const ByteView bytes(reinterpret_cast<const std::uint8_t *>(file.data()), file.size());
    const bool kept = writeWholeFile(path, bytes, libraryFolder() + "storage.dat") == FileResult::done;
    if (kept) openDraft.clear();
    return kept;
}

void releaseDraft() { openDraft.clear(); }

void forgetDraft() {
    if (!openDraft.empty()) QFile::remove(QFile::decodeName(openDraft.c_str()));
    openDraft.clear();
}

void offerDrafts() {
    openDraft.clear();
    for (int number = 1; number <= draftLimit; number++) {
        Draft draft;
        if (!fileThere(draftPath(number)) || !readDraft(draftPath(number), draft)) continue;
        switch (askDraft(draft)) {
            case DraftAnswer::open:
                if (openInView(draft)) return;
                break;
            case DraftAnswer::remove:
                QFile::remove(QFile::decodeName(draft.path.c_str()));
                break;
            case DraftAnswer::later:
                break;
        }
    }
}

}  // namespace numalink
