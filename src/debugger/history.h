// The record of a run: images of the machine now and then, and between them all that came from outside (keys, the
// clock, what a line gave), so that a state between any two statements is made again by running from the image ahead of
// it. At least the last 1,000,000 statements, in at most 64 MB; where an image is large the images are further apart.
// Run thread; while the run is stopped, the thread of the commands.
#pragma once

#include <cstdint>
#include <optional>

#include "emulator/machine/run_observer.h"

namespace numalink {

inline constexpr std::uint64_t historyStatements = 1000000;
inline constexpr std::size_t historyBytes = 64u << 20;

void historyBegin();  // the first image is taken at the next historyAt
void historyForget();
bool historyIsOn();

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

struct HistorySize {
    std::size_t images = 0, bytes = 0;
};
HistorySize historySize();

}  // namespace numalink
