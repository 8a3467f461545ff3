// Expressions in exchange words on a machine of their own, and their results as text.
#pragma once

#include <string>
#include <vector>

#include "emulator/machine/cells.h"
#include "platform/bytes.h"

namespace numalink {

// A fresh machine with the program folder's tokens, at full speed and running; reports are kept as a trace.
struct FreshMachine {
    FreshMachine();
    ~FreshMachine();
    FreshMachine(const FreshMachine &) = delete;
    FreshMachine &operator=(const FreshMachine &) = delete;

    std::vector<ErrorReport> reports;
};

// A program's image; \x{F77B} among the words stands for raw bytes.
Bytes imageOfWords(const std::string &words);
std::string digitsOf(double value);  // 12 of them

// What is left of the cells, one blank between: 3, 1+2i, <89> for a token, {1,2} for a list, [1,2][3,4] for a matrix;
// numbers with 12 digits.
std::string textOfCells(const ProgramCell *cells, int count);
// So behind an expression, with "!Syn" for each sort of report; on a machine of its own, with A = 5, B = 2+3i, Mat A
// [1,2][3,4], Mat B [5][6] List 1 {4,5,6}, List 2 {7,8,9} and the key 47 held.
std::string evaluated(const std::string &words);

}  // namespace numalink
