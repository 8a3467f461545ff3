#include "emulator/machine/key_runs.h"

#include <charconv>

namespace numalink {

namespace {

template <class Number>
bool takeNumber(std::string_view text, Number least, Number most, Number &number) {
    const char *const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, number);
    return fault == std::errc() && stop == end && number >= least && number <= most;
}

bool takeRun(std::string_view text, KeyRun &run) {
    const std::size_t star = text.find('*');
    if (!takeNumber(text.substr(0, star), 0, keyCodeLimit, run.code)) return false;
    return star == std::string_view::npos ||
           takeNumber<std::uint64_t>(text.substr(star + 1), 1, keyCountLimit, run.count);
}

}  // namespace

bool keyRunsFromText(std::string_view text, KeyRuns &runs) {
    const std::size_t before = runs.size();
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t comma = std::min(text.find(',', start), text.size());
        KeyRun run;
        if (runs.size() >= keyRunLimit || !takeRun(text.substr(start, comma - start), run)) {
            runs.resize(before);
            return false;
        }
        runs.push_back(run);
        start = comma + 1;
    }
    return true;
}

std::string keyRunText(const KeyRun &run) {
    const std::string code = std::to_string(run.code);
    return run.count == 1 ? code : code + "*" + std::to_string(run.count);
}

std::optional<int> KeyReader::next() {
    if (runs == nullptr || place >= runs->size()) return std::nullopt;
    const KeyRun &run = (*runs)[place];
    if (++taken >= run.count) {
        place++;
        taken = 0;
    }
    return run.code;
}

}  // namespace numalink
