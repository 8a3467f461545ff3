// From a block statement to its partner by walking the cells and counting depth. Pure.
#pragma once

#include "emulator/machine/cells.h"

namespace numalink {

inline constexpr int noPartner = -1;

namespace token {
inline constexpr Token ifWord{0xF7, 0x00}, thenWord{0xF7, 0x01}, elseWord{0xF7, 0x02}, ifEnd{0xF7, 0x03};
inline constexpr Token forWord{0xF7, 0x04}, to{0xF7, 0x05}, step{0xF7, 0x06}, next{0xF7, 0x07};
inline constexpr Token whileWord{0xF7, 0x08}, whileEnd{0xF7, 0x09};
inline constexpr Token doWord{0xF7, 0x0A}, loopWhile{0xF7, 0x0B};
inline constexpr Token label{0xE2}, goTo{0xEC}, dsz{0xE8}, isz{0xE9}, prog{0xED};
}  // namespace token

bool isTerminator(const ProgramCell &cell);  // 0x0D, 0x3A, 0x0C or 0xFF

// cells ends in 0xFF. at is the cell of the statement. Results are cell indexes; noPartner when the walk runs off.
int findNext(const ProgramCell *cells, int at);                     // For: the Next
int findFor(const ProgramCell *cells, int at);                      // Next: the For
int findWhileEnd(const ProgramCell *cells, int at);                 // While: the WhileEnd
int findWhile(const ProgramCell *cells, int at);                    // WhileEnd: the While
int findDo(const ProgramCell *cells, int at);                       // LpWhile: the Do
int findLoopEnd(const ProgramCell *cells, int at);                  // Break: the Next, WhileEnd or LpWhile around it
int findFalseBranch(const ProgramCell *cells, int at);              // If: the Else or IfEnd of its depth
int findIfEnd(const ProgramCell *cells, int at);                    // Else: where the run goes on, an Else or the IfEnd
int findLabel(const ProgramCell *cells, const ProgramCell &label);  // Goto: the Lbl
int findTerminator(const ProgramCell *cells, int from);             // the first 0x0D, 0x3A, 0x0C or 0xFF from there on

}  // namespace numalink
