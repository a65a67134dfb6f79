#include "scan/BackgroundTasks.h"

#include "tests/support/ForkedProcess.h"
#include "tests/support/RefusedCalls.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <latch>
#include <mutex>

namespace velmora::test {
namespace {

TEST(BackgroundTasks, AsksEveryTaskToEndAndWaitsForIt) {
    int ended = 0;
    std::mutex lock;
    std::condition_variable_any never;
    {
        BackgroundTasks tasks;
        for (int i = 0; i < 3; ++i) {
            tasks.run([&](const std::stop_token& programEnds) {
                std::unique_lock held(lock);
                never.wait(held, programEnds, [] { return false; });
                ++ended;
            });
        }
    }
    EXPECT_EQ(ended, 3);
}

TEST(BackgroundTasks, RunTasksBesideEachOther) {
    BackgroundTasks tasks;
    std::latch together(2);
    for (int i = 0; i < 2; ++i) {
        tasks.run([&](const std::stop_token&) { together.arrive_and_wait(); });
    }
    together.wait();
    tasks.finish();
}

TEST(BackgroundTasks, AreRunAtOnceWhereThereIsNoThread) {
    inProcess([] {
        refuseThreads();
        BackgroundTasks tasks;
        int runs = 0;
        EXPECT_FALSE(tasks.start([&](const std::stop_token&) { ++runs; }));
        EXPECT_EQ(runs, 0);
        tasks.run([&](const std::stop_token&) { ++runs; });
        EXPECT_EQ(runs, 1);
    });
}

} // namespace
} // namespace velmora::test
