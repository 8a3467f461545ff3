// The text of settings.xml: a dialect of elements only, in which each component of a key is one level of nesting.
// Pure but for the table of settings that the reader fills; what shows settings as they are includes this beside
// settings/.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace numalink {

struct Setting {
    std::string key;
    std::string value;
    friend bool operator==(const Setting &, const Setting &) = default;
};

// Gives each value of the file to take(key, value), in file order. False when take refused one; the rest is read
// all the same. No text is too damaged: what can't be told apart is passed over.
bool settingsParse(std::string_view text, bool (*take)(std::string_view key, std::string_view value));

// The whole file for these settings, in this order, with CR LF.
std::string settingsFormat(const std::vector<Setting> &settings);

}  // namespace numalink
