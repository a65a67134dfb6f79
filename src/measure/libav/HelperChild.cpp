#include "measure/libav/HelperChild.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <utility>
#include <vector>

namespace velmora {

namespace {

using Clock = GuardedReader::Clock;

/// Until `deadline` in milliseconds, as poll takes them.
int millisecondsUntil(Clock::time_point deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 3'600'000));
}

/// Whether there is something to receive, or the end of it, before `deadline`.
bool isReadable(int socket, Clock::time_point deadline) {
    pollfd readable{socket, POLLIN, 0};
    int ready = 0;
    do {
        ready = ::poll(&readable, 1, millisecondsUntil(deadline));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

/// What a child says is left, which is never more than a search begins with.
GuardedReader::Bounds believable(const GuardedReader::Bounds& bounds) {
    return {.budget = std::clamp<std::int64_t>(bounds.budget, -1, GuardedReader::searchBytes),
            .deadline =
                std::clamp(bounds.deadline, Clock::time_point(), Clock::now() + GuardedReader::searchTime)};
}

} // namespace

HelperChild::HelperChild(FileDescriptor socket)
    : m_socket(std::move(socket)) {
    Reply reply;
    const bool hasReported = isReadable(m_socket.get(), Clock::now() + GuardedReader::searchTime) &&
                             receiveMessage(m_socket.get(), bytesOf(reply), {}, &m_process);
    if (!hasReported || reply.kind != Reply::Kind::ready) {
        kill();
    }
}

HelperChild::~HelperChild() {
    kill();
}

bool HelperChild::isUsable() const {
    // Between two operations a child has nothing to say.
    return m_process && !isReadable(m_socket.get(), Clock::now());
}

std::optional<Reply> HelperChild::answerTo(const Request& request, int descriptor, GuardedReader* reader) {
    const std::stop_callback killAtStop(reader == nullptr ? std::stop_token() : reader->stop(), [this] {
        ::syscall(SYS_pidfd_send_signal, m_process.get(), SIGKILL, nullptr, 0);
    });
    Clock::time_point deadline = request.bounds.deadline;
    bool isHeard = sendMessage(m_socket.get(), bytesOf(request), {}, descriptor);
    while (isHeard) {
        const std::optional<Reply> reply = awaitReply(deadline + grace);
        if (!reply) {
            break;
        }
        if (reader != nullptr) {
            reader->setBounds(believable(reply->bounds));
            deadline = reader->bounds().deadline;
        }
        if (reply->kind == Reply::Kind::answer) {
            return reply;
        }
        const bool isWish = reply->kind == Reply::Kind::wantsBytes && reader != nullptr;
        isHeard = reply->kind == Reply::Kind::alive || (isWish && serve(*reply, reader->source()));
    }
    return std::nullopt;
}

std::optional<Reply> HelperChild::awaitReply(Clock::time_point deadline) {
    Reply reply;
    const bool isThere =
        isReadable(m_socket.get(), deadline) && receiveMessage(m_socket.get(), bytesOf(reply));
    return isThere ? std::optional(reply) : std::nullopt;
}

bool HelperChild::serve(const Reply& wish, const ByteSource& source) {
    if (wish.count < 0 || wish.count > maxServedBytes) {
        return false;
    }
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(wish.count));
    const std::optional<std::size_t> got = source.readAt(wish.offset, bytes);
    const ServedBytes head{got ? static_cast<std::int64_t>(*got) : -1};
    return sendMessage(m_socket.get(), bytesOf(head), std::span(bytes).first(got.value_or(0)));
}

void HelperChild::kill() {
    if (m_process) {
        ::syscall(SYS_pidfd_send_signal, m_process.get(), SIGKILL, nullptr, 0);
        m_process = FileDescriptor();
    }
    m_socket = FileDescriptor();
}

} // namespace velmora
