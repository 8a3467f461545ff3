// The calculator for assistive technologies: its display is text of eight lines, each key of its pad a button.
// Graphical thread only.
#pragma once

#include <QRect>

namespace numalink {

void offerEmulatorAccess(QRect (*placeOfDots)(const QRect &dots));  // once emulatorWindow is there; in its pixels

void tellDisplayText();  // the display may show another text now
void tellPickedKey();    // another key has the focus

void forgetEmulatorAccess();

}  // namespace numalink
