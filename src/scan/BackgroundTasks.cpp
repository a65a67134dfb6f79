#include "scan/BackgroundTasks.h"

#include <utility>

namespace velmora {

BackgroundTasks::~BackgroundTasks() {
    finish();
}

void BackgroundTasks::start(Task task) {
    joinEnded();
    Running& running = m_running.emplace_back();
    running.thread = std::thread([task = std::move(task), token = m_programEnds.get_token(), &running] {
        task(token);
        running.ended = true;
    });
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
