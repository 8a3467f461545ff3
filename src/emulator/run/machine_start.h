// The reset of the machine at the start of a run.
#pragma once

namespace numalink {

// What it leaves alone lasts as long as the process: Ans, the view window with its memories, the picture memories and
// the plotted points. Reads the settings. Graphical thread, while no run is on.
void machineStart();

}  // namespace numalink
