// The five reports as one table of wordings.
#include "emulator/errors.h"

#include "emulator/display.h"
#include "emulator/text_screen.h"

namespace numalink {

namespace {

constexpr int errorColumn = 6;

// The last report on the screen, and what the screen was then. The same again leaves it as it is: a faulty expression
// may report hundreds of times, and drawing a text takes longer than evaluating one.
struct ShownReport {
    const char *text = nullptr;
    PixelColor rowColor = 0;
    std::uint64_t screenChanges = 0;
    friend bool operator==(const ShownReport &, const ShownReport &) = default;
};
ShownReport shown;  // run thread

void show(const char *text) {
    const PixelColor rowColor = machine.rowColor[textRowCount - 1];
    if (shown == ShownReport{text, rowColor, textScreenChanges()}) return setScreenMode(textMode);
    putText(errorColumn, textRowCount, text, pixelColor::blue);
    shown = {text, rowColor, textScreenChanges()};
}

void report(const char *text) {
    show(text);
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

}  // namespace numalink
