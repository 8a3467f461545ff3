// Keys of the keyboard for a run: which key of the calculator they are. Graphical thread only.
#pragma once

#include <QStringList>

class QKeyEvent;

namespace numalink {

// A key of the calculator is down, and up again: keyCode. A short tap counts for so long that a wait of the run sees
// it.
void pressKey(int code);
void releaseKey();
bool fastKeyUp(const QKeyEvent &key);  // false for another key
void releaseAllKeys();                 // the keyboard is no longer the run's
int heldPadKey();                      // the code of the one that is down, 0 without one
void forgetEmulatorKeys();

// What a key of the calculator is on the keyboard, as keyboards name it in the language of Qt; empty for none.
QStringList keyboardNamesOf(int code);

// A key went down: keyCode takes what the map has for it. Escape and F7 stop the run. Keys that the map doesn't have
// change nothing. Always true: while a run is on, no key does anything else.
bool isMenuKey(
    const QKeyEvent &event);  // Alt, with another key or alone, F10, F12 and Ctrl with F1 to F12 stay the window's
bool emulatorKeyDown(const QKeyEvent &key);

// A key went up: the key of the calculator is, too. The releases of auto-repeat are none.
bool emulatorKeyUp(const QKeyEvent &key);

}  // namespace numalink
