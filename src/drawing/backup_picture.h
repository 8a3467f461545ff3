// A memory backup as a short report. Graphical thread; the language is read.
#pragma once

#include <string>
#include <vector>

#include "platform/bytes.h"
#include "platform/surface.h"

namespace numalink {

// The lines of the report in calculator codes: title, size, and with the table of programs found in the data, the
// type and a line a program.
std::vector<std::string> backupLines(ByteView head, ByteView data);

// The report on a surface of its size, at least 150 dots wide.
Surface drawBackup(ByteView head, ByteView data);

}  // namespace numalink
