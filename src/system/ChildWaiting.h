#pragma once

// Waiting for a child's end, with an ear on what it says and an eye on what it may cost.

#include "system/ChildProcess.h"
#include "system/FileDescriptor.h"

#include <sys/types.h>

#include <functional>
#include <string_view>

namespace velmora {

/// The way from a child's standard error to whoever hears it.
class ErrorPipe {
public:
    /// Makes a pipe where there is somebody to hear; `hear` must outlive it.
    explicit ErrorPipe(const std::function<void(std::string_view text)>& hear);

    /// The end that the child gets; -1 without a pipe.
    int writing() const { return m_writing.get(); }

    /// The end to wait on; -1 without a pipe, and once all who could write have closed theirs.
    int reading() const { return m_reading.get(); }

    /// To be called when the child has its end.
    void closeWriting() { m_writing = FileDescriptor(); }

    /// Hands over what is in the pipe; does not wait for more.
    void drain();

private:
    const std::function<void(std::string_view text)>& m_hear;
    FileDescriptor m_reading;
    FileDescriptor m_writing;
};

/// Blocks until `child` has ended, and kills its whole session where `limits` ask for it. The child is not
/// reaped, so its process group cannot become another's while it may still be killed.
void awaitEnd(pid_t child, const ChildLimits& limits, ErrorPipe& errors);

} // namespace velmora
