// The same programs for our emulator and for the interpreters that Debian has. Each ends with one number in X, which
// the rivals print and ours leaves: by it all are seen to have done the same.
#pragma once

#include <span>
#include <string>

namespace numalink {

enum Rival { yabasic, bwbasic, brandy, python3, lua, rivalCount };
inline constexpr const char *rivalNames[] = {"yabasic", "bwbasic", "brandy", "python3", "lua5.4"};

// In all texts # stands for the number of passes. A text of null: it can't say the same.
struct Contest {
    const char *name;
    const char *words;       // ours, in exchange words
    const char *subprogram;  // what it calls as SUB
    int passes;
    const char *basic;   // for the three BASICs, whose lines get numbers
    int basicPasses[3];  // each takes some tenths of a second
    const char *python;
    const char *luaText;
    int scriptPasses;
};

std::span<const Contest> contests();

// Seconds of the processor that the rival takes for so many passes, its start included; below 0 when it isn't there,
// can't say it, or came to another result than expected.
double rivalSeconds(const Contest &contest, Rival rival, int passes, double expected);
int rivalPasses(const Contest &contest, Rival rival);

// So far, of this process or of those that it has waited for.
double processorSeconds(int whose);

}  // namespace numalink
