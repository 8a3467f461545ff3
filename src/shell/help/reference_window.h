// The reference of the language: every token by topic or by letter, with its meaning, an example, its keys on the
// calculator and what the emulator makes of it; it can be put into the program on view. Graphical thread only.
#pragma once

namespace numalink {

// Opens at the token at the caret of a program on view, else at the first of the list, or where it was left.
void showReference();

}  // namespace numalink
