#include "tests/app/SessionBus.h"

#include "tests/support/BusConfiguration.h"
#include "tests/support/ComesTrue.h"
#include "tests/support/Files.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCall>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

const QString connectionOfServices = "services";

} // namespace

SessionBus::SessionBus() {
    const fs::path folder = freshFolder();
    const fs::path configuration = write(folder / "bus.conf", busConfiguration(folder));
    m_daemon.start("dbus-daemon",
                   {"--nofork", "--print-address", "--config-file=" + QString::fromStdString(configuration)});
    EXPECT_TRUE(
        comesTrue([this] { return m_daemon.canReadLine() || m_daemon.state() == QProcess::NotRunning; }));
    const QByteArray address = m_daemon.readLine().trimmed();
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    EXPECT_TRUE(
        QDBusConnection::connectToBus(QString::fromLatin1(address), connectionOfServices).isConnected());
}

SessionBus::~SessionBus() {
    QDBusConnection::disconnectFromBus(connectionOfServices);
    m_daemon.terminate();
    m_daemon.waitForFinished();
}

QDBusConnection SessionBus::services() {
    return QDBusConnection(connectionOfServices);
}

void SessionBus::settle() {
    constexpr int exchanges = 6; // two questions and their answers, and what follows from them
    for (int i = 0; i < exchanges; ++i) {
        const QDBusPendingCall ping = QDBusConnection::sessionBus().asyncCall(QDBusMessage::createMethodCall(
            services().baseService(), "/", "org.freedesktop.DBus.Peer", "Ping"));
        EXPECT_TRUE(comesTrue([&] { return ping.isFinished(); }));
        EXPECT_FALSE(ping.isError());
        QCoreApplication::processEvents(); // what came before the answer
    }
}

} // namespace velmora::test
