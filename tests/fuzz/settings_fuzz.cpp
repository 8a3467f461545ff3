// Any bytes as settings.xml: whatever of them becomes a setting must come back the same from the file that is written.
#include "settings/settings_file.h"

#include <cstdlib>
#include <map>

#include "settings/settings_store.h"

namespace {

std::map<std::string, std::string, std::less<>> taken;

bool take(std::string_view key, std::string_view value) {
    if (!numalink::settingsSetValue(key, value)) return false;
    taken[std::string(key)] = numalink::settingsValue(key);
    return true;
}

bool comparesEqual(std::string_view key, std::string_view value) {
    const auto found = taken.find(key);
    if (found == taken.end() || found->second != value) std::abort();
    taken.erase(found);
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    numalink::settingsLoad();
    taken.clear();
    numalink::settingsParse({reinterpret_cast<const char *>(data), size}, take);
    std::vector<numalink::Setting> settings;
    for (const auto &[key, value] : taken) {
        numalink::settingsInt(key);
        numalink::settingsColour(key);
        if (!value.empty()) settings.push_back({key, value});
    }
    std::erase_if(taken, [](const auto &entry) { return entry.second.empty(); });
    if (!numalink::settingsParse(numalink::settingsFormat(settings), comparesEqual) || !taken.empty()) std::abort();
    return 0;
}
