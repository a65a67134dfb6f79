#include "scan/BackgroundTasks.h"

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
            tasks.start([&](const std::stop_token& programEnds) {
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
        tasks.start([&](const std::stop_token&) { together.arrive_and_wait(); });
    }
    together.wait();
    tasks.finish();
}

} // namespace
} // namespace velmora::test
