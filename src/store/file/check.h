// Whether what a library file holds can be right: the head record against the file's size, and the record heads
// against it and against each other. Pure. Only store/ and its tests include this.
#pragma once

#include <string>
#include <vector>

#include "store/file/state.h"

namespace numalink {

// Marks in slots what isn't sound, and gives the number of places with damage, 0 when all is well. slots holds a
// head for each slot of main, unsound where it couldn't be read. A circle of parents counts as damage, and its
// folders stay usable, so that they can be dragged out of it or deleted. So does a second temporary folder, which stays
// usable as an ordinary one, and a folder in the temporary one, which stays usable at the top.
std::uint32_t checkStore(const MainHeader &main, std::uint64_t fileSize, std::vector<Slot> &slots);

// Whether a record can lie at this offset, by its head and the file's size alone.
bool recordIsSound(const ItemHeader &head, std::uint64_t offset, std::uint64_t fileSize);

// Bytes below the end of the records that no sound record covers.
struct Stretch {
    std::uint64_t from, to;
    std::string before;  // name of the record ahead, whose size may be what is wrong
};
std::vector<Stretch> uncoveredStretches(const MainHeader &main, const std::vector<Slot> &slots);

// The folders that stand in a circle of parents.
std::vector<ItemId> foldersInCircle(const std::vector<Slot> &slots);

// One above every id of the sound records, and at least main.nextId.
std::uint32_t safeNextId(const MainHeader &main, const std::vector<Slot> &slots);

}  // namespace numalink
