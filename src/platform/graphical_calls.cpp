#include "platform/graphical_calls.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <deque>
#include <map>
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
std::map<GraphicalQuestion, std::optional<int>> openQuestions;
std::deque<std::function<void()>> laterWork;  // nobody waits for it
GraphicalQuestion lastQuestion = 0;

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

namespace {

// One that nobody waits for, if there is one. Called with requestMutex held.
bool runLaterWork(std::unique_lock<std::mutex> &held) {
    if (laterWork.empty()) return false;
    const std::function<void()> work = std::move(laterWork.front());
    laterWork.pop_front();
    held.unlock();
    work();
    held.lock();
    return true;
}

}  // namespace

void graphicalCallsServe() {
    std::unique_lock held(requestMutex);
    while (runLaterWork(held) || !waitingRequests.empty()) {
        if (waitingRequests.empty()) continue;
        GraphicalRequest &request = *waitingRequests.front();
        waitingRequests.pop_front();
        request.started = true;
        held.unlock();
        request.work(request.arguments);
        held.lock();
        request.done = true;
        requestChanged.notify_all();
    }
}

std::optional<int> graphicalAsk(std::function<void(GraphicalQuestion)> open,
                                std::function<void(GraphicalQuestion)> close) {
    std::unique_lock held(requestMutex);
    const GraphicalQuestion question = ++lastQuestion;
    openQuestions.emplace(question, std::nullopt);
    held.unlock();
    const bool opened = graphicalRun([&] { open(question); });
    held.lock();
    std::optional<int> &answer = openQuestions.at(question);
    requestChanged.wait(held, [&] { return !opened || answer || refusedFor(threadRole); });
    const std::optional<int> result = answer;
    openQuestions.erase(question);
    if (!opened || result) return result;
    laterWork.push_back([close = std::move(close), question] { close(question); });
    held.unlock();
    graphicalWake();
    return std::nullopt;
}

void graphicalAnswer(GraphicalQuestion question, int answer) {
    const std::lock_guard held(requestMutex);
    const auto found = openQuestions.find(question);
    if (found != openQuestions.end()) found->second = answer;
    requestChanged.notify_all();
}

void graphicalCallsRefuse(ThreadRole caller) { setRefused(caller, true); }
void graphicalCallsAccept(ThreadRole caller) { setRefused(caller, false); }

}  // namespace numalink
