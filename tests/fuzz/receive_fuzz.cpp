// Both receive conversations, fed from bytes. The first byte chooses the family and whether the library holds items
// already; in the rest, 0xFE followed by an odd byte is a silence in which reads give up.
#include "link/link_scene.h"
#include "link/scripted_line.h"

namespace {

using namespace numalink;

ByteView input;

bool isSilent() { return input.size() > 1 && input[0] == 0xFE && input[1] % 2 == 1; }

struct InputLine : ScriptedLine {
    void speak(std::deque<std::uint8_t> &said) override {
        if (input.empty() || isSilent()) return;
        said.push_back(input.front());
        input = input.subspan(1);
    }
    void silence() override { input = input.subspan(isSilent() ? 2 : 0); }
    bool isOver() override { return input.empty(); }
};

// What is stored is whole, whatever came.
void checkLibrary() {
    for (const ItemEntry &entry : storeListItems()) {
        StoredItem item;
        if (!storeReadItem(entry.id, item)) std::abort();
        if (item.data.size() > itemDataLimit) std::abort();
        const bool summed =
            entry.kind == kind::backup || entry.kind == kind::algebraBlock || entry.kind == kind::graphMemory;
        if (summed && !item.data.empty() && !frameIsGood(item.data)) std::abort();
    }
    if (transmitConversationRuns()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const LinkScene scene;
    if (!scene.isOpen) std::abort();
    if (size == 0) return 0;
    if (data[0] % 4 < 2)
        for (const ItemEntry &entry : storeListChildren(rootId)) storeDelete(entry.id);
    input = {data + 1, size - 1};
    const bool algebra = data[0] % 2 != 0;
    InputLine line;
    scriptedLineInstall(line);
    LinkScene::prepare(algebra, false);
    linkIdleLoop(algebra ? Family::algebra : Family::cfx);
    checkLibrary();
    return 0;
}
