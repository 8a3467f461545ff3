#include "telling/language_table.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <optional>

#include "platform/files.h"
#include "platform/letter_case.h"
#include "platform/program_folder.h"
#include "platform/system_language.h"
#include "telling/language_file.h"
#include "telling/texts.h"

namespace numalink {

namespace {

constexpr std::uint64_t fileSizeLimit = std::uint64_t{1024} * 1024;  // bytes; the pool of all texts is far smaller
const std::string unknownText = "<unknown string>";

struct Language {
    LanguageRecord record;
    std::array<std::optional<std::string>, languageTextCount> texts;
};

std::vector<Language> languages;
std::size_t poolUsed = 0;  // bytes of all texts, each with its terminator
int currentLanguage = -1;
int fallbackLanguage = -1;

std::vector<std::filesystem::path> languageFiles() {
    std::vector<std::filesystem::path> files;
    std::error_code failure;
    std::filesystem::directory_iterator entry(dataPath("Language"), failure);
    for (const std::filesystem::directory_iterator end; !failure && entry != end; entry.increment(failure))
        if (equalWithoutCase(entry->path().extension().string(), ".clf")) files.push_back(entry->path());
    std::ranges::sort(files);
    return files;
}

using FileTexts = decltype(LanguageFile::texts);

// Adds the language without its texts, which it gives. False when the file can't be read.
bool addLanguage(const std::filesystem::path &path, FileTexts &texts) {
    Bytes bytes;
    if (readWholeFile(path.string(), bytes, fileSizeLimit) != FileResult::done) return false;
    LanguageFile file = languageParse({reinterpret_cast<const char *>(bytes.data()), bytes.size()});
    languages.emplace_back().record = std::move(file.record);
    texts = std::move(file.texts);
    return true;
}

// Puts the texts into the pool; what has no room there is left out. A repeated number gives back the earlier text.
void takeTexts(Language &language, FileTexts &texts) {
    for (auto &[number, text] : texts) {
        auto &place = language.texts[static_cast<std::size_t>(number)];
        const std::size_t freed = place ? place->size() + 1 : 0;
        if (text.size() + 1 > languagePoolSize - (poolUsed - freed)) continue;
        poolUsed = poolUsed - freed + text.size() + 1;
        place = std::move(text);
    }
    texts.clear();
}

// The text of one language, or null.
const std::string *storedText(int language, int number) {
    if (language < 0 || number < 0 || number >= languageTextCount) return nullptr;
    const auto &text = languages[static_cast<std::size_t>(language)].texts[static_cast<std::size_t>(number)];
    return text ? &*text : nullptr;
}

std::optional<std::string> itemOf(const std::string *list, int index) {
    if (!list || index < 0) return std::nullopt;
    std::string_view rest = *list;
    for (; index > 0; index--) {
        const std::size_t bar = rest.find('|');
        if (bar == std::string_view::npos) return std::nullopt;
        rest.remove_prefix(bar + 1);
    }
    return std::string(rest.substr(0, rest.find('|')));
}

// The language that a file says it is ("de"), or -1.
int languageOfCode(std::string_view code) {
    for (int language = 0; language < languageCount(); language++) {
        const std::string *list = storedText(language, textNumber(Text::qtTranslation));
        if (itemOf(list, textPlace(Text::qtTranslation)) == code) return language;
    }
    return -1;
}

}  // namespace

int languageLoad(std::string_view current, std::string_view fallback) {
    languages.clear();
    languages.reserve(languageLimit);
    poolUsed = 0;
    currentLanguage = fallbackLanguage = -1;
    std::vector<FileTexts> texts;  // of each language
    for (const std::filesystem::path &path : languageFiles()) {
        if (languageCount() == languageLimit) break;
        if (!addLanguage(path, texts.emplace_back())) {
            texts.pop_back();
            continue;
        }
        const int index = languageCount() - 1;
        if (equalWithoutCase(languageRecord(index).name, current)) currentLanguage = index;
        if (equalWithoutCase(languageRecord(index).name, fallback)) fallbackLanguage = index;
    }
    if (currentLanguage < 0) currentLanguage = fallbackLanguage;
    if (fallbackLanguage < 0) fallbackLanguage = currentLanguage;
    // The texts that can be shown go first, so that a pool that overflows takes none of them.
    for (const int index : {currentLanguage, fallbackLanguage})
        if (index >= 0) takeTexts(languages[static_cast<std::size_t>(index)], texts[static_cast<std::size_t>(index)]);
    for (std::size_t index = 0; index < languages.size(); index++) takeTexts(languages[index], texts[index]);
    return currentLanguage < 0 ? -1 : 1;
}

int languageLoadChosen(std::string_view chosen) {
    constexpr std::string_view fallback = "English";
    const int result = languageLoad(chosen.empty() ? fallback : chosen, fallback);
    if (!chosen.empty()) return result;
    for (const std::string &code : systemLanguages()) {
        const int language = languageOfCode(code);
        if (language < 0) continue;
        currentLanguage = language;
        return 1;
    }
    return result;
}

const std::string &languageText(int number) {
    if (const std::string *text = storedText(currentLanguage, number)) return *text;
    if (const std::string *text = storedText(fallbackLanguage, number)) return *text;
    return unknownText;
}

std::string languageItem(int number, int index) {
    if (const auto item = itemOf(storedText(currentLanguage, number), index)) return *item;
    return itemOf(storedText(fallbackLanguage, number), index).value_or(unknownText);
}

int languageCount() { return static_cast<int>(languages.size()); }
const LanguageRecord &languageRecord(int index) { return languages[static_cast<std::size_t>(index)].record; }
int languageCurrent() { return currentLanguage; }

}  // namespace numalink
