// The one thread that owns the line to a calculator: it opens the port of the settings, waits and converses, and takes
// the port up again when it comes back. Called on the graphical thread.
#pragma once

#include <string>
#include <vector>

namespace numalink {

// The ports that are there, for the one of the settings to be found among them; a test puts in its own.
extern std::vector<std::string> (*linkPortsPresent)();

// Stops what runs, at any byte and without a word to the calculator, and starts anew with the settings' port and type.
// The queue stays. Doesn't wait for the calculator, nor for the user's answer to a box of the link.
void startLinkThread();

// For the end of the program; harmless when nothing runs.
void stopLinkThread();

bool linkThreadRuns();

enum class LinkPort { untried, refused, opened };
LinkPort linkPort();          // opened: at least once since the start
bool linkConversationRuns();  // whether a transfer is under way: a restart would cut it

}  // namespace numalink
