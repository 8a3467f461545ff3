// The panes of the workbench, as docks of the main window: which are shown, and where they stand. Graphical thread
// only.
#pragma once

namespace numalink {

enum class Pane { variables, watches, calls, breakpoints, profile };

void makePanes();  // once the main window and its menus are there
void forgetPanes();

void showPanes(bool show);  // those that the user wants, or none
bool panesShown();          // at least one
bool paneShown(Pane pane);
void togglePane(Pane pane);  // the calculator goes beside the program where it isn't
void rememberPanes();        // into the settings

}  // namespace numalink
