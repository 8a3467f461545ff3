// Items that are to come to stand in folders, held against what stands there, and brought there as it was chosen, in
// one change that can be taken back. Names count by kind: a matrix and a program may share one. Graphical thread.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "store/item_store.h"
#include "telling/user_interface.h"

namespace numalink {

// What is to come, and where to. A folder that isn't made yet has no id, and holds nothing.
struct Arriving {
    ItemId id = noItem;
    ItemId folder = noItem;
    std::string where;      // UTF-8, the folder's path; tells apart those that aren't made yet
    std::size_t batch = 0;  // what comes from one file: its items are not held against each other
    std::string wanted;     // calculator codes, the free name that was told; another one where it is taken by now
};

struct Arrival : ArrivalRow {
    Arriving from;
    std::string codes;          // the name in calculator codes
    std::vector<ItemId> taken;  // of its kind and name in the folder, by rising id
    std::string freeCodes;      // the free name, which no other arrival has either
};

// In the order of arriving; what isn't there any more is left out. What is the same is preset to be skipped, what
// differs to be kept beside the other.
std::vector<Arrival> planArrivals(const std::vector<Arriving> &arriving);
bool anyTaken(const std::vector<Arrival> &arrivals);

struct ArrivalCounts {
    std::size_t placed = 0, replaced = 0, renamed = 0, skipped = 0;
};
// Brings them to their folders, which have to be there. What has changed there since the plan was made is seen: names
// that were taken meanwhile are kept beside. False when nothing was done (told).
bool placeArrivals(const std::vector<Arrival> &arrivals, ArrivalCounts &counts);

// "SNAKE" in "Games": how state and choice are called, in the user's language.
std::string wordsOf(ArrivalState state);
std::string choiceWords(const ArrivalRow &row);

}  // namespace numalink
