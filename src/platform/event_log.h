// The last things that happened in the program, for a report of a fault: commands, boxes, states of the link. What is
// noted names no item, file or person. Any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace numalink {

inline constexpr std::size_t eventLimit = 200;      // older ones go
inline constexpr std::size_t eventTextLimit = 120;  // bytes of UTF-8; more is cut

void noteEvent(std::string_view text);  // with the time of the day; control characters become blanks
std::vector<std::string> eventLines();  // oldest first
void forgetEvents();

// From now on the events are written to this file, too, as they come, until eventLogRelease removes it: a file that is
// left was left by a run that ended otherwise. Gives what such a run has noted, and nothing where none was left. A file
// that another program holds, or that can't be written, is left alone.
std::optional<std::vector<std::string>> eventLogKeep(const std::string &path);
void eventLogRelease();  // harmless without a file

}  // namespace numalink
