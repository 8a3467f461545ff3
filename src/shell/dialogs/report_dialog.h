// The report of a fault: the user sees all of it, and copies or saves it. The program sends nothing. Graphical thread
// only.
#pragma once

#include <string>
#include <vector>

namespace numalink {

void showReport();                                          // the command
void showReportOf(const std::vector<std::string> &before);  // with the events of a run that ended badly

}  // namespace numalink
