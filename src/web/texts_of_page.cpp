// The few texts that a run can say, in the language that the page has chosen, in the place of the language files.
#include <map>

#include "telling/language_table.h"
#include "web/player.h"

namespace numalink {

namespace {

std::map<int, std::string> texts;
const std::string unknownText = "?";

}  // namespace

void setPageText(int number, std::string text) { texts[number] = std::move(text); }

const std::string &languageText(int number) {
    const auto found = texts.find(number);
    return found == texts.end() ? unknownText : found->second;
}

std::string languageItem(int number, int index) { return languageText(number * 100 + index); }

}  // namespace numalink
