// How commands name the sort of file that is to be written.
#pragma once

#include <string>
#include <vector>

#include "telling/user_interface.h"

namespace numalink {

inline const std::vector<std::string> targetOptions = {"cas", "cat", "cat-algebra"};
inline constexpr char targetOptionHelp[] = "cas, cat, or cat-algebra";

inline ExportTarget targetOfOption(const std::string &option) {
    if (option == "cas") return ExportTarget::cas;
    return option == "cat" ? ExportTarget::cat : ExportTarget::catAlgebra;
}

}  // namespace numalink
