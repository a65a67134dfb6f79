#include "measure/libav/Helper.h"

#include "system/ChildProcess.h"

#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

namespace velmora {

namespace {

constexpr const char* helperProgram = "velmora-libav";

/// A helper that so often in a row came to nothing is not started again.
constexpr int maxFailedStarts = 3;

/// Two ends of one connection; none if the system refuses.
std::pair<FileDescriptor, FileDescriptor> connectedSockets() {
    std::array<int, 2> ends = {-1, -1};
    ::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data());
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

} // namespace

std::unique_ptr<HelperChild> Helper::take() {
    const std::scoped_lock lock(m_mutex);
    if (std::unique_ptr<HelperChild> child = idleChild()) {
        return child;
    }
    while (m_failedStarts < maxFailedStarts && (m_control || start())) {
        if (std::unique_ptr<HelperChild> child = newChild()) {
            m_failedStarts = 0;
            return child;
        }
        end();
        ++m_failedStarts;
    }
    return nullptr;
}

void Helper::giveBack(std::unique_ptr<HelperChild> child) {
    const std::scoped_lock lock(m_mutex);
    m_idle.push_back(std::move(child));
}

std::unique_ptr<HelperChild> Helper::idleChild() {
    while (!m_idle.empty()) {
        std::unique_ptr<HelperChild> child = std::move(m_idle.back());
        m_idle.pop_back();
        if (child->isUsable()) {
            return child;
        }
    }
    return nullptr;
}

std::unique_ptr<HelperChild> Helper::newChild() const {
    auto [ours, theirs] = connectedSockets();
    constexpr std::array<std::uint8_t, 1> wish{};
    if (!ours || !sendMessage(m_control.get(), wish, {}, theirs.get())) {
        return nullptr;
    }
    theirs = FileDescriptor(); // so that the child's end is noticed
    auto child = std::make_unique<HelperChild>(std::move(ours));
    return child->isUsable() ? std::move(child) : nullptr;
}

bool Helper::start() {
    const auto program = privateProgram(helperProgram);
    auto [ours, theirs] = connectedSockets();
    const auto process = program && ours ? startChild(*program, {}, theirs.get()) : std::nullopt;
    if (!process) {
        return false;
    }
    m_process = *process;
    m_control = std::move(ours);
    return true;
}

void Helper::end() {
    m_control = FileDescriptor();
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        while (::waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) {
        }
        m_process = -1;
    }
}

} // namespace velmora
