#include "scan/MeasuringStage.h"

#include <QMetaObject>

#include <algorithm>
#include <exception>
#include <utility>

namespace velmora {

MeasuringStage::MeasuringStage(FilePaths files, Measure measure, ReadAhead readAhead, Deliver deliver)
    : m_measure(std::move(measure))
    , m_readAhead(std::move(readAhead))
    , m_deliver(std::move(deliver))
    , m_files(std::move(files)) {}

void MeasuringStage::start(BackgroundTasks& background, MainThreadQueue& mainThread,
                           const std::stop_token& stop) {
    const std::size_t count = m_files.size();
    background.runSeveral(std::min(count, width),
                          [self = shared_from_this(), &mainThread, stop](const std::stop_token&) {
                              self->work(mainThread, stop); // those that were started measure all files
                          });
    if (count > width && m_readAhead) {
        for (std::size_t i = 0; i < lookAheadThreads; ++i) {
            // Without a further thread it goes without.
            static_cast<void>(background.start(
                [self = shared_from_this(), stop](const std::stop_token&) { self->lookAhead(stop); }));
        }
    }
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
        std::optional<Taken> next = take();
        if (!next) {
            return;
        }
        handOver({next->index, measured(next->file, stop)}, mainThread);
    }
}

/// The next file; none after the last.
std::optional<MeasuringStage::Taken> MeasuringStage::take() {
    const std::lock_guard guard(m_filesLock);
    if (m_next == m_files.size()) {
        return std::nullopt;
    }
    const std::size_t index = m_next++;
    if (m_next == m_files.size()) {
        m_wasTaken.notify_all();
    } else if (m_next + window > m_asked) {
        m_wasTaken.notify_one();
    }
    return Taken{index, std::move(m_files[index])}; // from here on the record holds the path
}

void MeasuringStage::lookAhead(const std::stop_token& stop) {
    try {
        while (true) {
            const FilePaths files = upcoming(stop);
            if (files.empty()) {
                return;
            }
            m_readAhead.ask(files, stop);
        }
    } catch (const std::exception&) { // for want of memory: the workers read for themselves
    }
}

/// Waits until the workers have come near what was not asked for. None once they have taken all, or when
/// `stop` is requested.
FilePaths MeasuringStage::upcoming(const std::stop_token& stop) {
    std::unique_lock lock(m_filesLock);
    const bool isWanted = m_wasTaken.wait(lock, stop, [this] {
        return m_next == m_files.size() || (m_asked < m_files.size() && m_next + window > m_asked);
    });
    if (!isWanted) {
        return {};
    }
    const std::size_t first = std::max(m_next, m_asked);
    m_asked = std::min(first + window, m_files.size());
    const auto begin = m_files.begin();
    return {begin + static_cast<std::ptrdiff_t>(first), begin + static_cast<std::ptrdiff_t>(m_asked)};
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
