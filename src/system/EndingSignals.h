#pragma once

// SIGINT, SIGTERM and SIGHUP: the signals that ask a program to end. A signal that the caller set to be
// ignored (nohup) stays ignored everywhere here.

#include "system/FileDescriptor.h"

#include <array>
#include <csignal>

namespace velmora {

inline constexpr std::array<int, 3> endingSignals = {SIGINT, SIGTERM, SIGHUP};

/// Calls `handler` at each of the signals from now on, with the `flags` of sigaction(2). What `handler` may
/// do is in signal-safety(7).
void handleEndingSignals(void (*handler)(int), int flags = 0);

/// Catches the signals while it lives, so that the program can end in order. They are caught rather than
/// blocked, because a program that a library starts for us, such as a browser, would inherit a block. One
/// object at a time; any thread.
class EndingSignals {
public:
    /// Throws std::system_error when the process has no descriptor left.
    EndingSignals();
    EndingSignals(const EndingSignals&) = delete;
    EndingSignals& operator=(const EndingSignals&) = delete;

    /// The signals do again what they did before. One that was not taken is raised again, so none is lost.
    ~EndingSignals();

    /// For poll and event loops: readable from a signal until it is taken.
    int descriptor() const { return m_caught.get(); }

    /// Whether a signal has come since this was last asked.
    bool take();

private:
    FileDescriptor m_caught; // an eventfd
    std::array<struct sigaction, endingSignals.size()> m_earlier{};
};

} // namespace velmora
