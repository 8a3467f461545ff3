// The record of a run: images of the machine now and then, and between them all that came from outside (keys, the
// clock, what a line gave), so that a state between any two statements is made again by running from the image ahead of
// it. At least the last 1,000,000 statements, in at most 64 MB; where an image is large the images are further apart.
// Run thread; while the run is stopped, the thread of the commands.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "emulator/machine/run_observer.h"

namespace numalink {

inline constexpr std::uint64_t historyStatements = 1000000;
inline constexpr std::size_t historyBytes = 64u << 20;

// What is kept: nothing; as much as it takes to save the run as a moment, which is one image, a quarter of a second old
// at most, without the clock; the record for going back.
enum class HistoryMode { off, brief, full };
struct MachineImage;

void historyKeep(HistoryMode mode);  // what is kept already goes on to be, as far as the mode wants it
void historyForget();
HistoryMode historyMode();
inline bool historyIsOn() { return historyMode() != HistoryMode::off; }

// Ahead of a statement that hasn't run before: takes an image when one is due. The result is the count of statements at
// which it wants to be called again.
std::uint64_t historyAt(std::uint64_t statement);

// From outside: what was recorded, as long as there is more of it, else what the function gives, which is recorded.
int historyWaitKey(RunEnd where);
int historyGetKey();
std::uint64_t historyTicks();
LineOutcome historyLine(const std::function<LineOutcome()> &exchange);
bool historyHasInput();  // there is more of it

std::uint64_t historyOldest();  // the first statement that can be gone back to

// What is recorded from here on is forgotten. hasChanged: the machine isn't as the run left it; an image is taken here
// (betweenStatements), or ahead of the next statement.
void historyCut(std::uint64_t statement, bool hasChanged, bool betweenStatements);

// The number of the last image at or ahead of a statement, and its statement. Numbers fall when images go.
std::size_t historyImageAt(std::uint64_t statement);
std::uint64_t historyStatementOf(std::size_t image);
// Machine, calls and what comes from outside are as at that image; false when the calls can't be made.
bool historyBringBack(std::size_t image);
// A statement behind this one ahead of which the machine was changed by hand: a run that is made again has to take the
// image there. Nothing where there is none.
std::optional<std::uint64_t> historyNextChange(std::uint64_t statement);

// What came from outside, alike ones in a row once.
template <class Value>
struct RepeatedInput {
    Value value{};
    std::uint64_t count = 0;
};
struct RecordedInputs {
    std::vector<RepeatedInput<int>> waits, getKeys;
    std::vector<RepeatedInput<LineOutcome>> lines;
};

// The last image at or ahead of a statement, and what came from outside from there up to where the run stands (isWhole:
// up to the record's end). Null where there is none.
const MachineImage *historyImageFor(std::uint64_t statement);
RecordedInputs historyInputsFor(std::uint64_t statement, bool isWhole);
// A record that begins where the run stands, between two statements, with inputs that are still to come.
void historyBeginWith(const RecordedInputs &inputs, HistoryMode mode);

struct HistorySize {
    std::size_t images = 0, bytes = 0;
};
HistorySize historySize();  // of the record for going back

}  // namespace numalink
