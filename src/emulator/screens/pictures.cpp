// The picture memories, blank in a fresh process.
#include "emulator/screens/pictures.h"

#include <array>

#include "emulator/screens/display.h"
#include "emulator/screens/graph_screen.h"

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

void storePicture(int number) {
    if (Surface *memory = pictureMemory(number)) *memory = graphScreen();
}

void recallPictureQuietly(int number) {
    const Surface *memory = pictureMemory(number);
    if (!memory) return;
    for (int y = 0; y < displayHeight; y++) {
        for (int x = 0; x < displayWidth; x++) {
            const Color dot = dotAt(*memory, x, y);
            if (dot != lcdColor::background) putPixel(x, y, pixelColorOf(dot));
        }
    }
}

void recallPicture(int number) {
    if (!pictureMemory(number)) return;
    recallPictureQuietly(number);
    setScreenMode(graphMode);
}

}  // namespace numalink
