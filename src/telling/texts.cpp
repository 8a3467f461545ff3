// Wordings from the texts of the language files.
#include "telling/texts.h"

#include "telling/language_table.h"

namespace numalink {

std::string formatArguments(std::string_view text, const std::vector<std::string> &arguments) {
    std::string result;
    std::size_t next = 0;
    for (std::size_t i = 0; i < text.size(); i++) {
        const char which = text[i] == '%' && i + 1 < text.size() ? text[i + 1] : '\0';
        if (which != '%' && which != 'd' && which != 's') {
            result += text[i];
            continue;
        }
        if (which == '%')
            result += '%';
        else if (next < arguments.size())
            result += arguments[next++];
        i++;
    }
    return result;
}

std::string wording(Text text, const std::vector<std::string> &arguments) {
    const int number = textNumber(text);
    return formatArguments(number < firstListNumber ? languageText(number) : languageItem(number, textPlace(text)),
                           arguments);
}

}  // namespace numalink
