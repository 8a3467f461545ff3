// The five reports. Each writes its text in blue at column 6 of row 8 of the text screen, which brings that screen up,
// and sets errorFlag. Nothing unwinds: the caller goes on. Run thread.
#pragma once

namespace numalink {

void synError();  // a shape that doesn't fit
void dimError();  // an array that doesn't exist, or of another size
void argError();  // an element outside its array, a wrong operand of Goto or Seq(
void goError();   // a label or a program that isn't there
void maError();   // a complex element where a real one is needed

}  // namespace numalink
