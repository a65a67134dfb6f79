#include "scan/MainThreadQueue.h"

#include "tests/scan/ScanModelFixture.h"

#include <QTimer>

#include <chrono>
#include <functional>
#include <thread>

namespace velmora::test {
namespace {

class MainThreadQueueTest : public ScanModelTest {};

TEST_F(MainThreadQueueTest, RunsWhatAnyThreadPostsInItsOrderOnTheMainThread) {
    MainThreadQueue queue;
    std::vector<int> ran;
    bool onMainThread = true;
    const std::thread::id main = std::this_thread::get_id();
    std::jthread poster([&] {
        for (int i = 0; i < 1000; ++i) {
            queue.post([&, i] {
                ran.push_back(i);
                onMainThread = onMainThread && std::this_thread::get_id() == main;
            });
        }
    });
    awaitThat([&] { return ran.size() == 1000; });
    EXPECT_TRUE(onMainThread);
    EXPECT_TRUE(std::is_sorted(ran.begin(), ran.end()));
}

TEST_F(MainThreadQueueTest, KeepsTheOrderWhenATaskRunsTheEventLoop) {
    MainThreadQueue queue;
    std::vector<int> ran;
    queue.post([&] {
        ran.push_back(1);
        queue.post([&] { ran.push_back(3); });
        QCoreApplication::processEvents();
    });
    queue.post([&] { ran.push_back(2); });
    awaitThat([&] { return ran.size() == 3; });
    EXPECT_EQ(ran, (std::vector<int>{1, 2, 3}));
}

TEST_F(MainThreadQueueTest, LetsTheEventLoopRestWhenNothingIsLeft) {
    MainThreadQueue queue;
    int ran = 0;
    queue.post([&] { ++ran; });
    queue.post([&] { ++ran; });
    awaitThat([&] { return ran == 2; });
    bool rests = false;
    for (int turn = 0; turn < 100 && !rests; ++turn) { // the first may have other things to do
        rests = !QEventLoop().processEvents();
    }
    EXPECT_TRUE(rests);
}

TEST_F(MainThreadQueueTest, RunsNothingBeforeTheEventLoopHasItsTurn) {
    MainThreadQueue queue;
    bool ran = false;
    queue.post([&] { ran = true; });
    EXPECT_FALSE(ran);
    queue.runPending();
    EXPECT_TRUE(ran);
}

TEST_F(MainThreadQueueTest, LetsOtherEventsHaveTheirTurnWhileTasksAreWaiting) {
    MainThreadQueue queue;
    constexpr int tasks = 100;
    int ran = 0;
    int ranBeforeTimer = tasks;
    for (int i = 0; i < tasks; ++i) {
        queue.post([&] {
            ++ran;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        });
    }
    QTimer::singleShot(0, [&] { ranBeforeTimer = ran; });
    awaitThat([&] { return ran == tasks; });
    EXPECT_LT(ranBeforeTimer, tasks / 2);
}

TEST_F(MainThreadQueueTest, LetsOtherEventsHaveTheirTurnWhileEachTaskPostsAnother) {
    MainThreadQueue queue;
    bool timer = false;
    std::function<void()> again = [&] {
        if (!timer) {
            queue.post(again);
        }
    };
    queue.post(again);
    QTimer::singleShot(0, [&] { timer = true; });
    awaitThat([&] { return timer; });
}

} // namespace
} // namespace velmora::test
