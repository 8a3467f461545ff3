#include "emulator/run/key_file.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "calculator/item_bundle.h"
#include "settings/settings_store.h"
#include "store/item_store.h"

namespace numalink {

namespace {

constexpr char firstLine[] = "numalink-keys 1";
constexpr std::size_t keysALine = 16;
constexpr std::size_t programNameLimit = 1000;  // bytes
constexpr const char *settingKeys[] = {setting::calculatorModes, setting::fillListsMatrices, setting::haltOnError};

std::string_view componentOf(std::string_view key) { return key.substr(key.rfind('.') + 1); }

template <class Number>
bool wholeNumber(std::string_view text, Number &number, int base = 10) {
    const auto [stop, fault] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return fault == std::errc() && stop == text.data() + text.size();
}

// The text up to the separator, which goes with it.
std::string_view cutAt(std::string_view &text, char separator) {
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

bool takeProgram(std::string_view rest, KeyFile &file) {
    const std::string_view checksum = cutAt(rest, ' ');
    if (rest.size() > programNameLimit) return false;
    file.program = rest;
    return wholeNumber(checksum, file.checksum, 16);
}

bool takeSetting(std::string_view rest, KeyFile &file) {
    const std::string_view name = cutAt(rest, ' ');
    const bool isKnown = std::ranges::any_of(settingKeys, [&](const char *key) { return componentOf(key) == name; });
    if (!isKnown || (rest != "0" && rest != "1") || file.settings.size() >= std::size(settingKeys)) return false;
    file.settings.emplace_back(name, rest == "1" ? 1 : 0);
    return true;
}

bool takeStart(std::string_view rest, KeyFile &file) {
    while (!rest.empty()) {
        std::string_view value = cutAt(rest, ' ');
        const std::string_view place = cutAt(value, '=');
        std::pair<std::size_t, double> read;
        if (!wholeNumber(place, read.first) || read.first >= beginningValueCount) return false;
        const auto [stop, fault] = std::from_chars(value.data(), value.data() + value.size(), read.second);
        if (fault != std::errc() || stop != value.data() + value.size() || !std::isfinite(read.second)) return false;
        if (file.keys.begins.values.size() >= beginningValueCount) return false;
        file.keys.begins.values.push_back(read);
    }
    return true;
}

struct LineOfFile {
    const char *word;
    bool (*take)(std::string_view rest, KeyFile &file);
};

constexpr LineOfFile lines[] = {
    {"program", takeProgram},
    {"set", takeSetting},
    {"seed", [](std::string_view rest, KeyFile &file) { return wholeNumber(rest, file.keys.begins.random); }},
    {"start", takeStart},
    {"statements", [](std::string_view rest, KeyFile &file) { return wholeNumber(rest, file.keys.statements); }},
    {"keys", [](std::string_view rest, KeyFile &file) { return keyRunsFromText(rest, file.keys.waits); }},
    {"getkey", [](std::string_view rest, KeyFile &file) { return keyRunsFromText(rest, file.keys.getKeys); }},
};

bool takeLine(std::string_view line, KeyFile &file) {
    if (line.empty() || line.starts_with('#')) return true;
    const std::string_view word = cutAt(line, ' ');
    const auto *const found = std::ranges::find(lines, word, &LineOfFile::word);
    return found != std::end(lines) && found->take(line, file);
}

void addKeys(std::string &text, const char *word, const KeyRuns &runs) {
    for (std::size_t i = 0; i < runs.size(); i++) {
        text += i % keysALine == 0 ? std::string(i == 0 ? "" : "\n") + word + " " : ",";
        text += keyRunText(runs[i]);
    }
    if (!runs.empty()) text += "\n";
}

std::string shortest(double value) {
    char digits[40];
    const auto [end, fault] = std::to_chars(std::begin(digits), std::end(digits), value);
    return fault == std::errc() ? std::string(digits, end) : "0";
}

}  // namespace

std::vector<std::pair<std::string, int>> keyFileSettings() {
    std::vector<std::pair<std::string, int>> now;
    for (const char *key : settingKeys) now.emplace_back(componentOf(key), settingsInt(key) != 0 ? 1 : 0);
    return now;
}

std::string keyFileSettingKey(const std::string &component) {
    const auto *const found =
        std::ranges::find_if(settingKeys, [&](const char *key) { return componentOf(key) == component; });
    return found == std::end(settingKeys) ? std::string() : *found;
}

std::uint32_t keyFileChecksum(ItemId program) {
    StoredItem item;
    return storeReadItem(program, item) ? checksum32(item.data) : 0;
}

std::string keyFileText(const KeyFile &file) {
    char checksum[16];
    std::snprintf(checksum, sizeof checksum, "%08X", file.checksum);
    std::string name = file.program;
    std::ranges::replace_if(
        name, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
    std::string text = std::string(firstLine) + "\nprogram " + checksum + " " + name + "\n";
    for (const auto &[component, value] : file.settings) text += "set " + component + (value != 0 ? " 1\n" : " 0\n");
    text += "seed " + std::to_string(file.keys.begins.random) + "\n";
    if (!file.keys.begins.values.empty()) text += "start";
    for (const auto &[place, value] : file.keys.begins.values)
        text += " " + std::to_string(place) + "=" + shortest(value);
    if (!file.keys.begins.values.empty()) text += "\n";
    text += "statements " + std::to_string(file.keys.statements) + "\n";
    addKeys(text, "keys", file.keys.waits);
    addKeys(text, "getkey", file.keys.getKeys);
    return text;
}

int keyFileRead(std::string_view text, KeyFile &file) {
    for (int number = 1; number == 1 || !text.empty(); number++) {
        std::string_view line = cutAt(text, '\n');
        if (line.ends_with('\r')) line.remove_suffix(1);
        const bool isSound = number == 1 ? line == firstLine : takeLine(line, file);
        if (!isSound) return number;
    }
    return 0;
}

}  // namespace numalink
