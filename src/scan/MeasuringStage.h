#pragma once

// The second stage of a scan: measures files six at a time. Workers take the next file from one counter, so
// files are started in scan order and no worker ever waits for the main thread; results travel there in
// batches, each as large as the main thread is busy, up to a bound that leaves it time for other things.
// Two threads more ask for what the workers will read next; they never wait for it.

#include "records/Records.h"
#include "scan/BackgroundTasks.h"
#include "scan/MainThreadQueue.h"
#include "scan/ReadAhead.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <vector>

namespace velmora {

/// The record of `files[index]`.
struct MeasuredFile {
    std::size_t index = 0;
    Measured measured;
};

class MeasuringStage : public std::enable_shared_from_this<MeasuringStage> {
public:
    using Batch = std::vector<MeasuredFile>;
    using Measure = std::function<Measured(const FilePath& file, const std::stop_token& stop)>;
    using Deliver = std::function<void(Batch batch)>;

    /// Files measured at the same time: the bound on open files and child processes.
    static constexpr std::size_t width = 6;

    /// The largest number of results in a batch.
    static constexpr std::size_t maxBatch = 256;

    /// Threads that ask: on a network one alone would look up fewer files than the workers measure.
    static constexpr std::size_t lookAheadThreads = 2;

    /// Files that are asked for at a time: when fewer than this are left of those that were asked for before.
    static constexpr std::size_t window = 64;

    /// `measure` is called on the workers; where it throws, for want of memory, its file stays unmeasured.
    /// `deliver` is called on the main thread with results in the order of their completion.
    /// `readAhead` is called on threads of its own.
    MeasuringStage(FilePaths files, Measure measure, ReadAhead readAhead, Deliver deliver);

    /// Starts the workers, fewer where the system has no further thread; where it has none, measures before
    /// it returns. They hold the stage until the last file is measured or `stop` is requested: then no
    /// further file is started, and measurements under way are told to end. Results are handed over by
    /// `mainThread`, which outlives the workers; what it has not run goes with it.
    void start(BackgroundTasks& background, MainThreadQueue& mainThread, const std::stop_token& stop);

private:
    struct Taken {
        std::size_t index = 0;
        FilePath file;
    };

    Measured measured(const FilePath& file, const std::stop_token& stop) const;
    void work(MainThreadQueue& mainThread, const std::stop_token& stop);
    std::optional<Taken> take();
    void lookAhead(const std::stop_token& stop);
    FilePaths upcoming(const std::stop_token& stop);
    void handOver(MeasuredFile result, MainThreadQueue& mainThread);
    Batch takeBatch();

    const Measure m_measure;
    const ReadAhead m_readAhead;
    const Deliver m_deliver;

    std::mutex m_filesLock;                 // guards the following
    FilePaths m_files;                      // each taken by the one worker that measures it
    std::size_t m_next = 0;                 // the first that is not taken
    std::size_t m_asked = 0;                // the first that was not looked at ahead
    std::condition_variable_any m_wasTaken; // a file, and there is something to ask for or nothing more

    std::mutex m_lock;           // guards m_batches
    std::deque<Batch> m_batches; // a hand-over is under way for each; all but the last are full
};

} // namespace velmora
