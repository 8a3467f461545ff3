// The daily copies of the library by their names, storage-YYYY-MM-DD.dat in a folder beside it.
#pragma once

#include <string>
#include <vector>

namespace numalink {

std::string dailyCopyFolder();              // with a final "/"
std::vector<std::string> dailyCopyNames();  // without the folder, by rising date; none when it can't be read

}  // namespace numalink
