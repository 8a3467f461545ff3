// The panes of the editor: problems, outline, uses of a name. Graphical thread only.
#pragma once

#include "language/references.h"

namespace numalink {

enum class CodePane { problems, outline, uses };

void makeCodePanes();  // once the main window and the editor are there
void forgetCodePanes();
bool codePaneShown(CodePane pane);
void toggleCodePane(CodePane pane);
void showUsesOf(const ProgramName &name);  // in the program on view; of a program in all of its folder

}  // namespace numalink
