#pragma once

// A session bus for one test, without any service that a test does not offer.

#include <QDBusConnection>
#include <QProcess>

namespace velmora::test {

/// A real bus daemon, which the program finds by its environment. One a process: Qt reads the environment
/// once.
class SessionBus {
public:
    SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    /// Ends the daemon.
    ~SessionBus();

    /// The connection of the test's services, which is not that of the program.
    static QDBusConnection services();

    /// Comes back when what the program and the services have sent has arrived, and their answers to it, and
    /// so on: six times.
    static void settle();

private:
    QProcess m_daemon;
};

} // namespace velmora::test
