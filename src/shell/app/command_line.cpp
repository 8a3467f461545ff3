#include "shell/app/command_line.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <string_view>

#include "platform/program_folder.h"
#include "store/care/user_files.h"

namespace numalink {

namespace {

constexpr char helpText[] =
    "numalink [--trace FILE] [FILE...]\n"
    "Keeps programs and data of graphing calculators, and opens the files as if they were dropped on its window.\n"
    "A folder, or a storage.dat, is a library that is opened in place of your own.\n\n"
    "  --help        this text\n"
    "  --version     the version\n"
    "  --trace FILE  write what goes over the line to a calculator behind this file, decoded\n"
    "Options of Qt, such as -platform, are taken too.\n\n"
    "NUMALINK_HOME names the folder of library and settings. Without it they lie beside the program, where that\n"
    "folder can be written, else in XDG_DATA_HOME/numalink and XDG_CONFIG_HOME/numalink.\n";

constexpr int wrongUse = 2;  // exit status

std::string folderOf(const QString &argument) {
    const QFileInfo file(argument);
    if (file.isDir()) return QFile::encodeName(file.absoluteFilePath()).toStdString();
    const bool isLibrary =
        file.fileName() == QLatin1String("storage.dat") && isLibraryFile(QFile::encodeName(argument).toStdString());
    return isLibrary ? QFile::encodeName(file.absolutePath()).toStdString() : "";
}

}  // namespace

std::optional<int> answeredAtOnce(int argc, const char *const *argv) {
    for (int i = 1; i < argc; i++) {
        const std::string_view argument = argv[i];
        if (argument == "--") break;
        if (argument == "--help" || argument == "-h") return std::fputs(helpText, stdout) < 0 ? 1 : 0;
        if (argument == "--trace" && i++ + 1 == argc) {
            std::fputs("numalink: --trace needs a file\n", stderr);
            return wrongUse;
        }
        if (argument == "--version") return std::puts("numalink " NUMALINK_VERSION) < 0 ? 1 : 0;
    }
    return std::nullopt;
}

StartWish chooseLibrary(const QStringList &arguments) {
    const OwnFolders own = ownFolders();
    setLibraryFolder(own.library);
    setSettingsFolder(own.settings);
    StartWish wish;
    for (qsizetype i = 0; i < arguments.size(); i++) {
        const QString &argument = arguments[i];
        if (argument == QLatin1String("--trace") && i + 1 < arguments.size()) {
            wish.trace = QFileInfo(arguments[++i]).absoluteFilePath();
            continue;
        }
        const std::string folder = wish.ofThisLibrary ? "" : folderOf(argument);
        if (folder.empty()) {
            wish.files << QDir::cleanPath(QFileInfo(argument).absoluteFilePath());
            continue;
        }
        setLibraryFolder(folder);
        wish.ofThisLibrary = true;
    }
    wish.asksWhenNew = !wish.ofThisLibrary && wish.files.isEmpty();
    return wish;
}

}  // namespace numalink
