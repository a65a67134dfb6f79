#pragma once

// The one observable object behind the window and the terminal program. It owns the state of the current
// scan: starts it, runs it as gathering and measuring in the background, publishes its progress and, at the
// end, its summary.

#include "records/Records.h"
#include "records/Unpacking.h"
#include "scan/ReadAhead.h"
#include "scan/ScanDetails.h"
#include "scan/ZipState.h"
#include "system/Paths.h"

#include <QObject>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace velmora {

class BackgroundTasks;
class MainThreadQueue;
struct MeasuredFile;

/// The two stages of a scan. Both run on background threads, `measure` on six at once, and end early when
/// their stop token is requested. What is asked for ahead of measuring changes no result; by default nothing
/// is. The default of a model is the real work; a test holds and releases stages of its own.
struct ScanStages {
    std::function<GatherResult(const PathList& dropped, const std::stop_token& stop,
                               const Unpacking& unpacking)>
        gather;
    std::function<Measured(const FilePath& file, const std::stop_token& stop)> measure;
    ReadAhead readAhead = {};

    static ScanStages real();
};

/// All operations are called on the main thread, and every signal is emitted there. Every assignment to a
/// published field is announced, also one of an equal value.
class ScanModel : public QObject {
    Q_OBJECT

public:
    enum class Phase : std::uint8_t {
        idle,     ///< nothing dropped yet, or reset
        scanning, ///< gathering or measuring
        done,     ///< at least one file was measured; the summary is complete
        empty,    ///< no audio file was found, or none could be measured
    };
    Q_ENUM(Phase)

    /// Sweeps what earlier runs left in the temporary directory.
    explicit ScanModel(ScanStages stages = ScanStages::real(), QObject* parent = nullptr);

    /// Stops whatever runs in the background, waits for it and deletes its temporary directories.
    ~ScanModel() override;

    /// Starts a scan of `dropped` in place of any running one and returns at once. No paths: nothing changes.
    void ingest(PathList dropped);

    /// Cancels any running scan, forgets its result and returns to `idle`.
    void reset();

    /// Packs the measured files into a zip archive in the background; `zipState` tells how it goes. Nothing
    /// measured: nothing changes.
    void makeZip(const std::filesystem::path& destination);

    /// Why `destination` must not become a zip archive; absent when it may. A source of the scan, under this
    /// or another name, would be lost, and what is named as audio would count in the next scan.
    std::optional<std::string> objectionToZip(const std::filesystem::path& destination) const;

    Phase phase() const { return m_phase; }

    const ScanSummary& summary() const { return m_summary; }

    /// Files measured so far, published after every fourth file and after the last.
    int processed() const { return m_processed; }

    /// Audio files found by the running scan.
    int found() const { return m_found; }

    /// From 0 to 1; 0 while nothing was found.
    double progress() const;

    const std::string& status() const { return m_status; }

    /// The name of the archive that is being unpacked, as bytes; empty while none is.
    const std::string& unpacking() const { return m_unpacking; }

    const ZipState& zipState() const { return m_zipState; }

    const ScanDetails& details() const { return *m_details; }

    /// The same for whoever goes on reading them, in any thread, when the next scan begins. They change until
    /// the phase is `done` or `empty`, and never again.
    std::shared_ptr<const ScanDetails> sharedDetails() const { return m_details; }

    /// The total in two lines, without a final line feed; divided by `speed`, which is positive.
    std::string totalText(double speed = 1) const;

    /// The names of the measured files in scan order, a line each, without a final line feed.
    std::string fileListText() const;

    /// The name to propose for the zip archive.
    std::string suggestedZipName() const;

    /// The folder to propose for it: that of the first dropped item. Absent when nothing was dropped.
    std::optional<std::filesystem::path> suggestedZipDirectory() const;

signals:
    void phaseChanged(velmora::ScanModel::Phase phase);
    void summaryChanged();
    void processedChanged(int processed);
    void foundChanged(int found);
    void statusChanged(const std::string& status);
    void unpackingChanged();
    void zipStateChanged();

private:
    class Job;

    void cancelJob();
    void releaseTemporaries();
    void takeGathered(const std::shared_ptr<Job>& job, GatherResult gathered);
    void startMeasuring(const std::shared_ptr<Job>& job, FilePaths files);
    void takeMeasured(const std::shared_ptr<Job>& job, std::vector<MeasuredFile> batch);
    void sumUp(const std::shared_ptr<Job>& job);
    void finish(Job& job, ScanSummary summary);
    void forgetDetails();

    void publishPhase(Phase phase);
    void publishSummary(ScanSummary summary);
    void publishProcessed(int processed);
    void publishFound(int found);
    void publishStatus(std::string status);
    void publishUnpacking(std::string archive);
    void publishZipState(ZipState state);

    ScanStages m_stages;
    Phase m_phase = Phase::idle;
    ScanSummary m_summary;
    int m_processed = 0;
    int m_found = 0;
    std::string m_status;
    std::string m_unpacking;
    ZipState m_zipState;
    std::shared_ptr<ScanDetails> m_details = std::make_shared<ScanDetails>();
    std::shared_ptr<Job> m_job;

    std::unique_ptr<MainThreadQueue> m_mainThread;
    std::unique_ptr<BackgroundTasks> m_background; // last: its threads end before anything they use goes
};

} // namespace velmora
