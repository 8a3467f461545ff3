// Keys of a run into a file, and out of one: the Save Keys and Play Keys commands. Graphical thread only.
#pragma once

namespace numalink {

void saveKeys();  // of the run that is on
void playKeys();  // asks for a file, and runs the selected program with it

// For who starts runs. The keys of each are kept, or are those of the file that was chosen for it.
void useSettingsOfKeys();  // ahead of machineStart: those of the file stand in for the user's
void beginKeys();          // behind it
void endKeys();            // the run is over: the user's settings count again

}  // namespace numalink
