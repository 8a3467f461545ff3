// The partners of block statements and the places of labels: all of a program found in one walk when it is loaded, so
// that a jump is a look-up and a program of nothing but open blocks loads and runs in linear time. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <tuple>
#include <vector>

#include "emulator/machine/cells.h"

namespace numalink {

inline constexpr int noPartner = -1;

namespace token {
inline constexpr Token ifWord{0xF7, 0x00}, thenWord{0xF7, 0x01}, elseWord{0xF7, 0x02}, ifEnd{0xF7, 0x03};
inline constexpr Token forWord{0xF7, 0x04}, to{0xF7, 0x05}, step{0xF7, 0x06}, next{0xF7, 0x07};
inline constexpr Token whileWord{0xF7, 0x08}, whileEnd{0xF7, 0x09};
inline constexpr Token doWord{0xF7, 0x0A}, loopWhile{0xF7, 0x0B}, breakWord{0xF7, 0x0D};
inline constexpr Token label{0xE2}, goTo{0xEC}, dsz{0xE8}, isz{0xE9}, prog{0xED};
}  // namespace token

bool isTerminator(const ProgramCell &cell);  // 0x0D, 0x3A, 0x0C or 0xFF

// Of each cell of a program the index of its partner, noPartner for one that has none and for all other cells:
//   For the Next, Next the For, While the WhileEnd, WhileEnd the While, LpWhile the Do,
//   Break the Next, WhileEnd or LpWhile of the loop around it,
//   If the Else or IfEnd of its depth, Else where the run goes on: an Else or the IfEnd.
// Every cell counts, wherever in a statement it stands.
std::vector<int> findPartners(std::span<const ProgramCell> cells);

// A label of a program, by the number or token behind its Lbl.
struct LabelPlace {
    CellKind kind = CellKind::token;
    std::uint64_t name = 0;
    int at = noPartner;  // the cell of the Lbl
    friend bool operator<(const LabelPlace &left, const LabelPlace &right) {
        return std::tie(left.kind, left.name, left.at) < std::tie(right.kind, right.name, right.at);
    }
};
using ProgramLabels = std::vector<LabelPlace>;  // sorted

ProgramLabels findLabels(std::span<const ProgramCell> cells);
// The first Lbl of that name, or noPartner.
int findLabel(const ProgramLabels &labels, const ProgramCell &name);

int findTerminator(const ProgramCell *cells, int from);  // the first 0x0D, 0x3A, 0x0C or 0xFF from there on

}  // namespace numalink
