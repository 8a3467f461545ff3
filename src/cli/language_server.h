// A server of the Language Server Protocol for programs in their readable form. One thread.
#pragma once

#include <iosfwd>

namespace numalink {

// Until "exit" or the end of the requests; the exit status: exitDone where "shutdown" came ahead, else exitShown.
int serveLanguage(std::istream &requests, std::ostream &answers);

}  // namespace numalink
