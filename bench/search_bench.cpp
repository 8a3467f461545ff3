// Searching a library of 2,000 items of 700 bytes: as words, as tokens, and as a regular expression; each over the
// stored items, as the window and the command line do.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <random>

#include "calculator/program_info.h"
#include "platform/program_folder.h"
#include "search/search.h"
#include "text/token_table.h"

namespace numalink {
namespace {

constexpr int itemCount = 1990;  // the library's own folders aside
constexpr std::size_t programSize = 700;

void makeLibrary() {
    static const bool made = [] {
        static const std::string folder = (std::filesystem::temp_directory_path() / "numalink-search-bench/").string();
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        std::atexit([] { std::filesystem::remove_all(folder); });
        setLibraryFolder(folder);
        if (!tokenTableLoad() || !storeOpen()) std::abort();
        std::mt19937 chance(1);
        std::vector<NewItem> items(itemCount);
        for (std::size_t i = 0; i < items.size(); i++) {
            items[i].name = "P" + std::to_string(i);
            items[i].kind = kind::program;
            items[i].head = encodeProgramInfo({.imageLength = 1, .name = items[i].name, .password = {}});
            items[i].data = {':'};
            while (items[i].data.size() < programSize) {
                const TokenRecord &token = tokenRecord(chance() % tokenCount());
                const auto letter = static_cast<std::uint8_t>('A' + chance() % 26);
                if (chance() % 12 == 0)
                    items[i].data.push_back(0x0D);
                else if (chance() % 4 != 0 || token.byte1 == 0 || token.byte1 == 0xFF)
                    items[i].data.push_back(letter);
                else
                    items[i].data.insert(items[i].data.end(), {token.byte1, token.byte2});
            }
            items[i].data.push_back(0xFF);
        }
        return !storeAddItems(items).empty();
    }();
    if (!made) std::abort();
}

void searchLibrary(benchmark::State &state, const SearchQuery &query) {
    makeLibrary();
    std::string fault;
    const Search search = compileSearch(query, fault);
    std::size_t found = 0;
    for (auto _ : state) {
        std::vector<FoundPlace> places;
        for (const ItemId id : searchedItems(rootId)) {
            StoredItem item;
            if (!storeReadItem(id, item) || !searchItem(*search, item, places)) break;
        }
        found = places.size();
    }
    state.counters["places"] = static_cast<double>(found);
}

void words(benchmark::State &state) { searchLibrary(state, {.pattern = "abc"}); }
void tokens(benchmark::State &state) { searchLibrary(state, {.pattern = "ABC", .how = SearchHow::tokens}); }
void expression(benchmark::State &state) {
    searchLibrary(state, {.pattern = "A[B-D]+E", .how = SearchHow::expression});
}

BENCHMARK(words)->Unit(benchmark::kMillisecond);
BENCHMARK(tokens)->Unit(benchmark::kMillisecond);
BENCHMARK(expression)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace numalink
