// The moments of the library's programs, in the folder moments/ beside the library: ten slots a program, and where it
// was last stopped. Each is a file of its own, which may be deleted at any time, or taken elsewhere. Graphical thread.
#pragma once

#include <string>

#include "calculator/item_kinds.h"
#include "debugger/moment_form.h"
#include "platform/files.h"

namespace numalink {

inline constexpr int momentSlotCount = 10;
inline constexpr int momentSlotOfStop = 0;  // the others are 1 to 10

// In the folder of this library from now on, which has a final "/"; the moments of programs that are there no more go,
// where the library may be written.
void momentsOpen(const std::string &library);
std::string momentFolder();  // with a final "/"
std::string momentPath(ItemId program, int slot);

// In the place of what the slot held. The folder is made where it is missing.
FileResult momentKeep(ItemId program, int slot, ByteView moment);
bool momentDrop(ItemId program, int slot);  // true where nothing is there any more

// Of a slot that holds something: when it was saved and what was on display, where the file is sound.
struct KeptMoment {
    int slot = 0;
    MomentFault fault = MomentFault::none;
    std::uint64_t time = 0;  // seconds since 1970
    Surface picture;
};
std::vector<KeptMoment> keptMoments(ItemId program);  // by slot
MomentFault momentOfSlot(ItemId program, int slot, Moment &moment);

}  // namespace numalink
