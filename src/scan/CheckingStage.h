#pragma once

// Checks the files of a scan that has ended, six at once: each is read from one end to the other, so this
// takes as long as reading all of them.

#include "records/Finding.h"
#include "records/Records.h"
#include "scan/BackgroundTasks.h"
#include "scan/MainThreadQueue.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <stop_token>
#include <vector>

namespace velmora {

/// Main thread.
class CheckingStage {
public:
    /// Starts checking `files`, which must outlive the stage, where they lie. `moved` is called on the main
    /// thread whenever some more of them was read, and last when all was.
    CheckingStage(const std::vector<Measured>& files, std::function<void()> moved);

    /// Stops what is under way and waits for it.
    ~CheckingStage() = default;

    CheckingStage(const CheckingStage&) = delete;
    CheckingStage& operator=(const CheckingStage&) = delete;

    bool hasEnded() const { return m_done == m_files.size(); }

    /// Of all files together.
    std::int64_t bytesRead() const { return m_bytesRead; }

    std::int64_t bytesTotal() const { return m_bytesTotal; }

    /// What each file came to, by its position. Complete once the stage has ended.
    const std::vector<Checked>& results() const { return m_results; }

private:
    void work(const std::stop_token& stop);
    void check(std::size_t index, const std::stop_token& stop);
    void tell();

    const std::vector<Measured>& m_files;
    const std::function<void()> m_moved;
    std::int64_t m_bytesTotal = 0;
    std::vector<Checked> m_results; // each written by the one worker that checks it
    std::atomic<std::size_t> m_next = 0;
    std::atomic<std::size_t> m_done = 0;
    std::atomic<std::int64_t> m_bytesRead = 0;
    std::atomic<bool> m_isTold = false; // a call of `moved` is on its way
    MainThreadQueue m_mainThread;
    BackgroundTasks m_background; // last: its threads end before anything they use goes
};

} // namespace velmora
