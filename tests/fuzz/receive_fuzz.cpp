// Both receive conversations, fed from bytes. The first byte chooses the family and whether the library holds items
// already; in the rest, 0xFE followed by an odd byte is a silence that lets the read give up.
#include <cstdlib>
#include <string>

#include "link/conversation.h"
#include "link/idle_loop.h"
#include "link/notices.h"
#include "link/transmit_queue.h"
#include "platform/clock.h"
#include "platform/program_folder.h"
#include "platform/serial_line.h"
#include "store/item_store.h"

namespace {

using namespace numalink;

ByteView input;
std::uint64_t lineClock = 1000000;

LineRead readInput(std::span<std::uint8_t> target, ReadLimits limits) {
    std::size_t count = 0;
    while (count < target.size() && !input.empty()) {
        const bool silence = input.size() > 1 && input[0] == 0xFE && input[1] % 2 == 1;
        if (silence) {
            input = input.subspan(2);
            lineClock += (limits.total == 0 ? limits.quiet : limits.total) * 1000;
            return {count, ReadEnd::timeOut};
        }
        target[count++] = input.front();
        input = input.subspan(1);
        lineClock += 1000;
    }
    return {count, count == target.size() ? ReadEnd::complete : ReadEnd::gone};
}

// One library in memory's file system for all inputs, emptied ahead of each.
void openLibrary() {
    static bool open = false;
    if (open) return;
    static char folder[] = "/dev/shm/numalink-fuzz-XXXXXX";
    if (mkdtemp(folder) == nullptr) std::abort();
    setLibraryFolder(std::string(folder) + "/");
    std::atexit([] {
        storeClose();
        std::remove((libraryFolder() + "storage.dat").c_str());
        std::remove(folder);
    });
    serialLine.read = readInput;
    serialLine.write = [](ByteView) { return true; };
    serialLine.microseconds = [] { return lineClock; };
    serialLine.sleepUntil = [](std::uint64_t end) { lineClock = end > lineClock ? end : lineClock; };
    clockPort.tickCount = [] { return lineClock / 1000; };
    open = storeOpen();
}

// What is stored is whole, whatever came.
void checkLibrary() {
    for (const ItemEntry &entry : storeListItems()) {
        StoredItem item;
        if (!storeReadItem(entry.id, item)) std::abort();
        if (item.data.size() > largestItem) std::abort();
        const bool summed =
            entry.kind == kind::backup || entry.kind == kind::algebraBlock || entry.kind == kind::graphMemory;
        if (summed && !item.data.empty() && !frameIsGood(item.data)) std::abort();
    }
    if (transmitConversationRuns()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) return 0;
    openLibrary();
    if (data[0] % 4 < 2)
        for (const ItemEntry &entry : storeListChildren(rootId)) storeDelete(entry.id);
    input = {data + 1, size - 1};
    linkNoticeForget();
    conversationReset();
    conversationLineOpened();
    linkIdleLoop(data[0] % 2 == 0 ? Family::cfx : Family::algebra);
    checkLibrary();
    return 0;
}
