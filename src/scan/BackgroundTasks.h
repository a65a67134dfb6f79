#pragma once

// The threads a scan model has started: they may outlive the scan they were started for, never the model.

#include <atomic>
#include <cstddef>
#include <functional>
#include <list>
#include <stop_token>
#include <thread>

namespace velmora {

/// Used on the main thread alone.
class BackgroundTasks {
public:
    using Task = std::function<void(const std::stop_token& programEnds)>;

    BackgroundTasks() = default;
    BackgroundTasks(const BackgroundTasks&) = delete;
    BackgroundTasks& operator=(const BackgroundTasks&) = delete;
    ~BackgroundTasks();

    /// Runs `task` on a thread of its own and returns true; false when the system has no further thread. The
    /// token it gets is requested only by `finish`.
    [[nodiscard]] bool start(Task task);

    /// As `start`; where there is no further thread, runs `task` before it returns.
    void run(const Task& task);

    /// Runs `task` on `count` threads, on fewer where the system has no further one; where it has none, runs
    /// it once before it returns.
    void runSeveral(std::size_t count, const Task& task);

    /// Asks every task to end and waits until it has. No task may be started afterwards.
    void finish();

private:
    struct Running {
        std::thread thread;
        std::atomic<bool> ended = false;
    };

    void joinEnded();

    std::stop_source m_programEnds;
    std::list<Running> m_running;
};

} // namespace velmora
