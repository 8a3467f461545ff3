// Work that a worker thread has done on the graphical thread, and its refusal.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "telling/graphical_calls.h"

namespace numalink {
namespace {

TEST(GraphicalCalls, RunOnTheServingThreadAndEndWhenRefused) {
    threadRole = ThreadRole::graphical;
    int direct = 0;
    EXPECT_TRUE(graphicalRun([&] { direct++; }));
    EXPECT_EQ(direct, 1);

    std::atomic<int> served = 0;
    std::atomic<int> results = 0;  // 1 for a call that was done, 10 for one that was refused
    std::atomic<bool> noLongerServed = false;
    std::thread worker([&] {
        threadRole = ThreadRole::link;
        results += graphicalRun([&] { served += threadRole == ThreadRole::graphical; }) ? 1 : 10;
        while (!noLongerServed) std::this_thread::yield();
        results += graphicalRun([&] { served += 100; }) ? 1 : 10;
    });
    while (results == 0) graphicalCallsServe();
    noLongerServed = true;
    graphicalCallsRefuse(ThreadRole::link);
    worker.join();
    graphicalCallsServe();
    EXPECT_EQ(served, 1);
    EXPECT_EQ(results, 11);

    std::thread runner([&] {
        threadRole = ThreadRole::run;
        results += graphicalRun([] {}) ? 100 : 0;
    });
    while (results < 100) graphicalCallsServe();
    runner.join();
    graphicalCallsAccept(ThreadRole::link);
    threadRole = ThreadRole::unknown;
}

}  // namespace
}  // namespace numalink
