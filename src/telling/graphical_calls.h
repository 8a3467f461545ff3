// How a worker thread has something done on the graphical thread, and how such a wait can be refused,
// so that stopping and joining the worker never stands still.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/thread_role.h"

namespace numalink {

using GraphicalWork = void (*)(void *arguments);

// Runs work on the graphical thread and returns when it is done; at once when called there.
// False, with nothing run, when calls from this sort of thread are refused. Any thread.
bool graphicalCall(GraphicalWork work, void *arguments);

void graphicalCallsRefuse(ThreadRole caller);  // ends its waits, ahead of joining that thread
void graphicalCallsAccept(ThreadRole caller);
void graphicalCallsServe();  // graphical thread: runs all that waits; the shell calls it when woken

// A question of a worker that waits for a person. open runs on the graphical thread and returns at once, with a window
// left open that later calls graphicalAnswer with the number it was given. Unlike a call that has started, the wait
// ends when calls are refused, even while the window is open: then the result is nothing, and close runs on the
// graphical thread as soon as it serves. So a worker can be joined from inside the window's own event loop.
// Both are kept beyond the call: they must hold what they use by value.
using GraphicalQuestion = std::uint64_t;
std::optional<int> graphicalAsk(std::function<void(GraphicalQuestion)> open,
                                std::function<void(GraphicalQuestion)> close);
void graphicalAnswer(GraphicalQuestion question, int answer);  // graphical thread; a question that is over is ignored

// Called on the worker's thread when work has been queued. Set once, before a worker starts.
extern void (*graphicalWake)();

// The same for a callable: graphicalRun([&] { ... }).
template <typename Work>
bool graphicalRun(Work work) {
    return graphicalCall([](void *arguments) { (*static_cast<Work *>(arguments))(); }, &work);
}

}  // namespace numalink
