// Plays a recording of tests/lines through a pseudo terminal: the real line carries every byte, and a clock that jumps
// takes the place of waiting. A recording tells what is in the library, what goes over the line in both directions, and
// what is shown, in the order in which it happens.
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
//   = 15 Programs/ABC             is in the library at the end, followed by its info or head, and data
//   gone ABC                      an item of "have" that isn't there any more
//   left 1                        entries in the queue at the end (0 unless told)
//
// BYTES are hexadecimal pairs, texts in double quotes, and both with *COUNT behind them.
#pragma once

#include <string>

namespace numalink {

enum class PlayMode {
    whole,  // what the calculator sends comes at once
    alone,  // every byte by itself
    late    // and each just before the read would give up
};

// Empty when everything went, was shown and was stored as recorded; else what differs first.
std::string playLineFile(const std::string &path, PlayMode mode);

}  // namespace numalink
