// Item files into the library: the kind of file is told by its first bytes, its items go to the temporary folder,
// and a question says where from there. Graphical thread only.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "telling/user_interface.h"

namespace numalink {

inline constexpr std::uint64_t importFileLimit = 64u << 20;  // bytes of a file that is read at all
inline constexpr std::size_t importFolderNameLimit = 300;

extern std::string importFolderName;  // UTF-8; written at the start of each import, edited by the question

struct FileToImport {
    std::string path;
    std::string baseName;  // UTF-8; stands for it as folder name
};

struct ImportWays {
    void (*starts)(const std::string &path) = nullptr;  // told ahead of each file
    bool alwaysLists = false;                           // also what is all new is shown ahead
    // Asked ahead of each file once no file has a question of its own any more; false cancels the import.
    std::function<bool(std::size_t done, std::size_t all)> goesOn = {};
    std::function<void()> pauses = {};  // something is asked next, or all is read
};

// Imports files: each is asked about, unless an answer was given for all, and what comes in is shown ahead as one list
// where names are taken or there was something to tell. All outcome is told to the user. What an earlier import has
// parked goes, unless it waits for its transmission. All that comes into the library is taken back in one step. Of an
// import that was cancelled nothing stays.
void importFiles(const std::vector<FileToImport> &files, const ImportWays &ways = {});
void importFile(const std::string &path, const std::string &baseName);

// A file's name without folder and last ending.
std::string importBaseName(const std::string &path);

}  // namespace numalink
