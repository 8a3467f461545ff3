// The reference of the language: every token by topic or by letter, with its meaning, an example, its keys on the
// calculator and what the emulator makes of it; it can be put into the program on view. Graphical thread only.
#pragma once

namespace numalink {

void showReference();

}  // namespace numalink
