// The dialog in which keys of the keyboard are assigned to those of the calculator. Graphical thread only.
#pragma once

namespace numalink {

void assignKeys();  // handler of the command table

}  // namespace numalink
