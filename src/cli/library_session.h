// A library folder opened for one command, and how a command names an item in it.
#pragma once

#include <string>

#include "calculator/item_kinds.h"

namespace numalink {

// Makes the folder when it is absent; loads settings, wording and token table; opens storage.dat. What fails has been
// told. Closes the library with the object.
struct LibrarySession {
    explicit LibrarySession(const std::string &folder);
    ~LibrarySession();
    LibrarySession(const LibrarySession &) = delete;
    LibrarySession &operator=(const LibrarySession &) = delete;

    bool tokens = false;  // the token table is there: without it no program can be read
    bool open = false;
};

// Wording and token table beside the program, with the settings of the library folder. False without a token table.
// Settings that can't be read are told on standard error: the defaults stand in for them.
bool loadTables();

// KEY=VALUE for this command alone; a key without a dot is one of the emulator's. False for what is none.
bool useSetting(const std::string &assignment);

// An id, or a path such as "/Programs/SNAKE" in UTF-8. noItem when there is none.
ItemId findItem(const std::string &item);

}  // namespace numalink
