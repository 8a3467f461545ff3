// A folder of readable texts, in step with the programs of the open library. Nothing is lost on either side: what both
// have changed since the last time is told, and stays.
#pragma once

#include <string>

namespace numalink {

// The folder becomes as the library is: texts of new programs come, those of changed ones change, those of programs
// that have gone go, as long as they are as they were written here. The exit status; conflicts are told, and give
// exitShown.
int exportTexts(const std::string &folder);

// The library becomes as the folder is: texts that have changed, come, been renamed or gone since the last time.
int importTexts(const std::string &folder);

}  // namespace numalink
