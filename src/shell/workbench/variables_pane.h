// The pane of what a stopped run holds: variables, view window, modes, lists and matrices, to be looked at and changed.
// Graphical thread only.
#pragma once

#include <string>

class QWidget;

namespace numalink {

QWidget *makeVariablesPane();
void refreshVariables();
void forgetValues();  // those that are shown
void forgetVariablesPane();

std::string pickedValue();  // the name of the selected value that can change; empty: none

}  // namespace numalink
