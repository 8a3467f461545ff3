// What keeps a program's text from being stored, and how the user is told. Any thread.
#pragma once

#include <string>
#include <vector>

namespace numalink {

struct TextFault {
    int line;  // from 1
    char32_t character;
};

// What a box about them says: the first one's line, and below it the lines with their characters. Both take at least
// one.
std::string textOfFaults(const std::vector<TextFault> &faults);
void tellFaults(const std::vector<TextFault> &faults);

}  // namespace numalink
