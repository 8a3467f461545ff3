#include "cli/text_index.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "cli/commands.h"
#include "cli/hex_text.h"
#include "platform/files.h"
#include "platform/letter_case.h"
#include "store/file/journal.h"

namespace numalink {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr std::uint64_t indexLimit = 256u << 20;  // bytes
constexpr std::size_t fileLimit = 20'000;
constexpr int indexVersion = 1;
constexpr char programEnding[] = ".txt", functionEnding[] = ".fm.txt";

std::string hexOf(std::uint64_t number) {
    char text[17] = {};
    const auto [end, error] = std::to_chars(text, text + sizeof text, number, 16);
    return {text, end};
}

std::uint64_t numberOf(const std::string &hex) {
    std::uint64_t number = 0;
    std::from_chars(hex.data(), hex.data() + hex.size(), number, 16);
    return number;
}

// Below the folder, whatever stands in the index.
bool staysBelow(const std::string &file) {
    const fs::path path(file);
    if (file.empty() || path.is_absolute() || file.find('\0') != std::string::npos) return false;
    return std::ranges::none_of(path, [](const fs::path &part) { return part == ".." || part == "."; });
}

std::string textAt(const Json &record, const char *key) {
    const auto found = record.find(key);
    return found != record.end() && found->is_string() ? found->get<std::string>() : std::string();
}

std::optional<TextRecord> recordOf(const Json &json) {
    if (!json.is_object()) return std::nullopt;
    TextRecord record{.file = textAt(json, "file"), .path = textAt(json, "item"), .head = {}, .bytes = {}};
    const auto head = bytesFromHex(textAt(json, "head")), bytes = bytesFromHex(textAt(json, "bytes"));
    record.itemKind = kindOfTextFile(record.file);
    if (!staysBelow(record.file) || record.path.empty() || record.itemKind == kind::none || !head || !bytes)
        return std::nullopt;
    record.head = *head;
    record.bytes = *bytes;
    record.text = numberOf(textAt(json, "text"));
    record.image = numberOf(textAt(json, "data"));
    return record;
}

std::optional<std::vector<TextRecord>> noIndex(const std::string &path,
                                               const char *why = "isn't an index of this program's") {
    commandFailed(path + " " + why + ", so the folder is left alone");
    return std::nullopt;
}

}  // namespace

std::uint64_t digestOf(ByteView bytes) { return sumOf(bytes); }

std::optional<std::vector<TextRecord>> readTextIndex(const std::string &folder) {
    const std::string path = folder + "/" + textIndexName;
    std::vector<TextRecord> records;
    if (!fileExists(path)) return records;
    Bytes bytes;
    if (readWholeFile(path, bytes, indexLimit) != FileResult::done) return noIndex(path, "can't be read");
    const Json json = Json::parse(bytes.begin(), bytes.end(), nullptr, false);
    const bool isOurs = json.is_object() && json.contains("version") && json["version"] == indexVersion &&
                        json.contains("items") && json["items"].is_array();
    if (!isOurs) return noIndex(path);
    for (const Json &item : json["items"]) {
        auto record = recordOf(item);
        if (!record || records.size() == fileLimit) return noIndex(path);
        records.push_back(std::move(*record));
    }
    return records;
}

bool writeTextIndex(const std::string &folder, const std::vector<TextRecord> &records) {
    Json json = {{"version", indexVersion}, {"items", Json::array()}};
    for (const TextRecord &record : records) {
        Json item = {{"file", record.file},
                     {"item", record.path},
                     {"head", hexFromBytes(record.head)},
                     {"text", hexOf(record.text)},
                     {"data", hexOf(record.image)}};
        if (!record.bytes.empty()) item["bytes"] = hexFromBytes(record.bytes);
        json["items"].push_back(std::move(item));
    }
    const std::string text = json.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
    const ByteView bytes(reinterpret_cast<const std::uint8_t *>(text.data()), text.size());
    return writeWholeFile(folder + "/" + textIndexName, bytes) == FileResult::done;
}

std::string textEnding(ItemKind itemKind) { return itemKind == kind::functionMemory ? functionEnding : programEnding; }

ItemKind kindOfTextFile(std::string_view file) {
    if (file.ends_with(functionEnding)) return kind::functionMemory;
    return file.ends_with(programEnding) ? kind::program : kind::none;
}

std::string nameOfTextFile(std::string_view file) {
    file.remove_prefix(file.find_last_of('/') + 1);
    file.remove_suffix(textEnding(kindOfTextFile(file)).size());
    return std::string(file);
}

std::optional<std::vector<std::string>> textFiles(const std::string &folder) {
    std::vector<std::string> files;
    std::error_code failure;
    fs::recursive_directory_iterator entry(folder, failure);
    for (const fs::recursive_directory_iterator end; !failure && entry != end; entry.increment(failure)) {
        const std::string name = entry->path().filename();
        const fs::file_status status = entry->symlink_status(failure);
        if (failure) break;
        if (name.starts_with('.')) {
            if (fs::is_directory(status)) entry.disable_recursion_pending();
        } else if (fs::is_regular_file(status) && kindOfTextFile(name) != kind::none) {
            files.push_back(entry->path().lexically_relative(folder));
        }
        if (files.size() <= fileLimit) continue;
        commandFailed(folder + " holds more than " + std::to_string(fileLimit) + " texts");
        return std::nullopt;
    }
    if (failure) {
        commandFailed(folder + " can't be listed whole, so nothing is done: " + failure.message());
        return std::nullopt;
    }
    std::ranges::sort(files);
    return files;
}

bool liesBehindLink(const std::string &folder, const std::string &file) {
    fs::path path(folder);
    std::error_code failure;
    return std::ranges::any_of(fs::path(file), [&](const fs::path &part) {
        path /= part;
        return fs::is_symlink(path, failure);
    });
}

}  // namespace numalink
