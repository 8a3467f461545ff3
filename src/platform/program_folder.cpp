#include "platform/program_folder.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace numalink {

namespace {

std::string folderOfExecutable() {
    std::error_code failure;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", failure);
    return failure ? "./" : self.parent_path().string() + "/";
}

std::string &programFolderText() {
    static std::string folder = folderOfExecutable();
    return folder;
}

std::string libraryFolderText, settingsFolderText;

std::string withFinalSlash(const std::string &folder) {
    if (folder.empty()) return "./";
    return folder.back() == '/' ? folder : folder + "/";
}

bool isThere(const std::string &path) {
    std::error_code failure;
    return std::filesystem::exists(path, failure);
}

std::string variable(const char *name) {
    const char *value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): at the start, where nothing sets any
    return value == nullptr ? "" : value;
}

// A base folder of the desktop's. One that isn't absolute counts as not given.
std::string baseFolder(const char *name, const char *underHome) {
    const std::string given = variable(name);
    return withFinalSlash(given.starts_with('/') ? given : homeFolder() + underHome) + "numalink/";
}

bool isCarriedAbout() {
    const bool isInstalled = !isThere(programFolder() + "Language") && isThere(sharedDataFolder() + "Language");
    return !isInstalled && access(programFolder().c_str(), W_OK) == 0;
}

}  // namespace

std::string homeFolder() {
    if (const std::string home = variable("HOME"); home.starts_with('/')) return withFinalSlash(home);
    const passwd *user = getpwuid(getuid());  // NOLINT(concurrency-mt-unsafe): as above
    return user == nullptr || user->pw_dir == nullptr ? "/" : withFinalSlash(user->pw_dir);
}

std::string absolutePath(std::string path) {
    if (path.empty() || path.starts_with('/')) return path;
    while (path.size() > 2 && path.starts_with("./")) path.erase(0, 2);
    std::error_code failure;
    const std::filesystem::path whole = std::filesystem::absolute(path, failure);
    return failure ? path : whole.string();
}

const std::string &programFolder() { return programFolderText(); }
void setProgramFolder(const std::string &folder) { programFolderText() = withFinalSlash(folder); }

std::string sharedDataFolder() { return programFolder() + "../share/numalink/"; }

std::string dataPath(const std::string &name) {
    const std::string beside = programFolder() + name, shared = sharedDataFolder() + name;
    return !isThere(beside) && isThere(shared) ? shared : beside;
}

const std::string &libraryFolder() { return libraryFolderText.empty() ? programFolder() : libraryFolderText; }
void setLibraryFolder(const std::string &folder) { libraryFolderText = withFinalSlash(folder); }

const std::string &settingsFolder() { return settingsFolderText.empty() ? libraryFolder() : settingsFolderText; }
void setSettingsFolder(const std::string &folder) { settingsFolderText = folder.empty() ? "" : withFinalSlash(folder); }

OwnFolders ownFolders() {
    if (const std::string given = variable("NUMALINK_HOME"); !given.empty()) {
        const std::string home = withFinalSlash(absolutePath(given));
        return {home, home};
    }
    if (isCarriedAbout()) return {programFolder(), programFolder()};
    return {baseFolder("XDG_DATA_HOME", ".local/share"), baseFolder("XDG_CONFIG_HOME", ".config")};
}

}  // namespace numalink
