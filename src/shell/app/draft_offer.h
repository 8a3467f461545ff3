// The drafts that an earlier run has left, offered at the start. Graphical thread only.
#pragma once

namespace numalink {

// Asks for each draft that lies there: open, delete, or ask again next time. The first that is opened ends the
// questions.
// Once the library is open: events are kept beside it, so that a run that doesn't come to its end leaves them for the
// next question.
void keepEvents();

void offerDrafts();

}  // namespace numalink
