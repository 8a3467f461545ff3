// The language files and their texts by number; texts.h gives them by name. Loaded once at start-up on the graphical
// thread, then only read, by any thread. Language files and what they give are UTF-8.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace numalink {

inline constexpr int languageLimit = 20;                 // languages kept
inline constexpr int languageTextCount = 200;            // text numbers 0 to 199
inline constexpr std::size_t languagePoolSize = 262144;  // bytes of all texts together, terminators included

struct LanguageRecord {
    std::string name, author, email, date;  // at most 99 bytes each
};

// Reads every Language/*.clf of the program folder in the order of the file names. 1, or -1 when neither name was
// found; names compare without case. What doesn't fit a limit is passed over, and the rest stays usable; the texts of
// the current and the fallback language are the last that a full pool leaves out.
int languageLoad(std::string_view current, std::string_view fallback);

// The language of that name; with an empty one, as long as nobody has chosen, the first that the system asks for and a
// file speaks. English stands in for either. As languageLoad, and on the thread that starts the program.
int languageLoadChosen(std::string_view chosen);

// The current language's text, else the fallback's, else "<unknown string>". Never fails, for any number.
const std::string &languageText(int number);

// One of several texts under one number: they are joined by "|" in the file; index from 0. The numbers from 164 on
// hold such lists, since the table ends at 199. "<unknown string>" when there is none.
std::string languageItem(int number, int index);

int languageCount();
const LanguageRecord &languageRecord(int index);  // 0 to languageCount() - 1
int languageCurrent();                            // index of the current language, or -1

// The text with its %d and %s replaced by the arguments in order; a missing argument leaves nothing, a surplus one
// is dropped, "%%" is a percent sign, any other % stays. Never printf.
std::string formatArguments(std::string_view text, const std::vector<std::string> &arguments);

}  // namespace numalink
