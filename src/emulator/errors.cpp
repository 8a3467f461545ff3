// The five reports as one table of wordings.
#include "emulator/errors.h"

#include "emulator/text_screen.h"

namespace numalink {

namespace {

constexpr int errorColumn = 6;

void report(const char *text) {
    putText(errorColumn, textRowCount, text, pixelColor::blue);
    machine.errorFlag = true;
    if (machine.errorTrace != nullptr) machine.errorTrace->push_back({text, machine.statementsRun});
}

}  // namespace

void synError() { report("Syn ERROR"); }
void dimError() { report("Dim ERROR"); }
void argError() { report("Arg  ERROR"); }
void goError() { report("Go  ERROR"); }
void maError() { report("Ma  ERROR"); }

}  // namespace numalink
