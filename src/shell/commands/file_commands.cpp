#include "shell/commands/file_commands.h"

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMainWindow>
#include <QTimer>
#include <deque>
#include <set>
#include <utility>

#include "calculator/charset.h"
#include "exchange/export/export.h"
#include "exchange/export/share_page.h"
#include "exchange/import/import.h"
#include "exchange/import/import_formats.h"
#include "platform/program_folder.h"
#include "platform/thread_role.h"
#include "shell/commands/library_commands.h"
#include "shell/parts/long_work.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/save_path.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/tree_refresh.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/selection.h"
#include "shell/tree/several.h"
#include "shell/tree/tree_rules.h"
#include "store/care/user_files.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

struct FileCommands {
    QString lastFolder;  // of the file dialog, for this run
    std::deque<std::string> filesToImport;
    bool importing = false;
};
FileCommands state;

constexpr int importAgainMilliseconds = 100;

struct SampleFile {
    const char *file;
    const char *folder;
};
constexpr SampleFile sampleFiles[] = {{"games.cat", "Games"}, {"maths.fxi", "Maths"}, {"plots.cas", "Plots"}};
constexpr char firstSample[] = "SNAKE";
const char *sampleFolder = "";

std::set<ItemId> itemsInTree() {
    std::set<ItemId> items;
    for (const ItemEntry &entry : storeListItems())
        if (treeEntryOf(entry.id) != nullptr) items.insert(entry.id);
    return items;
}

// The first item in the order of the tree that came in; none when nothing did.
ItemId firstArrived(const std::set<ItemId> &before) {
    for (const TreeEntry &entry : treeContent(storeListItems()).entries)
        if (!isFolderKind(entry.kind) && !before.contains(entry.id) && treeEntryOf(entry.id) != nullptr)
            return entry.id;
    return noItem;
}

// An import has left the view: what came in is shown, else what was. What was told in the status bar stays.
void showAfterImport(const std::set<ItemId> &before) {
    const std::string told = itemField->text().toStdString();
    const ItemId arrived = firstArrived(before);
    if (arrived != noItem && selectItem(arrived))
        showInTree(arrived);
    else
        showSelectedAgain();
    if (!told.empty()) userInterface.statusText(StatusPart::item, Text::none, told);
}

std::string takeFirstFile() {
    std::string path = std::move(state.filesToImport.front());
    state.filesToImport.pop_front();
    return path;
}

// A library among the files is opened in its turn: what stands behind it goes into that one.
std::vector<FileToImport> takeFilesAheadOfLibrary() {
    std::vector<FileToImport> files;
    while (!state.filesToImport.empty() && !isLibraryFile(state.filesToImport.front())) {
        const std::string path = takeFirstFile();
        files.push_back({path, importBaseName(QFile::decodeName(path.c_str()).toStdString())});
    }
    return files;
}

// With a bar and Cancel, as long as no file has a question of its own.
void importTogether(const std::vector<FileToImport> &files) {
    std::optional<LongWork> work;
    const auto goesOn = [&](std::size_t done, std::size_t all) {
        if (!work) work.emplace(Text::importReading, all);
        return work->step(done);
    };
    importFiles(files, {.goesOn = goesOn, .pauses = [&] { work.reset(); }});
}

// One file after the other, and none while a box or dialog is open: an import empties the temporary folder, which the
// dialog of another import may be asking about.
void importWaitingFiles() {
    if (state.importing || state.filesToImport.empty()) return;
    if (QApplication::activeModalWidget() != nullptr) {
        QTimer::singleShot(importAgainMilliseconds, mainWindow, importWaitingFiles);
        return;
    }
    state.importing = true;
    std::set<ItemId> before = itemsInTree();
    while (!state.filesToImport.empty() && storeIsOpen()) {
        const std::vector<FileToImport> files = takeFilesAheadOfLibrary();
        if (!files.empty()) {
            importTogether(files);
            continue;
        }
        openLibraryFile(takeFirstFile());
        before = itemsInTree();
    }
    state.importing = false;
    state.filesToImport.clear();
    refreshTree();
    if (storeIsOpen()) showAfterImport(before);
}

}  // namespace

void openFiles() {
    QStringList bothCases;
    for (const ImportFormat &format : importFormats()) {
        for (const char *ending : format.endings) {
            const QString pattern = QStringLiteral("*.") + QLatin1String(ending);
            bothCases << pattern << pattern.toUpper();
        }
    }
    const QString filter = textOf(Text::filterImportable) + QStringLiteral(" (") + bothCases.join(QLatin1Char(' ')) +
                           QStringLiteral(");;") + textOf(Text::filterAllFiles) + QStringLiteral(" (*)");
    const QStringList chosen = QFileDialog::getOpenFileNames(mainWindow, QString(), state.lastFolder, filter);
    if (chosen.isEmpty()) return;
    state.lastFolder = QFileInfo(chosen.first()).absolutePath();
    std::vector<std::string> paths;
    for (const QString &path : chosen) paths.push_back(QFile::encodeName(path).toStdString());
    importDropped(paths);
}

void importDropped(const std::vector<std::string> &paths) {
    state.filesToImport.insert(state.filesToImport.end(), paths.begin(), paths.end());
    importWaitingFiles();
}

void importSamples() {
    assertRole(ThreadRole::graphical);
    if (state.importing) return;
    state.importing = true;
    const auto asked = std::exchange(userInterface.askImport, [](ImportQuestion &question) {
        question.action = ImportAction::oneFolder;
        question.folderName = sampleFolder;
    });
    for (const auto &[file, folder] : sampleFiles) {
        sampleFolder = folder;
        importFile(dataPath(std::string("samples/") + file), folder);
    }
    userInterface.askImport = asked;
    state.importing = false;
    refreshTree();
    const ItemId games = storeResolvePath(sampleFiles[0].folder, false);
    if (const ItemId first = storeFindItem(firstSample, games); first != noItem) selectItem(first);
}

void saveItems() { exportWithQuestion(severalSelected() ? itemsWithin(selectedOutermost()) : std::vector<ItemId>()); }

void shareSelected() {
    const std::optional<ItemEntry> item = storeReadEntry(selectedItemId());
    if (!item) return;
    const QString name = toQt(utf8FromCalculator(item->name));
    const QString path = askSavePath(Text::filterPage, QStringLiteral("html"), name);
    if (path.isEmpty()) return;
    if (sharePage({.program = item->id, .title = {}, .path = QFile::encodeName(path).toStdString()}))
        statusLine(StatusPart::item, Text::shareDone, {path.toStdString()});
}

QString sharePageWords() { return textOf(pagePlayerThere() ? Text::menuShare : Text::menuShareNot); }

void forgetFileCommands() { state = {}; }

void exitProgram() { endProgram(); }

}  // namespace numalink
