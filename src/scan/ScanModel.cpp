#include "scan/ScanModel.h"

#include "export/Zipper.h"
#include "gather/Gathering.h"
#include "measure/MeasurementPipeline.h"
#include "measure/ReadingAhead.h"
#include "records/Summary.h"
#include "scan/BackgroundTasks.h"
#include "scan/MainThreadQueue.h"
#include "scan/MeasuringStage.h"
#include "system/FileName.h"
#include "system/Paths.h"
#include "system/TempRegistry.h"
#include "system/UnicodeCase.h"

#include <malloc.h>

#include <algorithm>
#include <utility>

namespace velmora {

namespace {

/// The count of measured files is published after this many files.
constexpr int processedStep = 4;

/// About how often the count of packed files is published in all.
constexpr int zipUpdates = 50;

std::string sourceLabel(const PathList& dropped) {
    return upperCased(dropped.size() == 1 ? lastComponent(dropped.front())
                                          : std::to_string(dropped.size()) + " items");
}

/// The count of packed files is published after this many files.
int zipStep(int total) {
    return total < zipUpdates ? 1 : total / zipUpdates;
}

} // namespace

/// One scan under way. Lives on the main thread; a cancelled one lives on until its background work has
/// ended.
class ScanModel::Job {
public:
    std::stop_source cancelled;    ///< also tells measurements under way to end
    bool ended = false;            ///< nothing that still arrives counts
    GatherResult gathered;         ///< without its files, which the measuring stage has
    std::vector<Measured> results; ///< by position in scan order
    int done = 0;
};

ScanStages ScanStages::real() {
    return {&Collector::gather, &Collector::measure, {&Collector::worthAskingFor, &Collector::readAhead}};
}

ScanModel::ScanModel(ScanStages stages, QObject* parent)
    : QObject(parent)
    , m_stages(std::move(stages))
    , m_mainThread(std::make_unique<MainThreadQueue>())
    , m_background(std::make_unique<BackgroundTasks>()) {
    TempRegistry::sweepStale();
}

ScanModel::~ScanModel() {
    blockSignals(true);
    cancelJob();
    m_background->finish();
    m_mainThread->runPending(); // registers what gathering still unpacked
    TempRegistry::releaseAll();
}

void ScanModel::ingest(PathList dropped) {
    if (dropped.empty()) {
        return;
    }
    cancelJob();
    releaseTemporaries();

    publishPhase(Phase::scanning);
    forgetDetails();
    publishSummary({});
    ScanSummary summary;
    summary.dropped = dropped;
    publishSummary(std::move(summary));
    publishProcessed(0);
    publishFound(0);
    publishZipState(ZipIdle{});
    publishStatus("READING SOURCE");
    summary = m_summary;
    summary.source = sourceLabel(summary.dropped);
    publishSummary(std::move(summary));

    m_job = std::make_shared<Job>();
    m_background->run([this, job = m_job, dropped = std::move(dropped)](const std::stop_token& programEnds) {
        const auto unpacking = [this, job](const std::filesystem::path& archive) {
            m_mainThread->post([this, job, name = lastComponent(archive)] {
                if (!job->cancelled.stop_requested()) {
                    publishUnpacking(name);
                }
            });
        };
        GatherResult gathered = m_stages.gather(dropped, programEnds, unpacking);
        job->results.resize(gathered.files.size()); // here, for it takes a while
        m_mainThread->post([this, job, gathered = std::move(gathered)]() mutable {
            takeGathered(job, std::move(gathered));
        });
    });
}

void ScanModel::takeGathered(const std::shared_ptr<Job>& job, GatherResult gathered) {
    TempRegistry::add(gathered.temps); // also of a cancelled scan, so that a later release deletes them
    if (job->cancelled.stop_requested()) {
        return;
    }
    FilePaths files = std::exchange(gathered.files, {});
    job->gathered = std::move(gathered);
    m_details->skippedArchives = job->gathered.skippedArchives;
    m_details->unreadableFolders = job->gathered.unreadableFolders;
    for (std::size_t i = 0; i < job->gathered.temps.size(); ++i) {
        m_details->archiveOf.emplace(job->gathered.temps[i], job->gathered.archives[i]);
    }
    publishFound(static_cast<int>(files.size()));
    if (files.empty()) {
        ScanSummary summary = m_summary;
        summary.unreadable = static_cast<int>(job->gathered.skippedArchives.size());
        publishSummary(std::move(summary));
        publishPhase(Phase::empty);
        publishStatus("NO AUDIO FOUND");
        return;
    }
    publishStatus("MEASURING");
    startMeasuring(job, std::move(files));
}

void ScanModel::startMeasuring(const std::shared_ptr<Job>& job, FilePaths files) {
    const auto stage = std::make_shared<MeasuringStage>(
        std::move(files), m_stages.measure, m_stages.readAhead,
        [this, job](MeasuringStage::Batch batch) { takeMeasured(job, std::move(batch)); });
    stage->start(*m_background, *m_mainThread, job->cancelled.get_token());
}

void ScanModel::takeMeasured(const std::shared_ptr<Job>& job, std::vector<MeasuredFile> batch) {
    const int total = static_cast<int>(job->results.size());
    for (MeasuredFile& result : batch) {
        if (job->ended) {
            return;
        }
        job->results[result.index] = std::move(result.measured);
        job->done += 1;
        if (job->done % processedStep == 0 || job->done == total) {
            publishProcessed(job->done);
        }
        // Cancellation is looked at after the count was published: one stray count of a cancelled scan may
        // follow.
        job->ended = job->cancelled.stop_requested();
        if (!job->ended && job->done == total) {
            job->ended = true;
            sumUp(job);
        }
    }
}

/// In the background: many files take a while.
void ScanModel::sumUp(const std::shared_ptr<Job>& job) {
    m_background->run([this, job](const std::stop_token&) {
        m_mainThread->post([this, job, summary = summarize(job->results)]() mutable {
            if (!job->cancelled.stop_requested()) {
                finish(*job, std::move(summary));
            }
        });
    });
}

void ScanModel::finish(Job& job, ScanSummary summary) {
    summary.unreadable += static_cast<int>(job.gathered.skippedArchives.size());
    m_details->files = std::move(job.results);

    const bool nothing = summary.fileCount <= 0;
    publishProcessed(m_found);
    summary.source = std::move(m_summary.source);
    summary.dropped = m_summary.dropped;
    summary.roots = summary.dropped.with(job.gathered.temps);
    publishSummary(std::move(summary));
    publishPhase(nothing ? Phase::empty : Phase::done);
    publishStatus(nothing ? "NO READABLE AUDIO" : "COMPLETE");
}

void ScanModel::reset() {
    cancelJob();
    releaseTemporaries();
    publishPhase(Phase::idle);
    forgetDetails();
    publishSummary({});
    publishProcessed(0);
    publishFound(0);
    publishStatus("");
    publishZipState(ZipIdle{});
}

/// In the background: to free the memory of many files takes a while. Whoever shares the details drops them
/// when the phase changes, before this.
void ScanModel::forgetDetails() {
    const auto details = std::make_shared<std::shared_ptr<const ScanDetails>>(
        std::exchange(m_details, std::make_shared<ScanDetails>()));
    if (!(*details)->files.empty()) {
        m_background->run([details](const std::stop_token&) {
            details->reset();
            ::malloc_trim(0); // what was freed goes back to the system
        });
    }
}

void ScanModel::cancelJob() {
    if (m_job) {
        m_job->cancelled.request_stop();
        m_job.reset();
        publishUnpacking({}); // what is still unpacked is no longer waited for
    }
}

/// In the background: a large archive takes a while to delete.
void ScanModel::releaseTemporaries() {
    if (const std::function<void()> deleteAll = TempRegistry::release()) {
        m_background->run([deleteAll](const std::stop_token&) { deleteAll(); });
    }
}

void ScanModel::makeZip(const std::filesystem::path& destination) {
    if (m_summary.files.empty()) {
        return;
    }
    const int total = static_cast<int>(m_summary.files.size());
    publishZipState(ZipWorking{0, total});
    const auto publishLater = [this](ZipState state) {
        m_mainThread->post([this, state = std::move(state)] { publishZipState(state); });
    };
    m_background->run(
        [=, files = m_summary.files, roots = m_summary.roots](const std::stop_token& programEnds) {
            const auto progress = [&](int done, int of) {
                if (done == of || done % zipStep(of) == 0) {
                    publishLater(ZipWorking{done, of});
                }
            };
            try {
                Zipper::zip(files.paths(), roots.paths(), destination, progress, programEnds);
                publishLater(ZipDone{destination});
            } catch (const std::exception& error) {
                publishLater(ZipFailed{Zipper::description(error)});
            }
        });
}

double ScanModel::progress() const {
    return m_found < 1 ? 0.0 : std::min(static_cast<double>(m_processed) / m_found, 1.0);
}

void ScanModel::publishPhase(Phase phase) {
    m_phase = phase;
    emit phaseChanged(phase);
}

void ScanModel::publishSummary(ScanSummary summary) {
    m_summary = std::move(summary);
    emit summaryChanged();
}

void ScanModel::publishProcessed(int processed) {
    m_processed = processed;
    emit processedChanged(processed);
}

void ScanModel::publishFound(int found) {
    m_found = found;
    emit foundChanged(found);
}

void ScanModel::publishStatus(std::string status) {
    m_status = std::move(status);
    emit statusChanged(m_status);
}

void ScanModel::publishUnpacking(std::string archive) {
    m_unpacking = std::move(archive);
    emit unpackingChanged();
}

void ScanModel::publishZipState(ZipState state) {
    m_zipState = std::move(state);
    emit zipStateChanged();
}

} // namespace velmora
