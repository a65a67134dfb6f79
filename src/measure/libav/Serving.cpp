#include "measure/libav/Serving.h"

#include "measure/libav/DirectLibav.h"
#include "measure/libav/Messages.h"
#include "measure/libav/Wall.h"

#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <utility>

namespace velmora {

namespace {

using Clock = GuardedReader::Clock;

/// How often the program is told that a search goes on.
constexpr std::chrono::seconds reportEvery{1};

/// One request, and the answer to it.
class Work {
public:
    Work(int socket, const Request& request, FileDescriptor file)
        : m_socket(socket)
        , m_request(request)
        , m_hasFile(file)
        , m_file(std::move(file), request.size)
        , m_reader(source(), {}) {
        m_reader.setBounds(request.bounds);
    }

    Reply answer() {
        const DirectLibav libav;
        const std::string text(m_request.text.data(), m_request.textBytes);
        m_reply = {.kind = Reply::Kind::answer};
        switch (m_request.operation) {
        case Request::Operation::duration:
            putTiming(m_reply, libav.duration(m_reader, m_request.start, text, m_request.doubt));
            break;
        case Request::Operation::probe:
            putDemuxer(m_reply, libav.probe(m_reader, m_request.start, text));
            break;
        case Request::Operation::decodedSamples:
            m_reply.count = decodedSamples(libav, text);
            break;
        }
        m_reply.kind = Reply::Kind::answer;
        m_reply.bounds = m_reader.bounds();
        return m_reply;
    }

private:
    using Buffer = std::span<std::uint8_t>;

    ByteSource source() {
        return {m_request.size, [this](std::int64_t offset, Buffer buffer) {
                    return m_hasFile ? readFile(offset, buffer) : askForBytes(offset, buffer);
                }};
    }

    std::optional<std::size_t> readFile(std::int64_t offset, Buffer buffer) {
        report();
        const std::optional<std::size_t> got = m_file.readAt(offset, buffer);
        m_reply.bytesRead += static_cast<std::int64_t>(got.value_or(0));
        if (!got && offset >= 0) {
            m_reply.hasReadFailed = 1;
        }
        return got;
    }

    void report() {
        if (Clock::now() > m_lastReport + reportEvery) {
            const Reply alive{.kind = Reply::Kind::alive, .bounds = m_reader.bounds()};
            sendMessage(m_socket, bytesOf(alive));
            m_lastReport = Clock::now();
        }
    }

    std::optional<std::size_t> askForBytes(std::int64_t offset, Buffer buffer) {
        std::size_t filled = 0;
        while (filled < buffer.size()) {
            const auto at = static_cast<std::int64_t>(filled);
            const auto count = std::min<std::int64_t>(maxServedBytes, std::ssize(buffer) - at);
            const Reply wish{.kind = Reply::Kind::wantsBytes,
                             .bounds = m_reader.bounds(),
                             .offset = offset + at,
                             .count = count};
            ServedBytes served;
            const Buffer place = buffer.subspan(filled, static_cast<std::size_t>(count));
            const bool isServed =
                sendMessage(m_socket, bytesOf(wish)) && receiveMessage(m_socket, bytesOf(served), place);
            if (!isServed || served.count < 0) {
                return std::nullopt;
            }
            filled += static_cast<std::size_t>(served.count);
            if (served.count < count) {
                break;
            }
        }
        return filled;
    }

    std::int64_t decodedSamples(const DirectLibav& libav, const std::string& decoder) const {
        std::vector<std::uint8_t> packet(static_cast<std::size_t>(m_request.size));
        const bool isThere = m_file.readAt(0, packet) == packet.size();
        const std::span description(m_request.description);
        return isThere ? libav.decodedSamples(decoder.c_str(), description.first(m_request.descriptionBytes),
                                              packet)
                       : 0;
    }

    int m_socket;
    const Request& m_request;
    bool m_hasFile;
    RegularFile m_file;
    GuardedReader m_reader;
    Reply m_reply;
    Clock::time_point m_lastReport = Clock::now();
};

/// The descriptor by which the program kills this process.
FileDescriptor ownProcess() {
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, ::getpid(), 0)));
}

} // namespace

void serve(const FileDescriptor& socket) {
    const MemoryLimit memory;
    FileDescriptor process = ownProcess();
    const Reply ready{.kind = Reply::Kind::ready};
    if (!process || !memory.stands() || !filterCalls() ||
        !sendMessage(socket.get(), bytesOf(ready), {}, process.get())) {
        return;
    }
    process = FileDescriptor();
    for (bool isLast = false; !isLast;) {
        Request request;
        FileDescriptor file;
        if (!receiveMessage(socket.get(), bytesOf(request), {}, &file)) {
            return;
        }
        Reply reply = Work(socket.get(), request, std::move(file)).answer();
        isLast = memory.isUsed();
        reply.isLast = isLast ? 1 : 0;
        sendMessage(socket.get(), bytesOf(reply));
    }
}

} // namespace velmora
