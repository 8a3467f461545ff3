// The drafts that an earlier run has left, offered at the start. Graphical thread only.
#pragma once

namespace numalink {

// Asks for each draft that lies there: open, delete, or ask again next time. The first that is opened ends the
// questions.
void offerDrafts();

}  // namespace numalink
