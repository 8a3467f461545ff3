// The counting side of the profile. Run thread, but for profileForget, which is for between runs.
#pragma once

namespace numalink {

bool profileAdopt();                       // begins or ends to count, as was asked; whether it counts
void profileCount(int program, int cell);  // a statement that comes next, for the first time
void profileSettle();                      // what has been paid up to now goes to the statement that was counted last
void profileForget();

}  // namespace numalink
