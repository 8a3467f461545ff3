// The library at its full 2,000 items: processor time of opening with a list, and of each operation, beside the
// same bytes moved plainly. There the disk is one in memory, so that the system's share isn't counted.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "platform/program_folder.h"
#include "store/file/records.h"
#include "store/item_store.h"
#include "support/simulated_disk.h"

namespace {

using namespace numalink;

constexpr std::uint32_t itemTotal = 1990;  // with the folders and room for one more
constexpr std::size_t payloadSize = 400;   // bytes: a small program

std::string nameOf(std::uint32_t number) { return std::string("P").append(std::to_string(number)); }

NewItem program(std::uint32_t number, ItemId parent) {
    NewItem item;
    item.name = nameOf(number);
    item.parent = parent;
    item.kind = kind::program;
    item.head = Bytes(32, 1);
    item.data = Bytes(payloadSize, static_cast<std::uint8_t>(number));
    return item;
}

// A full library, open, on the disk that the file port stands for.
struct FullLibrary {
    explicit FullLibrary(const std::string &path = "/library/") {
        setLibraryFolder(path);
        storeOpen();
        folder = storeResolvePath("/Games/Old/", true);
        std::vector<NewItem> items;
        for (std::uint32_t number = 0; number < itemTotal; number++) items.push_back(program(number, folder));
        storeAddItems(items);
    }
    ~FullLibrary() { storeClose(); }

    ItemId folder = noItem;
};

void openAndList(benchmark::State &state) {
    const SimulatedFiles disk(Steps::forgotten);
    const FullLibrary library;
    for (auto step : state) {
        storeClose();
        if (!storeOpen() || storeListItems().size() < itemTotal) state.SkipWithError("the library didn't open");
    }
}

void findByPath(benchmark::State &state) {
    const SimulatedFiles disk(Steps::forgotten);
    const FullLibrary library;
    for (auto step : state) {
        const ItemId folder = storeResolvePath("/games/old/", false);
        if (storeFindItem("p1989", folder) == noItem) state.SkipWithError("not found");
    }
}

void addThenDeleteLast(benchmark::State &state) {
    const SimulatedFiles disk(Steps::forgotten);
    const FullLibrary library;
    for (auto step : state) {
        const ItemId id = storeAddItem(program(itemTotal, library.folder));
        if (id == noItem || !storeDelete(id)) state.SkipWithError("refused");
    }
}

// Each pass replaces the record that lies first in the file, so that all others move.
void replaceEachFirst(benchmark::State &state, const FullLibrary &library) {
    std::uint32_t number = 0;
    for (auto step : state)
        if (storeAddItem(program(number++ % itemTotal, library.folder)) == noItem) state.SkipWithError("refused");
}

void replaceFirst(benchmark::State &state) {
    const SimulatedFiles disk(Steps::forgotten);
    const FullLibrary library;
    replaceEachFirst(state, library);
}

void deleteFirst(benchmark::State &state) {
    const SimulatedFiles disk(Steps::forgotten);
    const FullLibrary library;
    std::uint32_t number = 0;
    for (auto step : state) {
        const ItemId first = storeFindItem(nameOf(number % itemTotal), library.folder);
        if (!storeDelete(first)) state.SkipWithError("refused");
        state.PauseTiming();
        storeAddItem(program(number++ % itemTotal, library.folder));
        state.ResumeTiming();
    }
}

// What replacing the first record can't do without: the bytes behind it read, and written in their new place.
void plainMoveOfTheFile(benchmark::State &state) {
    Bytes file(sizeof(MainHeader) + itemTotal * (sizeof(ItemHeader) + 32 + payloadSize), 7);
    Bytes block(file.size() - sizeof(MainHeader) - 524);
    for (auto step : state) {
        std::memcpy(block.data(), file.data() + sizeof(MainHeader) + 524, block.size());
        std::memcpy(file.data() + sizeof(MainHeader), block.data(), block.size());
        benchmark::DoNotOptimize(file.data());
        benchmark::ClobberMemory();
    }
}

BENCHMARK(openAndList)->Unit(benchmark::kMicrosecond);
BENCHMARK(findByPath)->Unit(benchmark::kMicrosecond);
BENCHMARK(addThenDeleteLast)->Unit(benchmark::kMicrosecond);
BENCHMARK(replaceFirst)->Unit(benchmark::kMicrosecond);
BENCHMARK(deleteFirst)->Unit(benchmark::kMicrosecond);
BENCHMARK(plainMoveOfTheFile)->Unit(benchmark::kMicrosecond);

}  // namespace
