// Another library in place of the one that is open: from a file, from a new folder, from the list of those opened last.
// Graphical thread only.
#pragma once

#include <QString>
#include <string>

namespace numalink {

void openLibrary();  // the Open Library command: asks for a storage.dat
void newLibrary();   // the New Library command: asks for a folder

// A file that was chosen as a library, dropped or named at the start, by its absolute path in the file system's bytes.
// Told when it isn't called as one that is in use.
void openLibraryFile(const std::string &path);

// The entries of the menu of recent libraries, from 0 on; the one that is open isn't among them. They are listed at the
// start and after each change of the library.
void listRecentLibraries();
bool anyRecentLibrary();
bool isRecentLibrary(int place);
QString recentLibraryWords(int place);
void openRecentLibrary(int place);

// What opens it is put in at the start: the folder, with its final "/", and whether a library may be begun there.
inline bool (*changeLibrary)(const std::string &folder, bool mayBegin) = nullptr;

}  // namespace numalink
