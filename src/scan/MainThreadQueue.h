#pragma once

// The way from the background to the main thread: any thread posts, the main thread's event loop runs what
// was posted, in the order it was posted. However much is posted, input and frames have their turn in
// between.
//
// Qt's own way, QMetaObject::invokeMethod with Qt::QueuedConnection, does the same. It was measured and is
// not used for two reasons. Six threads that post in batches hand over 44 to 47 million results a second
// here, 35 to 42 million there; one by one 0.38 to 0.45 million here, 0.29 to 0.31 million there
// (bench/native/Micro.cpp, two busy cores). And the thread sanitizer cannot follow Qt's queue, since Qt is
// not compiled with it: it takes every hand-over for a race, and real ones would be lost among those.

#include "system/FileDescriptor.h"

#include <QSocketNotifier>

#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>

namespace velmora {

class MainThreadQueue {
public:
    using Task = std::function<void()>;

    /// Once this much time has passed in one turn of the event loop, no further task is begun in it: half a
    /// frame.
    static constexpr std::chrono::milliseconds turn{8};

    /// Created and destroyed on the main thread. Throws std::system_error when the process has no descriptor
    /// left.
    MainThreadQueue();

    /// Hands `task` over and returns at once; it runs in one of the next turns of the event loop. Any thread.
    void post(Task task);

    /// Runs all that is waiting, without the event loop. Main thread.
    void runPending();

private:
    void runTurn();
    std::optional<Task> next();
    void wakeUp();

    std::mutex m_lock; // guards m_tasks
    std::deque<Task> m_tasks;
    FileDescriptor m_wakeUp; // an eventfd, readable while tasks may be waiting
    QSocketNotifier m_notifier;
};

} // namespace velmora
