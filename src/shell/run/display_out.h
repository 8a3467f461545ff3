// The display on its way out of the window: as a file, onto the clipboard, and dragged to elsewhere. All are one
// picture, at the zoom of the View menu. Graphical thread only.
#pragma once

class QMimeData;

namespace numalink {

void saveScreenshot();      // the Save Screenshot command: 128 by 64 dots as a bitmap, or zoomed as PNG
void copyDisplayPicture();  // onto the clipboard
void copyDisplayText();     // what it shows as text

// The mouse has left the place where it went down on the display: the picture goes with it, as a file too. Returns
// when it was let go.
void dragDisplay();
QMimeData *displayToDrag();  // what goes with it; the caller's

void forgetDraggedFiles();  // with the window

}  // namespace numalink
