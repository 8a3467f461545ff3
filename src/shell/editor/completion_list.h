// The list of what may be meant by the letters ahead of the caret. It has no focus: typing goes on, and whoever doesn't
// want it needn't know of it. Graphical thread only.
#pragma once

class QKeyEvent;

namespace numalink {

void completeNow();      // asked for: the first one is chosen
void completionTyped();  // something was typed: shows, narrows or closes it
void closeCompletion();
bool completionShown();
bool completionKey(const QKeyEvent &key);  // true where the key was the list's
bool completesWhileTyping();
void toggleCompletesWhileTyping();
void forgetCompletion();

}  // namespace numalink
