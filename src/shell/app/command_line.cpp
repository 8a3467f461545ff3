#include "shell/app/command_line.h"

#include <QtGlobal>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string_view>

#include "platform/program_folder.h"
#include "store/care/user_files.h"

namespace numalink {

namespace {

constexpr char helpText[] =
    "numalink [--trace FILE] [FILE...]\n"
    "Keeps programs and data of graphing calculators, and opens the files as if they were dropped on its window.\n"
    "A library's folder, or its storage.dat, is opened in place of your own; in an empty folder one is begun.\n\n"
    "  --help        this text\n"
    "  --version     the version\n"
    "  --trace FILE  write what goes over the line to a calculator behind this file, decoded\n"
    "Options of Qt, such as -platform, are taken too.\n\n"
    "NUMALINK_HOME names the folder of library and settings. Without it they lie beside the program, where that\n"
    "folder can be written, else in XDG_DATA_HOME/numalink and XDG_CONFIG_HOME/numalink.\n";

namespace fs = std::filesystem;

constexpr char libraryName[] = "storage.dat";

constexpr char traceOption[] = "--trace", endOfOptions[] = "--";

// Among somebody's files no library is begun.
bool mayBeLibrary(const fs::path &folder, bool isAlone) {
    std::error_code failure;
    return fs::exists(folder / libraryName, failure) || fs::exists(folder / "backups", failure) ||
           (isAlone && fs::is_empty(folder, failure)) || failure;
}

// The folder of the library that path leads to; empty where it is none.
std::string libraryAt(const std::string &path, bool isAlone) {
    std::error_code failure;
    if (fs::is_directory(path, failure)) return mayBeLibrary(path, isAlone) ? path : "";
    const fs::path file = path;
    return file.filename() == libraryName && isLibraryFile(path) ? file.parent_path().string() : "";
}

// Qt would end the program as by a fault. Where it may take a platform of its own choice, or one that was named, it is
// for Qt to tell.
bool lacksDisplay(bool platformGiven) {
    const char *const variables[] = {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};
    return !platformGiven && std::ranges::all_of(variables, qEnvironmentVariableIsEmpty);
}

}  // namespace

std::optional<int> answeredAtOnce(int argc, const char *const *argv) {
    bool platformGiven = false;
    for (int i = 1; i < argc; i++) {
        const std::string_view argument = argv[i];
        if (argument == endOfOptions) break;
        if (argument == "--help" || argument == "-h") return std::fputs(helpText, stdout) < 0 ? 1 : 0;
        if (argument == traceOption && i++ + 1 == argc) {
            std::fputs("numalink: --trace needs a file\n", stderr);
            return wrongUse;
        }
        if (argument == "--version") return std::puts("numalink " NUMALINK_VERSION) < 0 ? 1 : 0;
        platformGiven = platformGiven || argument.starts_with("-platform") || argument.starts_with("--platform") ||
                        argument == "-display" || argument == "--display";
    }
    if (lacksDisplay(platformGiven)) {
        std::fputs("numalink: there is no display (DISPLAY isn't set); numalink-cli works without one\n", stderr);
        return 1;
    }
    return std::nullopt;
}

std::string unknownOption(const std::vector<std::string> &arguments) {
    for (const std::string &argument : arguments) {
        if (argument == endOfOptions) break;
        if (argument.size() > 1 && argument.starts_with('-') && argument != traceOption) return argument;
    }
    return {};
}

StartWish chooseLibrary(const std::vector<std::string> &arguments) {
    const OwnFolders own = ownFolders();
    setLibraryFolder(own.library);
    setSettingsFolder(own.settings);
    StartWish wish;
    bool onlyFiles = false;
    for (std::size_t i = 0; i < arguments.size(); i++) {
        const bool isOption = !onlyFiles && arguments[i].starts_with("--");
        if (isOption && arguments[i] == endOfOptions) {
            onlyFiles = true;
            continue;
        }
        if (isOption && arguments[i] == traceOption && i + 1 < arguments.size()) {
            wish.trace = absolutePath(arguments[++i]);
            continue;
        }
        const std::string path = absolutePath(arguments[i]);
        const std::string folder = wish.ofThisLibrary ? "" : libraryAt(path, arguments.size() == 1);
        if (folder.empty()) {
            wish.files.push_back(path);
            continue;
        }
        setLibraryFolder(folder);
        wish.ofThisLibrary = true;
    }
    wish.asksWhenNew = !wish.ofThisLibrary && wish.files.empty();
    return wish;
}

}  // namespace numalink
