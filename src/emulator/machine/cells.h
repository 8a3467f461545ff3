// Small operations on any array of ProgramCells, and what a cell names. Run thread.
#pragma once

#include <cstdint>

#include "emulator/machine/machine.h"

namespace numalink {

// A token's bytes. The second counts only behind 0x7F and 0xF7.
struct Token {
    std::uint8_t first = 0;
    std::uint8_t second = 0;
    friend bool operator==(const Token &, const Token &) = default;
};
constexpr bool isTwoByteLead(std::uint8_t byte) { return byte == 0x7F || byte == 0xF7; }

// The tokens that more than one file asks for.
namespace token {
inline constexpr Token displayTriangle{0x0C}, newLine{0x0D}, colon{0x3A}, endOfProgram{0xFF};
inline constexpr Token arrow{0x0E}, then{0x13}, exponent{0x0F}, rangeMark{0x7E};  // then: the double arrow
inline constexpr Token comma{0x2C}, point{0x2E}, quote{0x22}, blank{0x20}, questionMark{0x3F};
inline constexpr Token openParenthesis{0x28}, closeParenthesis{0x29};
inline constexpr Token openBracket{0x5B}, closeBracket{0x5D}, openBrace{0x7B}, closeBrace{0x7D};
inline constexpr Token plus{0x89}, minus{0x99}, negative{0x87}, fractionMark{0xBB}, ans{0xC0};
inline constexpr Token degrees{0x9C}, toSexagesimal{0x8C};
inline constexpr Token matrix{0x7F, 0x40}, list{0x7F, 0x51}, dim{0x7F, 0x46};
inline constexpr Token mode{0x8E};  // of a sample, or the rest of a division
}  // namespace token

inline bool isToken(const ProgramCell &cell, Token which) {
    return cell.kind == CellKind::token && cell.token1 == which.first &&
           (!isTwoByteLead(which.first) || cell.token2 == which.second);
}
inline bool isNumber(const ProgramCell &cell) { return cell.kind == CellKind::number; }
inline bool isArray(const ProgramCell &cell) { return cell.kind == CellKind::matrix || cell.kind == CellKind::list; }

ProgramCell tokenCell(Token which);
ProgramCell numberCell(ComplexValue value);
ProgramCell arrayCell(CellKind kind, MatrixDescriptor *descriptor);

// These change a cell in place and leave its other fields standing.
inline void makeNumber(ProgramCell &cell, ComplexValue value) {
    cell.kind = CellKind::number;
    cell.value = value;
}
inline void makeArray(ProgramCell &cell, CellKind kind, MatrixDescriptor *descriptor) {
    cell.kind = kind;
    cell.matrix = descriptor;
}
inline void makeBlank(ProgramCell &cell) { cell.kind = CellKind::blank; }
// Blanks the cells from first up to end, end excluded.
inline void blankCells(ProgramCell *cells, int first, int end) {
    for (int i = first; i < end; i++) makeBlank(cells[i]);
}

// Removes every blank cell among the count cells from first; later cells move down and count falls. Nothing moves in
// from behind the stretch, and the last places of the old stretch keep copies.
void compactCells(ProgramCell *cells, int first, int &count);

// Index of the first such token among the count cells from first, or -1.
int findToken(Token which, const ProgramCell *cells, int first, int count);

// What the cell names: a variable, Ans, a view window value or a named value; null if none of these, or no token.
ComplexValue *variableRef(const ProgramCell &cell);

// The slot that the cell names: a letter that matrix, Ans the Mat Ans, any other token null. A cell that is no token
// reports Syn ERROR and gives null.
MatrixSlot *matrixSlotRef(const ProgramCell *cells, int i);

// A number (cut to an integer) gives that list of currentFile, Ans its List Ans; all else, and numbers outside 1 to
// 26, null. Whether the list exists doesn't matter.
MatrixSlot *listSlotRef(const ProgramCell *cells, int i);

}  // namespace numalink
