// The process-wide widgets. Made once by the start-up in start_up.cpp, null before and after. Graphical thread only.
#pragma once

class QLabel;
class QMainWindow;
class QMenu;
class QPlainTextEdit;
class QProgressBar;
class QScrollArea;
class QStatusBar;
class QToolBar;
class QToolButton;
class QTreeWidget;
class QWidget;

namespace numalink {

extern QMainWindow *mainWindow;
extern QWidget *clientArea;  // what lies between toolbar and status bar
extern QTreeWidget *treeView;
extern QToolButton *treeToggleButton;
extern QStatusBar *statusBar;
extern QProgressBar *progressBar;
extern QLabel *linkField;            // status bar part 1
extern QLabel *itemField;            // status bar part 2
extern QPlainTextEdit *programEdit;  // this and the next made by the editor
extern QWidget *lineNumberEdit;
extern QWidget *containerWindow;
extern QWidget *emulatorWindow;  // lies over containerWindow; made by the emulator
extern QToolBar *toolbar;
extern QMenu *itemMenu;        // an item's commands
extern QMenu *treeGroundMenu;  // what makes new ones
extern QMenu *programMenu;     // what the text of a program offers

// Make the widgets with their looks, unconnected: the main window with its parts, sized as at start-up.
void makeMainWindow();
void makeClientWidgets();
// The button at the end of a bar that has no room for all of its own.
void nameMoreButton(QToolBar *bar);
void fitWindowToToolbar();  // wider where the buttons' words are longer, so that none is hidden
void destroyWidgets();

// Shows a window that stands over the main one. The window manager minimises it along with that one; shown in this
// state, it would take the main window along again.
void showUnminimised(QWidget *window);

}  // namespace numalink
