// A library of 2,000 items out into each sort of file, and one such file back in.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include "calculator/frames.h"
#include "calculator/number_text.h"
#include "exchange/export/export.h"
#include "exchange/import/import.h"
#include "platform/program_folder.h"
#include "platform/thread_role.h"
#include "store/item_store.h"
#include "text/token_table.h"

namespace numalink {
namespace {

constexpr int itemCount = 1980;  // beside folders, of the 2,000 that a library holds
constexpr int tokensOfProgram = 500;

NewItem makeProgram(std::mt19937 &chance, const std::string &name) {
    NewItem item{.name = name, .kind = kind::program, .head = {}, .data = {':'}, .whenTaken = NameTaken::keepBoth};
    for (int i = 0; i < tokensOfProgram; i++) {
        const TokenRecord &token = tokenRecord(chance() % tokenCount());
        const bool letter = chance() % 4 != 0 || token.byte1 == 0 || token.asciiText[0] == '\0';
        item.data.push_back(letter ? static_cast<std::uint8_t>('0' + chance() % 40) : token.byte1);
        if (!letter && token.length == 2) item.data.push_back(token.byte2);
    }
    item.data.insert(item.data.end(), {0xFF, 0});
    item.head =
        encodeProgramInfo({.imageLength = static_cast<std::uint32_t>(item.data.size()), .name = name, .password = ""});
    return item;
}

NewItem makeList(const std::string &name) {
    constexpr std::uint32_t rows = 60;
    NewItem item{.name = name, .kind = kind::list, .head = Bytes(headFrameSize, 0xFF), .data = {}};
    constexpr std::string_view mark(":VAL\0LT\0\x3C\0\1", 11);
    std::copy(mark.begin(), mark.end(), item.head.begin());
    std::copy(name.begin(), name.end(), item.head.begin() + frameNameOffset);
    item.head[27] = 'R';
    item.head[28] = 10;
    for (std::uint32_t row = 1; row <= rows; row++) {
        Bytes frame(valueFrameSize);
        encodeValue(std::span(frame).first<valueFrameSize>(), row, 1, row / 7.0);
        item.data.insert(item.data.end(), frame.begin(), frame.end());
    }
    return item;
}

struct BenchLibrary {
    std::string folder;
    std::vector<ItemId> ids;
};

// Three programs to a list. Lies there until the benchmarks are over.
const BenchLibrary &benchLibrary() {
    static const BenchLibrary library = [] {
        tokenTableLoad();
        threadRole = ThreadRole::graphical;
        BenchLibrary made;
        std::string pattern = (std::filesystem::temp_directory_path() / "numalink-XXXXXX").string();
        made.folder = std::string(mkdtemp(pattern.data())) + "/";
        setLibraryFolder(made.folder);
        std::vector<NewItem> items;
        std::mt19937 chance(1);
        if (!storeOpen()) return made;
        for (int i = 0; i < itemCount; i++) {
            const std::string name = "I" + std::to_string(i);
            items.push_back(i % 4 == 0 ? makeList(name) : makeProgram(chance, name));
        }
        made.ids = storeAddItems(items);
        std::atexit([] {
            const std::string folder = benchLibrary().folder;
            storeClose();
            std::filesystem::remove_all(folder);
        });
        return made;
    }();
    return library;
}

void exportLibrary(benchmark::State &state, ExportTarget target) {
    const BenchLibrary &library = benchLibrary();
    for ([[maybe_unused]] auto _ : state) {
        if (!exportItems({.path = library.folder + "x", .ids = library.ids, .target = target, .mayReplace = true}))
            state.SkipWithError("nothing was written");
    }
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(library.folder + "x"));
}
BENCHMARK_CAPTURE(exportLibrary, cas, ExportTarget::cas)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(exportLibrary, cat, ExportTarget::cat)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(exportLibrary, catAlgebra, ExportTarget::catAlgebra)->Unit(benchmark::kMillisecond);

void importLibrary(benchmark::State &state) {
    const std::string path = benchLibrary().folder + "back.cat";
    exportItems({.path = path, .ids = benchLibrary().ids, .target = ExportTarget::cat, .mayReplace = true});
    for (const ItemId id : benchLibrary().ids) storeDelete(id);
    userInterface.askImport = [](ImportQuestion &question) { question.action = ImportAction::oneFolder; };
    for ([[maybe_unused]] auto _ : state) importFile(path, "back");
    state.counters["items"] = static_cast<double>(storeListItems().size());
}
BENCHMARK(importLibrary)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace numalink
