// Keys one behind another, alike ones as one entry: what the passes of waits, or the reads of GetKey, have got. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace numalink {

inline constexpr std::size_t keyRunLimit = 1'000'000;                   // entries that are kept or read
inline constexpr std::uint64_t keyCountLimit = std::uint64_t{1} << 40;  // of one entry
inline constexpr int keyCodeLimit = 9999;

struct KeyRun {
    KeyRun(int key = 0, std::uint64_t times = 1) : code(key), count(times) {}
    friend bool operator==(const KeyRun &, const KeyRun &) = default;

    int code;
    std::uint64_t count;
};
using KeyRuns = std::vector<KeyRun>;

// Appends what a text holds: codes of 0 to keyCodeLimit, each alone or with how many times it comes, as in
// "31,0*120,72". False, with runs as they were, for any other text and beyond the limits.
bool keyRunsFromText(std::string_view text, KeyRuns &runs);
std::string keyRunText(const KeyRun &run);

// Gives the keys one by one. The runs must stay as they are meanwhile.
class KeyReader {
public:
    explicit KeyReader(const KeyRuns *source = nullptr) : runs(source) {}
    std::optional<int> next();  // nothing behind the last

private:
    const KeyRuns *runs;
    std::size_t place = 0;
    std::uint64_t taken = 0;  // of the entry at place
};

}  // namespace numalink
