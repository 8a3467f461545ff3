// The folders that every path of the program starts from. Set once at start-up, before any other thread; the library's
// is set anew where the user opens another, with the store closed and no other thread at work.
#pragma once

#include <string>

namespace numalink {

// The folder of the executable file, with a final "/".
const std::string &programFolder();
void setProgramFolder(const std::string &folder);

// The data folder of a program that is installed in a prefix: share/numalink beside the folder of the executable file.
// Whether there is one isn't asked.
std::string sharedDataFolder();

// The path of a data file or folder (casio.ptt, *.cft, Language): beside the executable file where one is there, else
// in the shared data folder where one is there, else the first of these.
std::string dataPath(const std::string &name);

// The folder of storage.dat with its copies and drafts, with a final "/". The program folder unless set.
const std::string &libraryFolder();
void setLibraryFolder(const std::string &folder);

// The folder of settings.xml, with a final "/". The library folder unless set.
const std::string &settingsFolder();
void setSettingsFolder(const std::string &folder);  // empty: the library folder again

// Where the user's own library and settings lie, with final "/": both in the folder that NUMALINK_HOME names; else both
// beside the executable file, where the data files lie there too and that folder can be written (a program that is
// carried about); else in XDG_DATA_HOME/numalink and XDG_CONFIG_HOME/numalink. Makes nothing.
struct OwnFolders {
    std::string library;
    std::string settings;
};
OwnFolders ownFolders();

// The user's home folder, with a final "/": HOME, or what the system knows of the user.
std::string homeFolder();

// The path from "/" on of one that may begin at the current folder. Links and ".." stay; an empty one stays empty.
std::string absolutePath(std::string path);

}  // namespace numalink
