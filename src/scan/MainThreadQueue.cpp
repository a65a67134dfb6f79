#include "scan/MainThreadQueue.h"

#include <sys/eventfd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

int openWakeUp() {
    const int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    return descriptor;
}

} // namespace

MainThreadQueue::MainThreadQueue()
    : m_wakeUp(openWakeUp())
    , m_notifier(m_wakeUp.get(), QSocketNotifier::Read) {
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { runTurn(); });
}

void MainThreadQueue::post(Task task) {
    {
        const std::lock_guard guard(m_lock);
        m_tasks.push_back(std::move(task));
    }
    wakeUp();
}

void MainThreadQueue::wakeUp() {
    ::eventfd_write(m_wakeUp.get(), 1);
}

void MainThreadQueue::runTurn() {
    const auto end = std::chrono::steady_clock::now() + turn;
    eventfd_t count = 0;
    ::eventfd_read(m_wakeUp.get(), &count);
    while (const std::optional<Task> task = next()) {
        (*task)();
        if (std::chrono::steady_clock::now() >= end) {
            wakeUp(); // for what is left
            return;
        }
    }
}

void MainThreadQueue::runPending() {
    eventfd_t count = 0;
    ::eventfd_read(m_wakeUp.get(), &count);
    while (const std::optional<Task> task = next()) {
        (*task)();
    }
}

std::optional<MainThreadQueue::Task> MainThreadQueue::next() {
    const std::lock_guard guard(m_lock);
    if (m_tasks.empty()) {
        return std::nullopt;
    }
    std::optional<Task> task(std::move(m_tasks.front()));
    m_tasks.pop_front();
    return task;
}

} // namespace velmora
