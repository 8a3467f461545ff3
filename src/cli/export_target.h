// How commands name the sort of file that is to be written.
#pragma once

#include <string>
#include <vector>

#include "exchange/export/export_formats.h"

namespace numalink {

inline std::vector<std::string> targetOptions() {
    std::vector<std::string> options;
    for (const ExportFormat &format : exportFormats()) options.emplace_back(format.option);
    return options;
}

inline constexpr char targetOptionHelp[] = "The kind of file to write";

inline ExportTarget targetOfOption(const std::string &option) {
    for (const ExportFormat &format : exportFormats())
        if (option == format.option) return format.target;
    return ExportTarget::none;
}

}  // namespace numalink
