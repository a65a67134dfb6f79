#pragma once

// One child of velmora-libav, as the program sees it: it does one operation after the other, and may crash,
// hang or lie in any of them.

#include "measure/libav/Messages.h"

#include <chrono>

namespace velmora {

class HelperChild {
public:
    /// The child at the other end of `socket`, which is waited for. Not usable if it does not report.
    explicit HelperChild(FileDescriptor socket);

    /// Kills the child.
    ~HelperChild();
    HelperChild(const HelperChild&) = delete;
    HelperChild& operator=(const HelperChild&) = delete;

    /// False once the child has failed or ended, and before it has reported.
    bool isUsable() const;

    /// What the child answers to `request` with `descriptor`. `reader`, unless null, pays for what the child
    /// reads, gives the bytes that it asks for, and goes on with what the child leaves of its bounds. Absent
    /// when it crashes, says nothing until `grace` after its deadline, talks nonsense, or `reader` is
    /// stopped; the child is not to be used again then.
    std::optional<Reply> answerTo(const Request& request, int descriptor, GuardedReader* reader);

    static constexpr std::chrono::seconds grace{2};

private:
    std::optional<Reply> awaitReply(GuardedReader::Clock::time_point deadline);
    bool serve(const Reply& wish, const ByteSource& source);
    void kill();

    FileDescriptor m_socket;
    FileDescriptor m_process;
};

} // namespace velmora
