#include "scan/BackgroundTasks.h"

#include <system_error>
#include <utility>

namespace velmora {

BackgroundTasks::~BackgroundTasks() {
    finish();
}

bool BackgroundTasks::start(Task task) {
    joinEnded();
    Running& running = m_running.emplace_back();
    try {
        running.thread = std::thread([task = std::move(task), token = m_programEnds.get_token(), &running] {
            task(token);
            running.ended = true;
        });
    } catch (const std::system_error&) { // too many threads, or no room for a stack
        m_running.pop_back();
        return false;
    }
    return true;
}

void BackgroundTasks::run(const Task& task) {
    if (!start(task)) {
        task(m_programEnds.get_token());
    }
}

void BackgroundTasks::runSeveral(std::size_t count, const Task& task) {
    for (std::size_t i = 0; i < count; ++i) {
        if (i == 0) {
            run(task);
        } else if (!start(task)) {
            return;
        }
    }
}

void BackgroundTasks::finish() {
    m_programEnds.request_stop();
    for (Running& running : m_running) {
        running.thread.join();
    }
    m_running.clear();
}

void BackgroundTasks::joinEnded() {
    m_running.remove_if([](Running& running) {
        if (!running.ended) {
            return false;
        }
        running.thread.join();
        return true;
    });
}

} // namespace velmora
