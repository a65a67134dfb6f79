#pragma once

// The process velmora-libav. It loads the libraries once and forks a child for every operation that runs at
// the same time as others; a child that has done its work waits for more.

#include "measure/libav/HelperChild.h"

#include <sys/types.h>

#include <memory>
#include <mutex>
#include <vector>

namespace velmora {

/// Used by any thread, many at once.
class Helper {
public:
    /// A child that waits for work; forked, by a new helper if need be, where there is none. Null if that
    /// fails, as without the program.
    std::unique_ptr<HelperChild> take();

    /// Gives a child back that has done its work.
    void giveBack(std::unique_ptr<HelperChild> child);

private:
    std::unique_ptr<HelperChild> idleChild();
    std::unique_ptr<HelperChild> newChild() const;
    bool start();
    void end();

    std::mutex m_mutex;
    std::vector<std::unique_ptr<HelperChild>> m_idle;
    FileDescriptor m_control; ///< the helper ends when this is closed
    pid_t m_process = -1;
    int m_failedStarts = 0; ///< that came to nothing, one after the other
};

} // namespace velmora
