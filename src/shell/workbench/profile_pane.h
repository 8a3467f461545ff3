// The pane of the profile: how often each statement ran and what the calculator takes for it. Graphical thread only.
#pragma once

#include "debugger/profile.h"

class QWidget;

namespace numalink {

QWidget *makeProfilePane();
void refreshProfile();
void forgetProfilePane();

// Reads the counts, for this pane and the marks in the program alike.
void takeProfile();
const ProfileReport &takenProfile();
void forgetProfiles();  // what is shown of them, and the one to compare with

bool neverRunShown();  // statements that never ran are to be faint in the program

}  // namespace numalink
