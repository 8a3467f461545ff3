// Runs a fuzz target without libFuzzer over every file of the folder given, and over so many variants of each: some
// bytes altered, put in or left out, or what another file holds in their place. The same ones each time; with
// NUMALINK_REPLAY_KEEP=FILE each is written there ahead of its run, so that the file holds what a crash came by.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

using Input = std::vector<char>;

std::mt19937 chance(1);

std::size_t below(std::size_t limit) { return limit == 0 ? 0 : chance() % limit; }

std::vector<Input> inputsOf(const char *folder) {
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) paths.push_back(entry.path());
    std::ranges::sort(paths);
    std::vector<Input> inputs;
    for (const auto &path : paths) {
        std::ifstream file(path, std::ios::binary);
        inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return inputs;
}

void vary(Input &input, const Input &other) {
    const auto place = input.begin() + static_cast<std::ptrdiff_t>(below(input.size() + 1));
    const auto from = other.begin() + static_cast<std::ptrdiff_t>(below(other.size() + 1));
    const std::size_t most = 1 + below(8);
    const auto gone = std::min<std::ptrdiff_t>(input.end() - place, static_cast<std::ptrdiff_t>(most));
    const auto taken = std::min<std::ptrdiff_t>(other.end() - from, static_cast<std::ptrdiff_t>(most));
    if (below(10) == 0) {
        input.erase(place, input.end());
        return;
    }
    const std::size_t way = below(4);
    if (way == 0 && place != input.end()) *place = static_cast<char>(chance());
    if (way == 1) input.erase(place, place + gone);
    if (way == 2) input.insert(place, from, from + taken);
    if (way == 3) std::copy(from, from + std::min(gone, taken), place);
}

void run(const Input &input) {
    static const char *const kept = std::getenv("NUMALINK_REPLAY_KEEP");
    if (kept != nullptr) std::ofstream(kept, std::ios::binary).write(input.data(), std::ssize(input));
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(input.data()), input.size());
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 3) return 2;
    const int variants = std::atoi(argv[2]);
    const std::vector<Input> inputs = inputsOf(argv[1]);
    for (const Input &input : inputs) {
        run(input);
        for (int i = 0; i < variants; i++) {
            Input variant = input;
            for (std::size_t left = 1 + below(4); left > 0; left--) vary(variant, inputs[below(inputs.size())]);
            run(variant);
        }
    }
    std::printf("%zu inputs replayed, each with %d variants\n", inputs.size(), variants);
    return inputs.empty() ? 1 : 0;
}
