// The readable recordings of tests/lines: what is in the library, what goes over the line in both directions, and what
// is shown, in the order in which it happens.
//
//   # a comment
//   type cfx                      or algebra
//   removecolour                  the setting is on
//   have 15 ABC                   an item of this kind; temp ahead of the kind puts it into the temporary folder
//   info 20 ABC PASS              its first payload, as a ProgramInfo; or
//   head BYTES                    byte for byte
//   data BYTES
//   queue ABC   delete ABC        ahead of the conversation
//   begin                         the user starts the transmission; also later, while the line is read
//   answer yes                    no, cancel, ok: to the next questions
//   slot 3                        to the questions for a picture's slot
//   > BYTES                       we send
//   < BYTES                       the calculator sends; << when it is to be dropped
//   ~                             it stays silent: a read gives up
//   tick                          a second passes, and the timer tests the deadline
//   cut                           the line is gone
//   break                         from here on the disk takes nothing
//   ! status 1                    is shown, also: box 43 2, ask, slot, tree
//   = Programs/ABC 15             is in the library at the end, followed by its info or head, and data
//   gone ABC                      an item of "have" that isn't there any more
//   left 1                        entries in the queue at the end (0 unless told)
//
// BYTES are hexadecimal pairs, texts in double quotes, and both with *COUNT behind them.
#pragma once

#include <string>
#include <vector>

#include "calculator/program_info.h"
#include "platform/bytes.h"
#include "store/item_store.h"

namespace numalink {

struct ScriptItem {
    std::string path;  // or name
    ItemKind kind = 0;
    bool inTemp = false;
    Bytes head;
    Bytes data;
};

enum class EventSort { sent, received, dropped, silence, shown, tick, cut, begin, breakDisk };

struct ScriptEvent {
    EventSort sort;
    Bytes bytes;
    std::string text;
    int lineNumber;
};

struct LineScript {
    std::string name;
    bool algebra = false;
    bool removeColour = false;
    std::vector<ScriptItem> have;
    std::vector<ScriptItem> expected;
    std::vector<std::string> queue;
    std::vector<std::string> deleted;
    std::vector<std::string> gone;
    std::vector<std::string> answers;
    int slot = 0;
    std::size_t left = 0;
    std::vector<ScriptEvent> events;
    std::string fault;  // of the file itself
};

LineScript readLineScript(const std::string &path);
std::vector<std::string> lineScriptPaths();  // all of tests/lines, sorted

}  // namespace numalink
