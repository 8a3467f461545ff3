// The password that goes out with a program. Graphical thread only.
#pragma once

namespace numalink {

void changePassword();  // handler of the command table: for the selected program

}  // namespace numalink
