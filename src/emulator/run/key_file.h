// The file of recorded keys: lines of a word and what belongs to it, to be read and sent by people. docs/formats.md has
// the form. Pure.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "calculator/item_kinds.h"
#include "emulator/run/key_recording.h"

namespace numalink {

inline constexpr std::uint64_t keyFileLimit = std::uint64_t{32} << 20;  // bytes

struct KeyFile {
    std::string program;         // its name, UTF-8; a control character in it is written as '?'
    std::uint32_t checksum = 0;  // of its bytes (checksum32); 0: not known
    // Of the settings of the emulator that a program's way depends on, by their last component: "0" or "1".
    std::vector<std::pair<std::string, int>> settings;
    RunKeys keys;
};

// The settings that such a file holds, as they are now.
std::vector<std::pair<std::string, int>> keyFileSettings();
std::string keyFileSettingKey(const std::string &component);  // the whole key

// Of a program in the library; 0 for none.
std::uint32_t keyFileChecksum(ItemId program);

std::string keyFileText(const KeyFile &file);
// 0, or the number of the first line that is none of such a file; file then has what lies ahead of it.
int keyFileRead(std::string_view text, KeyFile &file);

}  // namespace numalink
