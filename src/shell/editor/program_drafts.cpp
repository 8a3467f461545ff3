#include "shell/editor/program_drafts.h"

#include <QStringList>

#include "calculator/charset.h"
#include "platform/file_port.h"
#include "platform/files.h"
#include "platform/program_folder.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

// First line, then the item's id, kind and name, a line each, then the text.
constexpr char draftHead[] = "Numalink draft 1";
constexpr std::uint64_t draftSizeLimit = 16u << 20;  // bytes
constexpr int headLines = 4;

struct OpenDraft {
    std::string path;      // of the one whose text is on view, or empty
    bool isSaved = false;  // begun by saveDraft: nobody was told of it
};
OpenDraft state;

std::string draftPath(int number) { return libraryFolder() + "draft-" + std::to_string(number) + ".txt"; }

std::string freePath() {
    for (int number = 1; number <= draftLimit; number++)
        if (!fileExists(draftPath(number))) return draftPath(number);
    return {};
}

bool writeDraft(const std::string &path, const ItemEntry &item, const QString &text) {
    if (path.empty()) return false;
    makeFolders(libraryFolder());  // should somebody have removed it, the text is still worth keeping
    std::string name = utf8FromCalculator(item.name);
    std::erase(name, '\n');
    std::string file = draftHead;
    for (const std::string &line : {std::to_string(item.id), std::to_string(item.kind), name, text.toStdString()})
        file.append("\n").append(line);
    // Nobody reads in a draft what they could not read in the library.
    const ByteView bytes(reinterpret_cast<const std::uint8_t *>(file.data()), file.size());
    return writeWholeFile(path, bytes, libraryFolder() + "storage.dat") == FileResult::done;
}

std::string pathToWrite() { return state.path.empty() ? freePath() : state.path; }

}  // namespace

std::string draftFolder() { return libraryFolder(); }

bool keepDraft(const ItemEntry &item, const QString &text) {
    if (!writeDraft(pathToWrite(), item, text)) return false;
    state = {};
    return true;
}

bool saveDraft(const ItemEntry &item, const QString &text) {
    const std::string path = pathToWrite();
    if (!writeDraft(path, item, text)) return false;
    if (state.path.empty()) state = {.path = path, .isSaved = true};
    return true;
}

void dropSavedDraft() {
    if (state.isSaved) forgetDraft();
}

std::optional<Draft> readDraft(int number) {
    const std::string path = draftPath(number);
    Bytes bytes;
    if (readWholeFile(path, bytes, draftSizeLimit) != FileResult::done) return std::nullopt;
    const QString all =
        QString::fromUtf8(reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size()));
    if (!all.startsWith(QLatin1String(draftHead) + QLatin1Char('\n'))) return std::nullopt;
    const QStringList lines = all.split(QLatin1Char('\n'));
    if (lines.size() <= headLines) return std::nullopt;
    Draft draft;
    draft.path = path;
    draft.id = lines[1].toUInt();
    draft.kind = lines[2].toUInt() == kind::functionMemory ? kind::functionMemory : kind::program;
    draft.name = lines[3];
    draft.text = lines.mid(headLines).join(QLatin1Char('\n'));
    return draft;
}

void takeDraft(const Draft &draft) { state = {.path = draft.path, .isSaved = false}; }

void releaseDraft() { state = {}; }

void removeDraft(const Draft &draft) { filePort.remove(draft.path.c_str()); }

void forgetDraft() {
    if (!state.path.empty()) filePort.remove(state.path.c_str());
    state = {};
}

}  // namespace numalink
