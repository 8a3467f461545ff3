// What a run leaves behind, as text for people and as JSON for programs. After the run, on the thread that started it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "emulator/run/scripted_run.h"
#include "telling/user_interface.h"

namespace numalink {

const char *runEndName(RunEnd ended);

nlohmann::ordered_json runAsJson(const RunReport &report, const std::vector<Box> &boxes);

// The text screen as eight rows and the graph screen as Braille dots of two by four, where anything stands on it.
std::string runAsText(const RunReport &report);

}  // namespace numalink
