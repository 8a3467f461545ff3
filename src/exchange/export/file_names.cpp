#include "exchange/export/file_names.h"

#include <algorithm>
#include <array>

#include "platform/letter_case.h"

namespace numalink {

std::string safeFileName(std::string_view name) {
    static constexpr std::array reserved = {"con", "prn", "aux", "nul"};
    std::string safe;
    for (const char letter : name) {
        const bool bad = static_cast<unsigned char>(letter) < 0x20 || letter == 0x7F ||
                         std::string_view("/\\:*?\"<>|").find(letter) != std::string_view::npos;
        safe += bad ? '_' : letter;
    }
    if (safe.empty()) return "_";
    if (safe.front() == '.' || safe.front() == ' ') safe.front() = '_';
    if (safe.back() == '.' || safe.back() == ' ') safe.back() = '_';
    const std::string folded = foldCase(safe);
    const bool isPort = folded.size() == 4 && (folded.starts_with("com") || folded.starts_with("lpt"));
    if (isPort || std::ranges::find(reserved, folded) != reserved.end()) safe += '_';
    return safe;
}

}  // namespace numalink
