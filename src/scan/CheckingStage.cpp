#include "scan/CheckingStage.h"

#include "measure/check/Check.h"
#include "scan/MeasuringStage.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

namespace velmora {

CheckingStage::CheckingStage(const std::vector<Measured>& files, std::function<void()> moved)
    : m_files(files)
    , m_moved(std::move(moved))
    , m_results(files.size()) {
    for (const Measured& file : files) {
        m_bytesTotal += file.bytes;
    }
    m_background.runSeveral(std::min(files.size(), MeasuringStage::width),
                            [this](const std::stop_token& stop) { work(stop); });
}

void CheckingStage::work(const std::stop_token& stop) {
    while (!stop.stop_requested()) {
        const std::size_t index = m_next.fetch_add(1);
        if (index >= m_files.size()) {
            return;
        }
        check(index, stop);
        ++m_done;
        tell();
    }
}

void CheckingStage::check(std::size_t index, const std::stop_token& stop) {
    std::int64_t left = m_files[index].bytes; // some bytes are read twice, and a file may have grown
    const auto note = [&](std::int64_t bytes) {
        const std::int64_t counted = std::min(bytes, left);
        left -= counted;
        m_bytesRead += counted;
        tell();
    };
    try {
        m_results[index] = checkFile(m_files[index].url, stop, note);
    } catch (const std::bad_alloc&) {
        m_results[index] = {.findings = {}, .error = ENOMEM};
    }
    note(left);
}

void CheckingStage::tell() {
    if (!m_isTold.exchange(true)) {
        m_mainThread.post([this] {
            m_isTold = false;
            m_moved();
        });
    }
}

} // namespace velmora
