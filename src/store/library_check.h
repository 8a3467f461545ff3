// What a library's file holds, record by record, and putting a damaged one in order. For a library that isn't open.
#pragma once

#include <string>
#include <vector>

#include "calculator/item_kinds.h"

namespace numalink {

enum class CheckOutcome {
    checked,
    absent,      // there is no storage.dat in the library folder
    held,        // some program has it open
    unreadable,  // it, or its journal, can't be read, or a newer version wrote it
    notWritten,  // a repair failed; the file is as it was
    broken       // a repair failed half-way; the next repair or opening takes it back
};

enum class RecordFate {
    sound,
    found,  // sound, but the table of records doesn't know it
    lost    // named by the table, and nothing that could be a record
};

struct CheckedRecord {
    ItemId id = noItem;
    ItemKind kind = kind::unknown;
    std::string name;  // calculator codes, as far as they are legible
    std::uint64_t offset = 0;
    RecordFate fate = RecordFate::sound;
};

struct LibraryCheck {
    CheckOutcome outcome = CheckOutcome::unreadable;
    bool interrupted =
        false;  // a change was; only a repair or an opening takes it back, and the records tell its middle
    bool headUsable = false;    // if not, the library doesn't open
    std::uint32_t damage = 0;   // places; 0 for a file in order
    std::uint32_t circles = 0;  // folders in a circle of parents
    std::vector<CheckedRecord> records;
    bool repaired = false;  // the records are those ahead of the repair
};

// Any thread, while the store is closed. A repair takes an interrupted change back, keeps a copy of a damaged file
// beside it, and writes all sound and found records anew, in one change.
LibraryCheck checkLibrary(bool repair);

}  // namespace numalink
