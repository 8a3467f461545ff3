// A moment: a run as it stands, as bytes that another process, also on another machine, goes on from. The form is
// described in docs/moment_format.md. Reading and writing know nothing of a run that is on: any thread, but that rows
// of the MatrixTable are named by their place.
#pragma once

#include <optional>
#include <string>

#include "debugger/history.h"
#include "debugger/machine_image.h"
#include "platform/bytes.h"

namespace numalink {

inline constexpr std::uint64_t momentFileLimit = 8u << 20;  // bytes, of the file and of what is packed in it

// A program that the run can come to, the one that was started first.
struct MomentProgram {
    std::string name;          // calculator codes
    std::uint64_t digest = 0;  // as LoadedProgram has it
    friend bool operator==(const MomentProgram &, const MomentProgram &) = default;
};

// A program in progress, the first one ahead.
struct MomentCall {
    int program = 0;  // place in the moment's programs
    CallPlace place;  // its program and left.stringCells mean nothing
    // Where the text stands that left shows, if it is one: place of the program, and the cell.
    int textProgram = 0, textCell = 0;
};

struct Moment {
    std::vector<MomentProgram> programs;
    std::uint64_t time = 0;       // seconds since 1970
    std::uint64_t statement = 0;  // statements that were over; state may be an earlier one
    RunEnd waitsAt = RunEnd::running;
    Surface picture;  // what was on display
    MachineState state;
    std::vector<MomentCall> calls;
    RecordedInputs inputs;  // from state on
};

enum class MomentFault { none, foreign, newer, damaged, changed };  // changed: the programs aren't those of the moment

// None when it holds more than a moment may.
std::optional<Bytes> momentAsBytes(Moment moment);
// Whatever the bytes are, what is read is sound: no index leads outside of anything.
MomentFault momentFromBytes(ByteView bytes, Moment &moment);

}  // namespace numalink
