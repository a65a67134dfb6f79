#include "system/EndingSignals.h"

#include <sys/eventfd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <system_error>

namespace velmora {

namespace {

std::atomic<int> caughtDescriptor = -1;
std::atomic<int> lastSignal = 0;

extern "C" void noteSignal(int signal) {
    const int error = errno;
    lastSignal = signal;
    ::eventfd_write(caughtDescriptor, 1);
    errno = error;
}

} // namespace

void handleEndingSignals(void (*handler)(int), int flags) {
    struct sigaction wanted {};

    wanted.sa_handler = handler;
    wanted.sa_flags = flags;
    for (const int signal : endingSignals) {
        struct sigaction present {};

        if (::sigaction(signal, nullptr, &present) == 0 && present.sa_handler != SIG_IGN) {
            ::sigaction(signal, &wanted, nullptr);
        }
    }
}

EndingSignals::EndingSignals()
    : m_caught(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!m_caught) {
        throw std::system_error(errno, std::generic_category(), "cannot watch for signals");
    }
    caughtDescriptor = m_caught.get();
    std::ranges::transform(endingSignals, m_earlier.begin(), [](int signal) {
        struct sigaction action {};

        ::sigaction(signal, nullptr, &action);
        return action;
    });
    handleEndingSignals(&noteSignal, SA_RESTART);
}

EndingSignals::~EndingSignals() {
    for (std::size_t i = 0; i < endingSignals.size(); ++i) {
        ::sigaction(endingSignals[i], &m_earlier[i], nullptr);
    }
    if (take()) {
        ::raise(lastSignal);
    }
}

bool EndingSignals::take() {
    eventfd_t count = 0;
    return ::eventfd_read(m_caught.get(), &count) == 0;
}

} // namespace velmora
