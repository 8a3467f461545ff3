// Texts between the logic and Qt: the logic speaks UTF-8 and calculator codes, Qt its own strings.
#pragma once

#include <QString>
#include <string>

#include "calculator/charset.h"
#include "telling/texts.h"

namespace numalink {

inline QString toQt(const std::string &utf8) { return QString::fromStdString(utf8); }
inline QString textOf(Text text, const std::vector<std::string> &arguments = {}) {
    return toQt(wording(text, arguments));
}
inline QString nameToQt(const std::string &calculatorText) { return toQt(utf8FromCalculator(calculatorText)); }

}  // namespace numalink
