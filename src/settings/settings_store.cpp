#include "settings/settings_store.h"

#include <algorithm>
#include <optional>

#include "platform/files.h"
#include "platform/lock.h"
#include "platform/program_folder.h"
#include "settings/settings_file.h"

namespace numalink {

namespace {

constexpr std::uint64_t fileSizeLimit = std::uint64_t{1024} * 1024;  // bytes; 100 settings need about 10,000

struct DefaultSetting {
    const char *key;
    const char *value;
};

// In the order of the table, and so of the file. The language has no default: it comes behind the others.
constexpr DefaultSetting defaultSettings[] = {
    {setting::comPort, setting::comPortDefault},
    {setting::linkType, "CFX"},
    {setting::removeColor, "0"},
    {setting::haltOnError, "0"},
    {setting::displayDebug, "0"},
    {setting::fullscreen, "0"},
    {setting::fillListsMatrices, "1"},
    {setting::fullSpeed, "0"},
    {setting::syntaxHighlighting, "0"},
    {setting::autoCorrect, "1"},
    {setting::colorAscii, "0,0,0"},
    {setting::colorText, "0,0,0"},
    {setting::colorError, "0,0,0"},
    {setting::colorTwoByteCommand, "0,0,0"},
    {setting::colorOneByteCommand, "0,0,0"},
    {setting::colorOneByteCharacter, "0,0,0"},
    {setting::colorNumbers, "0,0,0"},
    {setting::colorComment, "0,0,0"},
    {setting::lastExportType, "cas"},
    {setting::calculatorModes, "0"},
    {setting::besideProgram, "0"},
    {setting::farEndPort, ""},
    {setting::keepMoments, "1"},
    {setting::recordKeypad, "0"},
    {setting::indentLines, "1"},
    {setting::completeWhileTyping, "1"},
    {setting::codePanes, ""},
    {setting::treeOrder, "name"},
    {setting::memoryCfx, "28000"},
    {setting::memoryAlgebra, "144000"},
};
static_assert(std::size(defaultSettings) < settingsSlotCount);

Lock settingsLock;
std::vector<Setting> table GUARDED_BY(settingsLock);

bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }

// Whether the file can hold the component as a tag that comes back as the same.
bool isTagName(std::string_view component) {
    return !component.empty() && component.find_first_of("/?!") != 0 && !component.ends_with('/');
}

bool isKey(std::string_view key) {
    if (key.size() > settingsTextLimit || key.find_first_of("<>") != std::string_view::npos) return false;
    if (std::ranges::any_of(key, isControl)) return false;
    for (;;) {
        const std::size_t dot = key.find('.');
        if (!isTagName(key.substr(0, dot))) return false;
        if (dot == std::string_view::npos) return true;
        key.remove_prefix(dot + 1);
    }
}

std::string_view withoutOuterBlanks(std::string_view value) {
    while (value.starts_with(' ')) value.remove_prefix(1);
    while (value.ends_with(' ')) value.remove_suffix(1);
    return value;
}

bool isValue(std::string_view value) {
    return value.size() <= settingsTextLimit && value.find('<') == std::string_view::npos &&
           std::ranges::none_of(value, isControl);
}

Setting *findSetting(std::string_view key) REQUIRES_LOCK(settingsLock) {
    const auto found = std::ranges::find(table, key, &Setting::key);
    return found == table.end() ? nullptr : &*found;
}

// The slot of key, made when there is none; null when the key can't be one or the table is full.
Setting *findOrMake(std::string_view key) REQUIRES_LOCK(settingsLock) {
    if (Setting *found = findSetting(key)) return found;
    if (table.size() >= settingsSlotCount || !isKey(key)) return nullptr;
    table.push_back({std::string(key), ""});
    return &table.back();
}

std::optional<std::string> knownValue(std::string_view key) {
    const HoldLock hold(settingsLock);
    const Setting *found = findSetting(key);
    return found ? std::optional(found->value) : std::nullopt;
}

// An optional sign and the leading digits; what is beyond 32 bits takes the nearest number. Blanks ahead stand in a
// colour that somebody wrote as "255, 128, 0".
std::int32_t leadingNumber(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    std::int64_t number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9' || number > INT32_MAX) break;
        number = number * 10 + (c - '0');
    }
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(negative ? -number : number, INT32_MIN, INT32_MAX));
}

void tableDefaults() {
    const HoldLock hold(settingsLock);
    table.clear();
    for (const DefaultSetting &row : defaultSettings) table.push_back({row.key, row.value});
}

}  // namespace

std::string settingsValue(std::string_view key) {
    const HoldLock hold(settingsLock);
    const Setting *found = findOrMake(key);
    return found ? found->value : "";
}

std::int32_t settingsInt(std::string_view key) { return leadingNumber(knownValue(key).value_or("")); }

std::uint32_t settingsColour(std::string_view key) {
    const std::string value = knownValue(key).value_or("");
    const std::size_t firstComma = value.find(',');
    const std::size_t lastComma = value.rfind(',');
    if (firstComma == lastComma) return 0;
    const std::string_view text = value;
    const auto part = [&](std::size_t start) { return static_cast<std::uint8_t>(leadingNumber(text.substr(start))); };
    return part(0) | static_cast<std::uint32_t>(part(firstComma + 1)) << 8 |
           static_cast<std::uint32_t>(part(lastComma + 1)) << 16;
}

bool settingsSetValue(std::string_view key, std::string_view value) {
    value = withoutOuterBlanks(value);
    if (!isValue(value)) return false;
    const HoldLock hold(settingsLock);
    Setting *slot = findOrMake(key);
    if (!slot) return false;
    slot->value = value;
    return true;
}

bool settingsSetInt(std::string_view key, std::int32_t value) { return settingsSetValue(key, std::to_string(value)); }

bool settingsSetColour(std::string_view key, std::uint32_t color) {
    return settingsSetValue(key, std::to_string(color & 0xFF) + "," + std::to_string(color >> 8 & 0xFF) + "," +
                                     std::to_string(color >> 16 & 0xFF));
}

bool settingsLoad() {
    tableDefaults();
    Bytes bytes;
    const FileResult result = readWholeFile(settingsFolder() + "settings.xml", bytes, fileSizeLimit);
    if (result == FileResult::missing) return true;
    if (result != FileResult::done) return false;
    return settingsParse({reinterpret_cast<const char *>(bytes.data()), bytes.size()}, settingsSetValue);
}

std::vector<Setting> settingsAll() {
    const HoldLock hold(settingsLock);
    return table;
}

bool settingsSave() {
    const std::string file = settingsFormat(settingsAll());
    const ByteView bytes(reinterpret_cast<const std::uint8_t *>(file.data()), file.size());
    makeFolders(settingsFolder());
    return writeWholeFile(settingsFolder() + "settings.xml", bytes) == FileResult::done;
}

}  // namespace numalink
