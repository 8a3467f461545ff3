// Dialogs and menus that wait for the user. Each brings up the tree behind it, for what has changed meanwhile.
// Graphical thread only.
#pragma once

class QDialog;
class QMenu;
class QPoint;

namespace numalink {

int runDialog(QDialog &dialog);  // until it is closed; gives its result; it fits its screen
// No larger than the screen of the main window: where the parts of a dialog need more, those ahead of its buttons can
// be scrolled. For dialogs whose parts stand one above the other, ahead of their showing.
void fitToScreen(QDialog &dialog);
void runMenu(QMenu &menu, const QPoint &onScreen);
void dialogClosed();  // by a dialog that is open without runDialog, when it ends

bool raiseOpenDialog();   // the one that has the keyboard comes to the front; false when none is open
void closeOpenWindows();  // menus and dialogs, as Escape does

}  // namespace numalink
