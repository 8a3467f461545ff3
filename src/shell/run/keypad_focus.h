// The key pad worked from the keyboard: while it has the focus, one of its keys is picked, the arrow keys pick another
// and Enter presses it. All other keys stay what they are for a run. Graphical thread only.
#pragma once

class QKeyEvent;

namespace numalink {

// The command: gives the focus to the key pad of the calculator on view, and takes it back.
void toggleKeypadFocus();
bool keypadFocused();
int pickedKey();  // the code of the key that has the focus, 0 without one

// True for a key that moved the focus, pressed the picked key or left the key pad.
bool keypadKeyDown(const QKeyEvent &key);

// The key that an arrow key leads to, by steps of one column or row; the same one at an edge. Pure.
int keyBeside(int code, int stepX, int stepY);

void leaveKeypad();  // also without the focus
void forgetKeypadFocus();

// Called after each change, ahead of which nothing else tells of it.
inline void (*keypadFocusChanged)() = [] {};
// Presses a key of the pad as the mouse does.
inline void (*pressPadKey)(int code) = [](int) {};

}  // namespace numalink
