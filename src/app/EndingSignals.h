#pragma once

// What SIGINT, SIGTERM and SIGHUP do, as when the session ends: the window goes as if it had been closed,
// with running tools and temporary files. A signal the caller had set to be ignored (nohup) stays ignored.

#include "system/RegularFile.h"

#include <memory>

class QSocketNotifier;

namespace velmora {

/// One at a time; main thread, after the application object. The signals are caught rather than blocked:
/// programs that Qt starts for us, such as a browser, would inherit a block.
class EndingSignals {
public:
    EndingSignals();
    EndingSignals(const EndingSignals&) = delete;
    EndingSignals& operator=(const EndingSignals&) = delete;
    ~EndingSignals();

private:
    FileDescriptor m_caught;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace velmora
