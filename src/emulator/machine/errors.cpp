// The reports as one table of wordings.
#include "emulator/machine/errors.h"

#include "emulator/machine/machine.h"

namespace numalink {

void (*errorShown)(const char *text) = nullptr;
int *reportsCounted = nullptr;

namespace {

void report(const char *text) {
    if (reportsCounted != nullptr) {
        ++*reportsCounted;
        return;
    }
    if (errorShown != nullptr) errorShown(text);
    if (!machine.errorFlag) machine.errorText = text;
    machine.errorFlag = true;
    if (machine.errorTrace != nullptr) machine.errorTrace->push_back({text, machine.statementsRun});
}

}  // namespace

void synError() { report("Syn ERROR"); }
void dimError() { report("Dim ERROR"); }
void argError() { report("Arg  ERROR"); }
void goError() { report("Go  ERROR"); }
void maError() { report("Ma  ERROR"); }
void comError() { report("Com ERROR"); }

}  // namespace numalink
