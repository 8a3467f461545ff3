// What a folder of texts was when it was last brought in step with a library: an index in the folder itself, and how
// items are called there.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calculator/item_kinds.h"
#include "platform/bytes.h"

namespace numalink {

inline constexpr char textIndexName[] = ".numalink-texts.json";

struct TextRecord {
    std::string file;  // below the folder, with "/" between
    std::string path;  // of the item in the library, UTF-8: "/Programs/SNAKE"
    ItemKind itemKind = kind::program;
    Bytes head;               // as in the library
    std::uint64_t text = 0;   // digest of the file as it was written or read
    std::uint64_t image = 0;  // digest of the item's data at that time
    Bytes bytes;              // these data, where the text alone doesn't give them back
};

std::uint64_t digestOf(ByteView bytes);

// No records where there is no index. Nothing, with the cause on standard error, for what is no index of ours; so is
// one that leads out of the folder.
std::optional<std::vector<TextRecord>> readTextIndex(const std::string &folder);
bool writeTextIndex(const std::string &folder, const std::vector<TextRecord> &records);

std::string textEnding(ItemKind itemKind);          // ".txt"; ".fm.txt" for a function memory
ItemKind kindOfTextFile(std::string_view file);     // kind::none for what is no text of ours
std::string nameOfTextFile(std::string_view file);  // without folders and ending

// The texts below the folder, "/" between, by name; links and what is hidden are left out. Nothing, with the cause on
// standard error, where not all of them can be listed.
std::optional<std::vector<std::string>> textFiles(const std::string &folder);
// Whether the file, or a folder that it lies in below that one, is a link: what it leads to isn't the folder's.
bool liesBehindLink(const std::string &folder, const std::string &file);

}  // namespace numalink
