#include "cli/library_session.h"

#include <charconv>
#include <cstdio>

#include "calculator/charset.h"
#include "history/history.h"
#include "platform/files.h"
#include "platform/program_folder.h"
#include "settings/settings_store.h"
#include "store/item_store.h"
#include "telling/language_table.h"
#include "text/token_table.h"

namespace numalink {

namespace {

constexpr char emulatorSettings[] = "Numalink.Settings.Emulator.";

// The item of this name in the folder at path, or noItem.
ItemId findInFolder(std::string_view folderPath, std::string_view name) {
    const ItemId folder = storeResolvePath(folderPath, false);
    return folder == noItem ? noItem : storeFindItem(name, folder);
}

bool loadTablesFor(const std::string &folder, WhenAbsent whenAbsent) {
    if (whenAbsent == WhenAbsent::make) makeFolders(folder);  // storeOpen tells that there is none
    setLibraryFolder(folder);
    const OwnFolders own = ownFolders();
    setSettingsFolder(isSameFile(own.library, folder) ? own.settings : folder);
    return loadTables();
}

}  // namespace

LibrarySession::LibrarySession(const std::string &folder, WhenAbsent whenAbsent)
    : tokens(loadTablesFor(folder, whenAbsent)),
      open(storeOpen(whenAbsent == WhenAbsent::make ? WhenEmptied::refuse : WhenEmptied::neverBegin)) {
    if (open) historyOpen();
}

LibrarySession::~LibrarySession() {
    historyClose();
    storeClose();
}

bool loadTables() {
    if (!settingsLoad())
        std::fprintf(stderr, "numalink-cli: %ssettings.xml can't be read whole; defaults stand in\n",
                     settingsFolder().c_str());
    languageLoadChosen(settingsValue(setting::language));
    return tokenTableLoad();
}

bool useSetting(const std::string &assignment) {
    const std::size_t equals = assignment.find('=');
    if (equals == std::string::npos) return false;
    std::string key = assignment.substr(0, equals);
    if (key.find('.') == std::string::npos) key.insert(0, emulatorSettings);
    return settingsSetValue(key, assignment.substr(equals + 1));
}

ItemId findItem(const std::string &item) {
    ItemId id = 0;
    const auto [end, error] = std::from_chars(item.data(), item.data() + item.size(), id);
    if (error == std::errc{} && end == item.data() + item.size()) return storeReadEntry(id) ? id : noItem;
    std::string path = calculatorFromUtf8(item);
    if (!path.starts_with('/')) path.insert(0, "/");
    if (path.ends_with('/')) path.pop_back();  // a folder, as shells complete it
    // A name may hold "/" itself: the shortest name that is found counts.
    for (std::size_t slash = path.rfind('/'); slash != std::string::npos;
         slash = slash == 0 ? std::string::npos : path.rfind('/', slash - 1)) {
        const ItemId found = findInFolder(path.substr(0, slash + 1), path.substr(slash + 1));
        if (found != noItem) return found;
    }
    return noItem;
}

}  // namespace numalink
