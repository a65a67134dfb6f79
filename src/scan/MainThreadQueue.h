#pragma once

// The way from the background to the main thread: any thread posts, the main thread's event loop runs what
// was posted, in the order it was posted.

#include "system/RegularFile.h"

#include <QSocketNotifier>

#include <deque>
#include <functional>
#include <mutex>
#include <optional>

namespace velmora {

class MainThreadQueue {
public:
    using Task = std::function<void()>;

    /// Created and destroyed on the main thread. Throws std::system_error when the process has no descriptor
    /// left.
    MainThreadQueue();

    /// Hands `task` over and returns at once; it runs in one of the next turns of the event loop. Any thread.
    void post(Task task);

    /// Runs all that is waiting, without the event loop. Main thread.
    void runPending();

private:
    std::optional<Task> next();

    std::mutex m_lock; // guards m_tasks
    std::deque<Task> m_tasks;
    FileDescriptor m_wakeUp; // an eventfd, readable while tasks may be waiting
    QSocketNotifier m_notifier;
};

} // namespace velmora
