// The kinds of files that are written, each once: what the question for one, its file dialog, the setting of the last
// kind and the command line's option go by.
#pragma once

#include <span>
#include <string>

#include "telling/user_interface.h"

namespace numalink {

struct ExportFormat {
    ExportTarget target;
    const char *settingName;
    const char *option;  // on the command line
    const char *ending;  // with its dot, in lower case
    Text label;
    Text filter;
};

std::span<const ExportFormat> exportFormats();            // in the order of the question
const ExportFormat *exportFormatOf(ExportTarget target);  // null for none

}  // namespace numalink
