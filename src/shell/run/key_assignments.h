// Which key of the keyboard is which of the calculator: the usual ones, and over them what the user has assigned, which
// the settings keep. One table for keys, names and pictures. Graphical thread only.
#pragma once

#include <QStringList>
#include <vector>

class QKeyEvent;

namespace numalink {

// A key of the keyboard as the table has it: Qt's number, alike on and off the number pad, a letter by its place where
// the layout has none, and the key left of 1 whatever it writes. 0: none.
using BoardKey = int;
BoardKey boardKeyOf(const QKeyEvent &event);
bool isAssignable(BoardKey key);  // not those by which a run is stopped, menus and commands are reached
QString boardKeyName(BoardKey key);

inline constexpr int fastKey = 100;  // beside the codes of the calculator: the run is fast while it is held

struct Assignment {
    BoardKey key = 0;
    int code = 0;  // of the calculator, or fastKey; 0: nothing
    friend bool operator==(const Assignment &, const Assignment &) = default;
};
using Assignments = std::vector<Assignment>;  // what differs from the usual ones; a key once
inline constexpr std::size_t assignmentLimit = 54;

int codeOfKey(BoardKey key, const Assignments &assigned);  // 0: none
// The names of those that are a key of the calculator, assigned ones ahead; with those that stop a run.
QStringList namesOfCode(int code, const Assignments &assigned);

// False at the limit, with nothing changed. Code 0: the key is nothing then.
bool assign(Assignments &assigned, BoardKey key, int code);
bool takeKeysAway(Assignments &assigned, int code);  // false at the limit; some may have gone
void resetKeysOf(Assignments &assigned, int code);   // the usual ones, and no other

// As they count now. What the settings hold that is no assignment is passed over.
const Assignments &assignments();
void loadAssignments();
bool storeAssignments(const Assignments &assigned);  // false, with nothing changed, when they don't fit the settings

}  // namespace numalink
