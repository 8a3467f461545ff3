// The pane of the profile: how often each statement ran and what the calculator takes for it. Graphical thread only.
#pragma once

class QWidget;

namespace numalink {

QWidget *makeProfilePane();
void refreshProfile();
void forgetProfilePane();

bool neverRunShown();  // statements that never ran are to be faint in the program

}  // namespace numalink
