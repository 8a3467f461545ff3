// Whole conversations on a pseudo terminal whose other end takes and gives bytes at the pace of the line (11 bit times
// a byte). The counter "ratio" is the ideal time over the time taken: all bytes of both sides one after the other,
// frames that go a byte at a time at one byte a millisecond, and 2 ms ahead of a last acknowledgement.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <thread>

#include "link/link_thread.h"
#include "link/transmit_queue.h"
#include "platform/clock.h"
#include "platform/serial_line.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "store/item_store.h"
#include "support/scratch_folder.h"
#include "telling/user_interface.h"
#include "virtual_calculator/calculator_mover.h"
#include "virtual_calculator/pseudo_terminal.h"

namespace {

using namespace numalink;

enum Sort { program, matrix, picture, block };

calculator::Item itemOf(Sort sort, bool algebra) {
    const calculator::Bytes tokens(1500, 'A');
    switch (sort) {
        case matrix:
            return calculator::valueItem("MT", "Mat A", "", 10, 10, 1);
        case picture:
            return calculator::picture(64, 128, 1, 2, 1);
        case block:
            return calculator::algebraBlock("BLOCK", 5, 1500, 1);
        default:
            return algebra ? calculator::algebraProgram("PROG", tokens) : calculator::program("PROG", tokens);
    }
}

// Bytes of each side, those that we send a byte at a time, and the pauses ahead of a last acknowledgement.
struct Ideal {
    std::uint64_t bytes = 0;
    std::uint64_t slowBytes = 0;
    std::uint64_t pauses = 0;

    std::uint64_t microseconds(std::uint64_t byteTime) const {
        return bytes * byteTime + slowBytes * (byteTime > 1000 ? byteTime : 1000) + pauses * 2000;
    }
};

Ideal idealOf(const calculator::Item &item, bool algebra, bool receives) {
    const std::size_t frame = calculator::frameLength(item.head);
    const std::size_t frames = frame == 0 ? 1 : item.data.size() / frame;
    const std::size_t whole = item.head.size() + item.data.size();
    if (algebra && receives) return {.bytes = 2 + 40 + 2 + whole + 2 + 40, .slowBytes = 40};
    if (algebra) return {.bytes = 2 + 40 + 2 + 2, .slowBytes = 40 + whole + 40};
    if (receives) return {.bytes = 2 + whole + 1 + frames + 50, .pauses = 1};
    return {.bytes = 2 + whole + 1 + frames, .slowBytes = 50};
}

ItemId addForSending(const calculator::Item &item, bool algebra, Sort sort) {
    NewItem stored{.name = "PROG", .head = item.head, .data = item.data};
    stored.kind = sort == matrix    ? kind::matrix
                  : sort == picture ? kind::picture
                  : sort == block   ? kind::algebraBlock
                                    : kind::program;
    if (sort == picture) stored.name = "Picture1";
    if (sort == program) {
        // One token less than its frame has room for, so that both families send as many bytes as itemOf's.
        stored.data = calculator::program("PROG", calculator::Bytes(algebra ? 1499 : 1500, 'A')).data;
        stored.head = encodeProgramInfo(
            {.imageLength = static_cast<std::uint32_t>(stored.data.size()), .name = "PROG", .password = {}});
    }
    return storeAddItem(stored);
}

void converse(benchmark::State &state, bool algebra, bool receives, Sort sort) {
    threadRole = ThreadRole::graphical;
    const ScratchFolder folder;
    PseudoTerminal terminal;
    userInterface = userInterfaceSilent;
    settingsSetValue(setting::comPort, terminal.path);
    settingsSetValue(setting::linkType, algebra ? "algebra" : "cfx");
    if (!storeOpen()) return state.SkipWithError("no library");
    const calculator::Item item = itemOf(sort, algebra);
    const ItemId id = receives ? noItem : addForSending(item, algebra, sort);
    calculator::Moving moving{.byteMicroseconds = calculator::lineByteMicroseconds(algebra ? 38400 : 9600)};
    const std::uint64_t ideal = idealOf(item, algebra, receives).microseconds(moving.byteMicroseconds);
    startLinkThread();
    sleepMilliseconds(300);
    double ratio = 0;
    for (auto _ : state) {
        calculator::Calculator other;
        other.algebra = algebra;
        if (receives) {
            for (const ItemEntry &entry : storeListChildren(rootId)) storeDelete(entry.id);
            other.toSend.push_back(item);
            startSending(other);
        } else {
            queueItem(id);
        }
        const std::uint64_t start = systemSerialLine.microseconds();
        if (!receives) beginTransmit();
        moveCalculator(other, terminal.master, moving);
        const std::uint64_t taken = systemSerialLine.microseconds() - start;
        if (!other.closed || other.failures > 0) return state.SkipWithError("the conversation failed");
        state.SetIterationTime(static_cast<double>(taken) / 1e6);
        ratio += static_cast<double>(ideal) / static_cast<double>(taken);
        while (linkConversationRuns()) sleepMilliseconds(1);
        sleepMilliseconds(60);
    }
    state.counters["ratio"] = ratio / static_cast<double>(state.iterations());
    stopLinkThread();
    storeClose();
}

#define LINK_BENCH(name, algebra, receives, sort)              \
    BENCHMARK_CAPTURE(converse, name, algebra, receives, sort) \
        ->UseManualTime()                                      \
        ->Iterations(3)                                        \
        ->Unit(benchmark::kMillisecond)
LINK_BENCH(cfxReceiveProgram, false, true, program);
LINK_BENCH(cfxReceiveMatrix, false, true, matrix);
LINK_BENCH(cfxReceivePicture, false, true, picture);
LINK_BENCH(cfxSendProgram, false, false, program);
LINK_BENCH(cfxSendMatrix, false, false, matrix);
LINK_BENCH(cfxSendPicture, false, false, picture);
LINK_BENCH(algebraReceiveProgram, true, true, program);
LINK_BENCH(algebraReceiveBlock, true, true, block);
LINK_BENCH(algebraSendProgram, true, false, program);
LINK_BENCH(algebraSendBlock, true, false, block);

}  // namespace
