// The reports as one table of wordings.
#include "emulator/machine/errors.h"

#include "emulator/machine/machine.h"
#include "emulator/machine/run_observer.h"

namespace numalink {

void (*errorShown)(const char *text) = nullptr;
int *reportsCounted = nullptr;
const char *firstCounted = "";

namespace {

void report(const char *text) {
    if (reportsCounted != nullptr) {
        if (++*reportsCounted == 1) firstCounted = text;
        return;
    }
    if (errorShown != nullptr) errorShown(text);
    if (!machine.errorFlag) machine.errorText = text;
    machine.errorFlag = true;
    if (machine.errorTrace != nullptr) machine.errorTrace->push_back({text, machine.statementsRun});
    if (const RunObserver *observer = observing()) observer->reported(text);
}

constexpr const char *syn = "Syn ERROR", *dim = "Dim ERROR", *arg = "Arg  ERROR", *go = "Go  ERROR", *ma = "Ma  ERROR",
                     *com = "Com ERROR";

}  // namespace

void synError() { report(syn); }
void dimError() { report(dim); }
void argError() { report(arg); }
void goError() { report(go); }
void maError() { report(ma); }
void comError() { report(com); }

const char *reportNamed(std::string_view text) {
    for (const char *each : {syn, dim, arg, go, ma, com}) {
        if (text == each) return each;
    }
    return "";
}

}  // namespace numalink
