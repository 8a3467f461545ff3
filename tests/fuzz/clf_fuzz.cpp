// Any bytes as a language file: every number that comes out has its place in the table, and every text a %d and %s
// for each argument that the program gives.
#include <cstdlib>

#include "telling/language_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const numalink::LanguageFile file = numalink::languageParse({reinterpret_cast<const char *>(data), size});
    for (const std::string &text : {file.record.name, file.record.author, file.record.email, file.record.date})
        if (text.size() > 99) std::abort();
    for (const auto &[number, text] : file.texts) {
        if (number < 0 || number >= numalink::languageTextCount) std::abort();
        if (text.find_first_of("\n") != std::string::npos) std::abort();
        const std::string filled = numalink::formatArguments(text, {"<1>", "<2>"});
        if (number == 66 && (filled.find("<1>") == std::string::npos || filled.find("<2>") == std::string::npos))
            std::abort();
    }
    return 0;
}
