// The reports. Each is shown, sets errorFlag and is kept in the trace. Nothing unwinds: the caller goes on. Run
// thread.
#pragma once

#include <string_view>

namespace numalink {

void synError();  // a shape that doesn't fit
void dimError();  // an array that doesn't exist, or of another size
void argError();  // an element outside its array, a wrong operand of Goto or Seq(
void goError();   // a label or a program that isn't there
void comError();  // nothing answers on the line, or not as it should
void maError();   // a result that is none, or a complex element where a real one is needed

const char *reportNamed(std::string_view text);  // the report of this wording, for errorText; "" where there is none

// Not null while an expression is only being translated, or evaluated beside the run: a report then counts there, and
// does nothing else but that the first one's text is kept.
extern int *reportsCounted;
extern const char *firstCounted;

// How a report gets on the screen, which lies above this room: machineStart puts it in. Null shows nothing.
extern void (*errorShown)(const char *text);

}  // namespace numalink
