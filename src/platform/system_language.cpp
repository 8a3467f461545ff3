#include "platform/system_language.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace numalink {

namespace {

std::string_view variable(const char *name) {
    const char *value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): at the start, where nothing sets any
    return value == nullptr ? std::string_view() : value;
}

std::string_view localeOfMessages() {
    for (const char *name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const std::string_view value = variable(name); !value.empty()) return value;
    return {};
}

// "de" out of "de_AT.UTF-8@euro"; nothing of what is no language.
void addCode(std::vector<std::string> &codes, std::string_view locale) {
    const std::string_view code = locale.substr(0, locale.find_first_of("_.@"));
    const bool isCode = code.size() >= 2 && code.size() <= 3 &&
                        std::ranges::all_of(code, [](char letter) { return letter >= 'a' && letter <= 'z'; });
    if (isCode) codes.emplace_back(code);
}

}  // namespace

std::vector<std::string> systemLanguages() {
    std::vector<std::string> ofLocale;
    addCode(ofLocale, localeOfMessages());
    if (ofLocale.empty()) return {};
    std::vector<std::string> codes;
    std::string_view list = variable("LANGUAGE");
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(':'), list.size());
        addCode(codes, list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    codes.push_back(ofLocale.front());
    return codes;
}

}  // namespace numalink
