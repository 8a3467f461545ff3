// The picture memories, blank in a fresh process.
#include "emulator/screens/pictures.h"

#include <array>

namespace numalink {

namespace {

std::array<Surface, memoryCount> &memories() {
    static std::array<Surface, memoryCount> all = [] {
        std::array<Surface, memoryCount> made;
        made.fill(Surface(displayWidth, displayHeight));
        return made;
    }();
    return all;
}

}  // namespace

Surface *pictureMemory(int number) {
    return number >= 1 && number <= memoryCount ? &memories()[static_cast<std::size_t>(number - 1)] : nullptr;
}

}  // namespace numalink
