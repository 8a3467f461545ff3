// What a library's file holds, record by record, and putting a damaged one in order. For a library that isn't open.
#pragma once

#include <string>
#include <vector>

#include "calculator/item_kinds.h"

namespace numalink {

enum class CheckOutcome {
    checked,
    absent,           // there is no storage.dat in the library folder
    held,             // some program has it open
    unreadable,       // it can't be opened for reading and writing
    journalUnusable,  // the journal beside it can't be read, or a change that it tells of can't be taken back
    newer,            // a newer version wrote it
    noCopy,           // to restore it from
    notWritten        // a repair or restoring failed; the file is as it was, or whole
};

enum class RecordFate {
    sound,
    found,      // sound, but the table of records doesn't know it
    shortened,  // bytes are missing from it, so that the next record begins within it; the rest can be kept
    lost,       // named by the table, and nothing that could be a record; or found, and the table is full
    rest        // bytes that no record explains, behind the record of this name, whose size may be what is wrong
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
    bool interrupted = false;   // a change was; a repair or an opening takes it back, and the records tell its middle
    std::string otherJournal;   // the path of one that belongs to another library file; set aside by a repair
    bool headUsable = false;    // if not, the library doesn't open
    std::uint32_t damage = 0;   // places; 0 for a file in order
    std::uint32_t circles = 0;  // folders in a circle of parents
    std::vector<CheckedRecord> records;
    bool repaired = false;      // or restored; the records are those ahead of that
    bool perhapsNewer = false;  // a newer version may have written it: no copy is put in its place
};

// Any thread, while the store is closed. A repair takes an interrupted change back, keeps a copy of a damaged file
// beside it, and writes all sound and found records anew, in one change.
LibraryCheck checkLibrary(bool repair);

// Puts the newest daily copy in the place of a library that is missing, empty or damaged, which is kept beside it; one
// that is in order stays. Without a copy in order, nothing is done. Any thread, while the store is closed.
LibraryCheck restoreLibrary();
// The newest daily copy in order, by its path, empty without one; and the date in its name.
std::string newestSoundCopy();
std::string dateOfCopy(const std::string &path);
// Whether a library that storeOpen has refused, or would refuse, is one whose place a copy can take.
bool libraryNeedsCopy();

}  // namespace numalink
