// What the status bar says of a program: its size, and that it has a password. Graphical thread only.
#pragma once

#include "store/item_store.h"

namespace numalink {

void programToStatus(const StoredItem &item);
void programToStatus(ItemId id);

// Bytes that the calculator of the settings has for programs; within these bounds, whatever the file of settings says.
inline constexpr int leastMemory = 1'000, mostMemory = 9'999'999;
int memoryOfCalculator(const char *key);
int memoryOfCalculator();

}  // namespace numalink
