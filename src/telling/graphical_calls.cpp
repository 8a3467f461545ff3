#include "telling/graphical_calls.h"

#include <algorithm>
#include <array>
#include <deque>
#include <map>

#include "platform/lock.h"

namespace numalink {

namespace {

Lock requestLock;
Signal requestChanged GUARDED_BY(requestLock);

struct GraphicalRequest {
    GraphicalWork work = nullptr;
    void *arguments = nullptr;
    bool started GUARDED_BY(requestLock) = false;
    bool done GUARDED_BY(requestLock) = false;
};

std::deque<GraphicalRequest *> waitingRequests GUARDED_BY(requestLock);
std::array<bool, threadRoleCount> refused GUARDED_BY(requestLock);
std::map<GraphicalQuestion, std::optional<int>> openQuestions GUARDED_BY(requestLock);
std::deque<std::function<void()>> laterWork GUARDED_BY(requestLock);  // nobody waits for it
GraphicalQuestion lastQuestion GUARDED_BY(requestLock) = 0;

bool &refusedFor(ThreadRole role) REQUIRES_LOCK(requestLock) { return refused[static_cast<std::size_t>(role)]; }

void setRefused(ThreadRole caller, bool value) {
    const HoldLock hold(requestLock);
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
    HoldLock hold(requestLock);
    if (refusedFor(threadRole)) return false;
    waitingRequests.push_back(&request);
    {
        const PauseLock pause(requestLock);
        graphicalWake();
    }
    while (!request.done && (request.started || !refusedFor(threadRole))) hold.wait(requestChanged);
    if (!request.started) std::erase(waitingRequests, &request);
    return request.done;
}

namespace {

// One that nobody waits for, if there is one.
bool runLaterWork() REQUIRES_LOCK(requestLock) {
    if (laterWork.empty()) return false;
    const std::function<void()> work = std::move(laterWork.front());
    laterWork.pop_front();
    const PauseLock pause(requestLock);
    work();
    return true;
}

}  // namespace

void graphicalCallsServe() {
    const HoldLock hold(requestLock);
    while (runLaterWork() || !waitingRequests.empty()) {
        if (waitingRequests.empty()) continue;
        GraphicalRequest &request = *waitingRequests.front();
        waitingRequests.pop_front();
        request.started = true;
        {
            const PauseLock pause(requestLock);
            request.work(request.arguments);
        }
        request.done = true;
        requestChanged.notify_all();
    }
}

std::optional<int> graphicalAsk(std::function<void(GraphicalQuestion)> open,
                                std::function<void(GraphicalQuestion)> close) {
    HoldLock hold(requestLock);
    const GraphicalQuestion question = ++lastQuestion;
    openQuestions.emplace(question, std::nullopt);
    bool opened = false;
    {
        const PauseLock pause(requestLock);
        opened = graphicalRun([&] { open(question); });
    }
    const std::optional<int> &answer = openQuestions.at(question);
    while (opened && !answer && !refusedFor(threadRole)) hold.wait(requestChanged);
    const std::optional<int> result = answer;
    openQuestions.erase(question);
    if (!opened || result) return result;
    laterWork.push_back([close = std::move(close), question] { close(question); });
    const PauseLock pause(requestLock);
    graphicalWake();
    return std::nullopt;
}

void graphicalAnswer(GraphicalQuestion question, int answer) {
    const HoldLock hold(requestLock);
    const auto found = openQuestions.find(question);
    if (found != openQuestions.end()) found->second = answer;
    requestChanged.notify_all();
}

void graphicalCallsRefuse(ThreadRole caller) { setRefused(caller, true); }
void graphicalCallsAccept(ThreadRole caller) { setRefused(caller, false); }

}  // namespace numalink
