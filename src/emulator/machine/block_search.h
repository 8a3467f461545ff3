// From a block statement to its partner by walking the cells and counting depth. Pure.
#pragma once

#include "emulator/machine/cells.h"

namespace numalink {

inline constexpr int noPartner = -1;

bool isTerminator(const ProgramCell &cell);  // 0x0D, 0x3A, 0x0C or 0xFF

// cells ends in 0xFF. at is the cell of the statement. Results are cell indexes; noPartner when the walk runs off.
int findNext(const ProgramCell *cells, int at);                     // For: the Next
int findFor(const ProgramCell *cells, int at);                      // Next: the For
int findWhileEnd(const ProgramCell *cells, int at);                 // While: the WhileEnd
int findWhile(const ProgramCell *cells, int at);                    // WhileEnd: the While
int findDo(const ProgramCell *cells, int at);                       // LpWhile: the Do
int findFalseBranch(const ProgramCell *cells, int at);              // If: the Else or IfEnd of its depth
int findIfEnd(const ProgramCell *cells, int at);                    // Else: where the run goes on, an Else or the IfEnd
int findLabel(const ProgramCell *cells, const ProgramCell &label);  // Goto: the Lbl
int findTerminator(const ProgramCell *cells, int from);             // the first 0x0D, 0x3A, 0x0C or 0xFF from there on

}  // namespace numalink
