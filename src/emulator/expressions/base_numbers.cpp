// Digits in base 2, 8 or 16. A program holds its digits as numbers of base ten, with their count, so that they can be
// read again in the base that counts when they are met.
#include <cmath>

#include "emulator/expressions/evaluator_steps.h"
#include "emulator/expressions/recording.h"
#include "emulator/machine/errors.h"

namespace numalink {

namespace {

constexpr std::uint8_t firstLetterDigit = 0x1A, lastLetterDigit = 0x1F;
constexpr int digitLimit = 16;  // so many digits a number of base ten holds without loss

int baseToldBy(const ProgramCell &cell) {
    if (isToken(cell, {0x84})) return 16;
    if (isToken(cell, {0x94})) return decimalBase;
    if (isToken(cell, {0xA4})) return 8;
    return isToken(cell, {0xB4}) ? 2 : 0;
}

bool isLetterDigit(const ProgramCell &cell) {
    return cell.kind == CellKind::token && cell.token1 >= firstLetterDigit && cell.token1 <= lastLetterDigit;
}

// A result may lie in a cell that held digits: it is none, as what isn't finite or has more places shows.
bool isDigits(const ProgramCell &cell) {
    if (isLetterDigit(cell)) return true;
    if (!isNumber(cell) || cell.stringLength == 0) return false;
    return cell.stringLength > digitLimit || (cell.value.re >= 0 && cell.value.re < std::pow(10.0, cell.stringLength));
}

// A number that grows digit by digit. Beyond 32 bits, and with a digit that the base doesn't have, it is none.
struct Growing {
    int base = decimalBase;
    std::uint64_t value = 0;
    bool fits = true, hasForeignDigit = false;

    void take(int digit) {
        hasForeignDigit = hasForeignDigit || digit >= base;
        value = value * static_cast<std::uint64_t>(base) + static_cast<std::uint64_t>(digit);
        fits = fits && value <= (base == decimalBase ? 0x7FFFFFFFu : base == 2 ? 0xFFFFu : 0xFFFFFFFFu);
        value &= 0xFFFFFFFFu;
    }
    void take(const ProgramCell &cell) {
        if (isLetterDigit(cell)) return take(cell.token1 - firstLetterDigit + 10);
        if (cell.stringLength > digitLimit) {
            fits = false;
            return;
        }
        double rest = cell.value.re;
        for (int place = cell.stringLength - 1; place >= 0; place--) {
            const double power = std::pow(10.0, place);
            const double digit = std::floor(rest / power);
            rest -= digit * power;
            take(static_cast<int>(digit));
        }
    }
    // The highest bit is the sign: of 16 in base 2, else of 32.
    double result() const { return base == 2 ? static_cast<std::int16_t>(value) : static_cast<std::int32_t>(value); }
};

// The digits from first to end, end excluded, become the number at p; all behind it go.
void readDigits(Stretch &stretch, int p, int first, int end, int base) {
    Growing number{.base = base};
    for (int i = first; i < end; i++) number.take(stretch.cells[i]);
    if (number.hasForeignDigit) {
        synError();
    } else if (!number.fits) {
        maError();
    }
    makeNumber(stretch.cells[p], complexReal(number.result()));
    stretch.cells[p].stringLength = 0;
    blankCells(stretch.cells, p + 1, end);
    stretch.compact();
}

}  // namespace

ComplexValue heldToBase(ComplexValue result) {
    const double limit = machine.numberBase == 2 ? 32768.0 : 2147483648.0;
    const double whole = std::trunc(result.re);
    if (!(whole >= -limit && whole < limit)) maError();
    return complexReal(whole);
}

void readBaseNumbers(Stretch &stretch) {
    for (int p = stretch.first; p < stretch.end(); p++) {
        const int told = baseToldBy(stretch.cells[p]);
        const int base = told != 0 ? told : machine.numberBase;
        const int first = told != 0 ? p + 1 : p;
        int end = first;
        while (end < stretch.end() && isDigits(stretch.cells[end])) end++;
        if (end == first || (told == 0 && base == decimalBase)) continue;
        if (refusesRecording()) return;
        readDigits(stretch, p, first, end, base);
    }
}

}  // namespace numalink
