#include "app/EndingSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <system_error>

namespace velmora {

namespace {

constexpr std::array<int, 3> endingSignals = {SIGINT, SIGTERM, SIGHUP};

std::atomic<int> caughtDescriptor = -1;

extern "C" void tell(int /*signal*/) {
    const int error = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(caughtDescriptor, &one, sizeof one);
    errno = error;
}

/// Lets `action` answer the signals, except one that is ignored.
void answerWith(void (*action)(int)) {
    struct sigaction wanted {};

    wanted.sa_handler = action;
    wanted.sa_flags = SA_RESTART;
    for (const int signal : endingSignals) {
        struct sigaction present {};

        if (::sigaction(signal, nullptr, &present) == 0 && present.sa_handler != SIG_IGN) {
            ::sigaction(signal, &wanted, nullptr);
        }
    }
}

} // namespace

EndingSignals::EndingSignals()
    : m_caught(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!m_caught) {
        throw std::system_error(errno, std::generic_category(), "cannot watch for signals");
    }
    caughtDescriptor = m_caught.get();
    m_notifier = std::make_unique<QSocketNotifier>(m_caught.get(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this] {
        m_notifier->setEnabled(false);
        QCoreApplication::exit(EXIT_SUCCESS); // an open panel's event loop ends as well
    });
    answerWith(&tell);
}

EndingSignals::~EndingSignals() {
    answerWith(SIG_DFL);
}

} // namespace velmora
