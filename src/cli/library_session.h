// A library folder opened for one command, and how a command names an item in it.
#pragma once

#include <string>

#include "calculator/item_kinds.h"

namespace numalink {

enum class WhenAbsent { tell, make };

// Loads settings, wording and token table; opens storage.dat, which is made, with its folder, only where that is asked
// for. What fails has been told. The settings are those of the folder; for the user's own library, those that the
// window has. Closes the library with the object.
struct LibrarySession {
    explicit LibrarySession(const std::string &folder, WhenAbsent whenAbsent = WhenAbsent::tell);
    ~LibrarySession();
    LibrarySession(const LibrarySession &) = delete;
    LibrarySession &operator=(const LibrarySession &) = delete;

    bool tokens = false;  // the token table is there: without it no program can be read
    bool open = false;
};

// Wording and token table beside the program, with the settings of the settings folder. False without a token table.
// Settings that can't be read are told on standard error: the defaults stand in for them.
bool loadTables();

// An id, or a path such as "/Programs/SNAKE" in UTF-8. noItem when there is none.
ItemId findItem(const std::string &item);

}  // namespace numalink
