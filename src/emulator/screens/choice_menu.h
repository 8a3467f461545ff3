// The menu that a program offers: a title and up to nine choices on the text screen. Run thread; blocks until a choice
// or a stop.
#pragma once

#include <string>
#include <vector>

namespace numalink {

inline constexpr std::size_t choiceLimit = 9;

// The place of the choice from 0, or -1 when the run doesn't go on. The arrows move and EXE takes, or the digit of the
// choice. Texts are calculator codes. What stood on the screen comes back.
int askChoice(const std::string &title, const std::vector<std::string> &choices);

}  // namespace numalink
