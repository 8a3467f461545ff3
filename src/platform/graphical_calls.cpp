#include "platform/graphical_calls.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace numalink {

namespace {

struct GraphicalRequest {
    GraphicalWork work;
    void *arguments;
    bool started = false;
    bool done = false;
};

std::mutex requestMutex;
std::condition_variable requestChanged;
std::deque<GraphicalRequest *> waitingRequests;
std::array<bool, threadRoleCount> refused;
int served = 0;  // requests in work, one within the other; graphical thread only

bool &refusedFor(ThreadRole role) { return refused[static_cast<std::size_t>(role)]; }

void setRefused(ThreadRole caller, bool value) {
    const std::lock_guard held(requestMutex);
    refusedFor(caller) = value;
    requestChanged.notify_all();
}

}  // namespace

void (*graphicalWake)() = [] {};

bool graphicalCall(GraphicalWork work, void *arguments) {
    if (threadRole == ThreadRole::graphical) {
        work(arguments);
        return true;
    }
    GraphicalRequest request{work, arguments};
    std::unique_lock held(requestMutex);
    if (refusedFor(threadRole)) return false;
    waitingRequests.push_back(&request);
    held.unlock();
    graphicalWake();
    held.lock();
    requestChanged.wait(held, [&] { return request.done || (refusedFor(threadRole) && !request.started); });
    if (!request.started) std::erase(waitingRequests, &request);
    return request.done;
}

void graphicalCallsServe() {
    std::unique_lock held(requestMutex);
    while (!waitingRequests.empty()) {
        GraphicalRequest &request = *waitingRequests.front();
        waitingRequests.pop_front();
        request.started = true;
        held.unlock();
        served++;
        request.work(request.arguments);
        served--;
        held.lock();
        request.done = true;
        requestChanged.notify_all();
    }
}

bool graphicalCallsBusy() { return served > 0; }

void graphicalCallsRefuse(ThreadRole caller) { setRefused(caller, true); }
void graphicalCallsAccept(ThreadRole caller) { setRefused(caller, false); }

}  // namespace numalink
