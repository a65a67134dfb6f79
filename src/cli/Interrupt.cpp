#include "cli/Interrupt.h"

#include "cli/ExitStatus.h"

#include <QSocketNotifier>

#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

constexpr std::array<int, 3> endingSignals = {SIGINT, SIGTERM, SIGHUP};

bool isIgnored(int signal) {
    struct sigaction action {};

    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

/// The signals that the caller did not have ignored.
sigset_t heededSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : endingSignals) {
        if (!isIgnored(signal)) {
            sigaddset(&set, signal);
        }
    }
    return set;
}

extern "C" void endProgram(int /*signal*/) {
    ::_exit(static_cast<int>(ExitStatus::interrupted));
}

} // namespace

void endAtSignals() {
    struct sigaction action {};

    action.sa_handler = &endProgram;
    for (const int signal : endingSignals) {
        if (!isIgnored(signal)) {
            ::sigaction(signal, &action, nullptr);
        }
    }
}

Interrupt::Interrupt(std::function<void()> onSignal) {
    const sigset_t heeded = heededSignals();
    ::pthread_sigmask(SIG_BLOCK, &heeded, nullptr);
    m_signals = FileDescriptor(::signalfd(-1, &heeded, SFD_CLOEXEC | SFD_NONBLOCK));
    if (!m_signals) {
        throw std::system_error(errno, std::generic_category(), "cannot watch for signals");
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_signals.get(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this, onSignal = std::move(onSignal)] {
        takeSignals();
        onSignal();
    });
}

Interrupt::~Interrupt() {
    m_notifier.reset();
    const sigset_t heeded = heededSignals();
    ::pthread_sigmask(SIG_UNBLOCK, &heeded, nullptr);
}

bool Interrupt::requested() {
    takeSignals();
    return m_requested;
}

void Interrupt::takeSignals() {
    signalfd_siginfo signal{};
    while (::read(m_signals.get(), &signal, sizeof signal) > 0) {
        m_requested = true;
    }
}

} // namespace velmora
