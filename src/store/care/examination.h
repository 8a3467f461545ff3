// What a library's file holds that can be kept, wherever it lies: by its table of records, and by looking for records
// that the table doesn't know or whose sizes are wrong. Nothing is written.
#pragma once

#include <vector>

#include "store/care/library_check.h"
#include "store/file/check.h"

namespace numalink {

// The head as it lies, and the records that can be kept.
struct Examined {
    MainHeader main{};
    std::vector<Slot> slots;             // of the table
    std::vector<std::uint64_t> offsets;  // of the records found outside it
    std::vector<ItemHeader> found;       // their heads
    std::vector<Stretch> strays;
    std::vector<std::size_t> shortened;  // slots of records from which bytes are missing
    std::uint64_t fileSize = 0;
};

// Of the file that is open, whose head and size are known; what it finds is told in check, too. headUsable says whether
// the head can be gone by.
void examine(Examined &examined, LibraryCheck &check) REQUIRES_LOCK(storeLock);

}  // namespace numalink
