#include "shell/commands/library_commands.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMainWindow>

#include "platform/files.h"
#include "platform/program_folder.h"
#include "settings/recent_libraries.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "store/care/user_files.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

struct LibraryMenu {
    QString lastPlace = QDir::homePath();  // of the dialogs: where libraries of one's own are kept
    std::vector<std::string> recent;       // but for the one that is open
};
LibraryMenu state;

constexpr int menuPathLimit = 60;  // characters of a path in a menu

constexpr char libraryName[] = "storage.dat";

// "Open library" out of "Open &Library ...".
QString titleOf(Text menuText) {
    QString title = textOf(menuText).remove(QLatin1Char('&'));
    while (title.endsWith(QLatin1Char('.')) || title.endsWith(QLatin1Char(' '))) title.chop(1);
    return title;
}

std::string folderPath(const QString &folder) {
    std::string path = QFile::encodeName(QDir::cleanPath(QFileInfo(folder).absoluteFilePath())).toStdString();
    return path.ends_with('/') ? path : path + "/";
}

bool holdsLibrary(const std::string &folder) { return fileExists(folder + libraryName); }

}  // namespace

void openLibrary() {
    const QString path = QFileDialog::getOpenFileName(
        mainWindow, titleOf(Text::menuOpenLibrary), state.lastPlace,
        textOf(Text::filterLibrary) + QStringLiteral(" (") + QLatin1String(libraryName) + QLatin1Char(')'));
    if (path.isEmpty()) return;
    state.lastPlace = QFileInfo(path).absolutePath();
    openLibraryFile(QFile::encodeName(path).toStdString());
}

void newLibrary() {
    const QString chosen =
        QFileDialog::getExistingDirectory(mainWindow, titleOf(Text::menuNewLibrary), state.lastPlace);
    if (chosen.isEmpty()) return;
    state.lastPlace = chosen;
    const std::string folder = folderPath(chosen);
    if (holdsLibrary(folder))
        tellUser(Text::libraryThere, {folder});
    else
        changeLibrary(folder, true);
}

void openLibraryFile(const std::string &path) {
    const std::size_t name = path.rfind('/') + 1;
    if (path.compare(name, std::string::npos, libraryName) == 0)
        changeLibrary(path.substr(0, name), false);
    else
        tellUser(isLibraryFile(path) ? Text::libraryOtherName : Text::storeAbsent, {path});
}

void listRecentLibraries() {
    state.recent = recentLibraries();
    std::erase_if(state.recent, [](const std::string &folder) { return isSameFile(folder, libraryFolder()); });
}

bool anyRecentLibrary() { return !state.recent.empty(); }
bool isRecentLibrary(int place) { return static_cast<std::size_t>(place) < state.recent.size(); }

QString recentLibraryWords(int place) {
    if (!isRecentLibrary(place)) return {};
    QString path = QFile::decodeName(state.recent[static_cast<std::size_t>(place)].c_str());
    if (path.size() > menuPathLimit) path = QChar(0x2026) + path.right(menuPathLimit);
    path.replace(QLatin1Char('&'), QLatin1String("&&"));
    return QStringLiteral("&%1 ").arg(place + 1) + path;
}

void openRecentLibrary(int place) {
    if (!isRecentLibrary(place)) return;
    const std::string folder = state.recent[static_cast<std::size_t>(place)];
    changeLibrary(folder, false);
}

}  // namespace numalink
