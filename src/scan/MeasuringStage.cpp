#include "scan/MeasuringStage.h"

#include <QMetaObject>

#include <algorithm>
#include <exception>
#include <utility>

namespace velmora {

MeasuringStage::MeasuringStage(FilePaths files, Measure measure, Deliver deliver)
    : m_files(std::move(files))
    , m_measure(std::move(measure))
    , m_deliver(std::move(deliver)) {}

void MeasuringStage::start(BackgroundTasks& background, MainThreadQueue& mainThread,
                           const std::stop_token& stop) {
    background.runSeveral(std::min(m_files.size(), width),
                          [self = shared_from_this(), &mainThread, stop](const std::stop_token&) {
                              self->work(mainThread, stop); // those that were started measure all files
                          });
}

Measured MeasuringStage::measured(const FilePath& file, const std::stop_token& stop) const {
    try {
        return m_measure(file, stop);
    } catch (const std::exception&) {
        return {.url = file, .why = Reason::cannotBeRead};
    }
}

void MeasuringStage::work(MainThreadQueue& mainThread, const std::stop_token& stop) {
    while (!stop.stop_requested()) {
        const std::size_t index = m_next.fetch_add(1);
        if (index >= m_files.size()) {
            return;
        }
        const FilePath file = std::move(m_files[index]); // from here on the record holds it
        handOver({index, measured(file, stop)}, mainThread);
    }
}

void MeasuringStage::handOver(MeasuredFile result, MainThreadQueue& mainThread) {
    bool first = false;
    {
        const std::lock_guard guard(m_lock);
        first = m_batches.empty() || m_batches.back().size() == maxBatch;
        if (first) {
            m_batches.emplace_back();
        }
        m_batches.back().push_back(std::move(result));
    }
    if (first) {
        mainThread.post([self = shared_from_this()] { self->m_deliver(self->takeBatch()); });
    }
}

MeasuringStage::Batch MeasuringStage::takeBatch() {
    const std::lock_guard guard(m_lock);
    Batch batch = std::move(m_batches.front());
    m_batches.pop_front();
    return batch;
}

} // namespace velmora
