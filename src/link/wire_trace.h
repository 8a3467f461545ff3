// A trace of all that the link says and hears, decoded, into a file. While none is kept the link knows nothing of it.
#pragma once

#include <string>
#include <vector>

#include "telling/texts.h"

namespace numalink {

// Puts an observed line in the place of serialLine, ahead of the link's thread. The trace is written behind what the
// file holds, which must be a trace, too: anything else stays as it is. The text that tells why it can't be kept, with
// the path in its place; none when it has begun.
Text wireTraceStart(const std::string &path);
// Once the link's thread is joined; harmless without a trace. False when some of it could not be written.
bool wireTraceEnd();

// What passed last, oldest first, a line each without the bytes; nothing where no trace was kept. Any thread.
std::vector<std::string> wireTraceLast();

}  // namespace numalink
