// A cat file of 500 programs: how fast its text is read, against a plain pass over the same bytes, and how long the
// whole way into a library takes. The counters "ratio" are the reader's time over the pass's time of the same run.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <random>
#include <string>

#include "exchange/import/import.h"
#include "exchange/import/import_readers.h"
#include "platform/program_folder.h"
#include "platform/thread_role.h"
#include "store/item_store.h"
#include "text/token_table.h"

namespace numalink {
namespace {

constexpr int programCount = 500;
constexpr int wordsOfProgram = 1500;

std::string makeFile() {
    std::mt19937 chance(1);
    std::string file;
    for (int i = 0; i < programCount; i++) {
        file += "%Header Record\r\nFormat:TXT\r\nCommunication SW:0\r\nData Type:PG\r\nCapacity:999\r\nFile Name:P" +
                std::to_string(i) + "\r\nGroup Name:\r\nPassword:\r\nOption1:NL\r\n%Data Record\r\n";
        for (int word = 0; word < wordsOfProgram; word++) {
            // As in real programs, most of what stands there is a letter, a digit or a sign.
            const bool sign = chance() % 4 != 0;
            file += sign ? std::string(1, static_cast<char>('0' + chance() % 10))
                         : std::string(tokenRecord(chance() % tokenCount()).asciiText);
            if (word % 12 == 11) file += "\r\n";
        }
        file += "\r\n%End\r\n";
    }
    return file;
}

const std::string &catFile() {
    static const std::string file = [] {
        tokenTableLoad();
        return makeFile();
    }();
    return file;
}

ByteView bytesOf(const std::string &text) { return {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()}; }

// The baseline: each byte looked at once through a table of 256.
std::uint64_t plainPass(const std::string &file) {
    static const std::array<std::uint8_t, 256> table = [] {
        std::array<std::uint8_t, 256> made{};
        for (std::size_t i = 0; i < made.size(); i++) made[i] = static_cast<std::uint8_t>(i * 7);
        return made;
    }();
    std::uint64_t sum = 0;
    for (const char byte : file) sum = sum * 31 + table[static_cast<std::uint8_t>(byte)];
    return sum;
}

// Processor time: what else the machine does is no part of it.
double secondsOf(const auto &work) {
    const std::clock_t start = std::clock();
    work();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

void readText(benchmark::State &state) {
    const std::string &file = catFile();
    double reading = 0;
    double passing = 0;
    for ([[maybe_unused]] auto _ : state) {
        std::size_t items = 0;
        ImportReport report;
        reading += secondsOf([&] {
            readCat(
                bytesOf(file), [&](ImportedItem &) { return ++items > 0; }, report);
        });
        passing += secondsOf([&] { benchmark::DoNotOptimize(plainPass(file)); });
        if (items != programCount) state.SkipWithError("not all programs were read");
    }
    state.counters["MB/s"] = static_cast<double>(file.size()) / 1e6 * static_cast<double>(state.iterations()) / reading;
    state.counters["ratio"] = reading / passing;
}
BENCHMARK(readText)->Unit(benchmark::kMillisecond);

void importIntoLibrary(benchmark::State &state) {
    const std::string &file = catFile();
    threadRole = ThreadRole::graphical;
    std::string pattern = (std::filesystem::temp_directory_path() / "numalink-XXXXXX").string();
    const std::string folder = std::string(mkdtemp(pattern.data())) + "/";
    setLibraryFolder(folder);
    const std::string path = folder + "bench.cat";
    std::FILE *out = std::fopen(path.c_str(), "wb");
    if (!out || std::fwrite(file.data(), 1, file.size(), out) != file.size() || std::fclose(out) != 0 || !storeOpen())
        state.SkipWithError("no library");
    userInterface.askImport = [](ImportQuestion &question) { question.action = ImportAction::oneFolder; };
    for ([[maybe_unused]] auto _ : state) importFile(path, "bench");
    state.counters["MB/s"] = benchmark::Counter(
        static_cast<double>(file.size()) / 1e6 * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
    storeClose();
    std::filesystem::remove_all(folder);
}
BENCHMARK(importIntoLibrary)->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace
}  // namespace numalink
