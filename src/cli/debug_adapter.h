// The Debug Adapter Protocol over a run: requests in, responses and events out, each a JSON object behind its length.
// Any editor that speaks it can step through a program.
#pragma once

#include <iosfwd>
#include <string>

namespace numalink {

// Serves until the requests end or ask for it. The library is open. item is a path or an id. Exit status of the
// command line.
int serveDebugger(const std::string &item, std::istream &requests, std::ostream &answers);

}  // namespace numalink
