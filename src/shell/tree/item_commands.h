// Commands on the items of the tree. Graphical thread only.
#pragma once

namespace numalink {

void newFolder();           // at the root, with its label in edit
void newProgram();          // the same in the selected folder, or in that of programs
void renameSelectedItem();  // starts the edit of its label
void deleteWithQuestion();  // what is selected; the one after it, before it or above it is selected then

}  // namespace numalink
