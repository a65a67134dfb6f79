#pragma once

// What SIGINT, SIGTERM and SIGHUP do. Where there is nothing to clean up they end the program at once; while
// an `Interrupt` lives they are told to the event loop, and the program ends in order. Either way its exit
// status is 130. A signal the caller had set to be ignored (nohup) stays ignored.

#include "system/RegularFile.h"

#include <functional>
#include <memory>

class QSocketNotifier;

namespace velmora {

/// Makes the signals end the program with exit status 130. Called once, first thing.
void endAtSignals();

/// Holds the signals back from its making to its end, in the calling thread and every thread made meanwhile.
/// One that came after `requested` was last asked is delivered at the end. Main thread; needs the
/// QCoreApplication.
class Interrupt {
public:
    /// `onSignal` is called from the event loop at each signal.
    explicit Interrupt(std::function<void()> onSignal);
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;
    ~Interrupt();

    /// Whether a signal has come.
    bool requested();

private:
    void takeSignals();

    FileDescriptor m_signals;
    std::unique_ptr<QSocketNotifier> m_notifier;
    bool m_requested = false;
};

} // namespace velmora
