// The library of 2,000 items on a real disk, waiting for it at each change, beside SQLite with a rollback journal and
// full sync doing the same in turn with it. `ratio` is our time by SQLite's: below 1 we are the quicker.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <random>
#ifdef NUMALINK_SQLITE
#include <sqlite3.h>
#endif

#include "platform/program_folder.h"
#include "store/item_store.h"

namespace {

using namespace numalink;

constexpr std::uint32_t itemTotal = 1990;  // with the folders and room for one more

NewItem program(std::uint32_t number, ItemId parent, std::uint8_t filling) {
    NewItem item;
    item.name = std::string("P").append(std::to_string(number));
    item.parent = parent;
    item.kind = kind::program;
    item.head = Bytes(32, 1);
    item.data = Bytes(400, filling);  // a small program
    return item;
}

struct Folder {
    Folder() {
        path = (std::filesystem::temp_directory_path() / "numalink-bench-XXXXXX").string();
        if (!mkdtemp(path.data())) std::abort();
        path += "/";
    }
    ~Folder() { std::filesystem::remove_all(path); }

    std::string path;
};

struct Ours {
    explicit Ours(const std::string &path) {
        setLibraryFolder(path);
        storeOpen();
        folder = storeResolvePath("/Games/Old/", true);
        std::vector<NewItem> items;
        for (std::uint32_t number = 0; number < itemTotal; number++) items.push_back(program(number, folder, 0));
        storeAddItems(items);
    }
    ~Ours() { storeClose(); }
    bool put(std::uint32_t number, std::uint8_t filling) const {
        return storeAddItem(program(number, folder, filling)) != noItem;
    }
    bool remove(std::uint32_t number) const {
        return storeDelete(storeFindItem(program(number, folder, 0).name, folder));
    }

    ItemId folder = noItem;
};

#ifdef NUMALINK_SQLITE
struct Theirs {
    explicit Theirs(const std::string &path) {
        sqlite3_open((path + "library.db").c_str(), &base);
        run("PRAGMA journal_mode=DELETE; PRAGMA synchronous=FULL; PRAGMA locking_mode=EXCLUSIVE;"
            "CREATE TABLE items(id INTEGER PRIMARY KEY AUTOINCREMENT, parent INTEGER, kind INTEGER, flags INTEGER,"
            " name TEXT COLLATE NOCASE, head BLOB, data BLOB);"
            "CREATE INDEX names ON items(parent, name);");
        prepare("INSERT INTO items(parent, kind, flags, name, head, data) VALUES(3, 15, 0, ?, ?, ?)", insert);
        prepare("DELETE FROM items WHERE parent = 3 AND kind = 15 AND name = ?", erase);
        run("BEGIN");
        for (std::uint32_t number = 0; number < itemTotal; number++) add(number, 0);
        run("COMMIT");
    }
    ~Theirs() {
        sqlite3_finalize(insert);
        sqlite3_finalize(erase);
        sqlite3_close(base);
    }
    void run(const char *text) { good = good && sqlite3_exec(base, text, nullptr, nullptr, nullptr) == SQLITE_OK; }
    void prepare(const char *text, sqlite3_stmt *&statement) {
        good = good && sqlite3_prepare_v2(base, text, -1, &statement, nullptr) == SQLITE_OK;
    }
    bool step(sqlite3_stmt *statement) const {
        const bool done = sqlite3_step(statement) == SQLITE_DONE;
        sqlite3_reset(statement);
        return good && done;
    }
    bool add(std::uint32_t number, std::uint8_t filling) {
        const NewItem item = program(number, 3, filling);
        sqlite3_bind_text(insert, 1, item.name.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_blob(insert, 2, item.head.data(), static_cast<int>(item.head.size()), SQLITE_TRANSIENT);
        sqlite3_bind_blob(insert, 3, item.data.data(), static_cast<int>(item.data.size()), SQLITE_TRANSIENT);
        return step(insert);
    }
    bool put(std::uint32_t number, std::uint8_t filling) {
        run("BEGIN");
        const bool done = remove(number) && add(number, filling);
        run("COMMIT");
        return good && done;
    }
    bool remove(std::uint32_t number) {
        const std::string name = program(number, 3, 0).name;
        sqlite3_bind_text(erase, 1, name.c_str(), -1, SQLITE_TRANSIENT);
        return step(erase);
    }

    sqlite3 *base = nullptr;
    sqlite3_stmt *insert = nullptr, *erase = nullptr;
    bool good = true;
};

template <typename Work>
double secondsOf(benchmark::State &state, Work work) {
    const auto start = std::chrono::steady_clock::now();
    if (!work()) state.SkipWithError("refused");
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Runs the same work on both in turn; the time is ours. prepare comes ahead of each, and isn't counted.
template <typename Prepare, typename Work>
void besideSqlite(benchmark::State &state, Prepare prepare, Work work) {
    const Folder folder;
    const Ours ours(folder.path);
    Theirs theirs(folder.path);
    std::mt19937 random(1);
    double ourTime = 0, theirTime = 0;
    for (auto step : state) {
        const std::uint32_t number = static_cast<std::uint32_t>(random() % itemTotal);
        if (!prepare(ours, number) || !prepare(theirs, number)) state.SkipWithError("refused");
        const double our = secondsOf(state, [&] { return work(ours, number); });
        theirTime += secondsOf(state, [&] { return work(theirs, number); });
        ourTime += our;
        state.SetIterationTime(our);
    }
    state.counters["sqlite_us"] = theirTime * 1e6 / static_cast<double>(state.iterations());
    state.counters["ratio"] = ourTime / theirTime;
}

bool addTo(const Ours &library) { return library.put(itemTotal, 1); }
bool addTo(Theirs &library) { return library.add(itemTotal, 1); }

void add(benchmark::State &state) {
    bool first = true;
    besideSqlite(
        state,
        [&](auto &library, std::uint32_t) {
            // Both hold as many items at each pass.
            if constexpr (std::is_same_v<std::decay_t<decltype(library)>, Theirs>) {
                const bool done = first || library.remove(itemTotal);
                first = false;
                return done;
            } else {
                return first || library.remove(itemTotal);
            }
        },
        [](auto &library, std::uint32_t) { return addTo(library); });
}

void replace(benchmark::State &state) {
    besideSqlite(
        state, [](auto &, std::uint32_t) { return true; },
        [](auto &library, std::uint32_t number) { return library.put(number, 2); });
}

void erase(benchmark::State &state) {
    std::uint32_t gone = itemTotal;
    besideSqlite(
        state,
        [&](auto &library, std::uint32_t number) {
            const bool theirs = std::is_same_v<std::decay_t<decltype(library)>, Theirs>;
            bool done = true;
            if constexpr (std::is_same_v<std::decay_t<decltype(library)>, Theirs>)
                done = gone == itemTotal || library.add(gone, 3);
            else
                done = gone == itemTotal || library.put(gone, 3);
            if (theirs) gone = number;
            return done;
        },
        [](auto &library, std::uint32_t number) { return library.remove(number); });
}

BENCHMARK(add)->UseManualTime()->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK(replace)->UseManualTime()->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK(erase)->UseManualTime()->Iterations(300)->Unit(benchmark::kMicrosecond);
#else
void withoutSqlite(benchmark::State &state) {
    state.SkipWithError("SQLite isn't installed (libsqlite3-dev): there is nothing to measure against");
}
BENCHMARK(withoutSqlite);
#endif

// Opening a full library, which empties the temporary folder and waits for that.
void openAndClose(benchmark::State &state) {
    const Folder folder;
    const Ours library(folder.path);
    for (auto step : state) {
        storeClose();
        if (!storeOpen()) state.SkipWithError("the library didn't open");
    }
}
BENCHMARK(openAndClose)->Unit(benchmark::kMicrosecond);

}  // namespace
