// The question whether there is a newer version, while its answer is on its way. The server is on this
// machine.

#include "app/UpdateAlerts.h"

#include "tests/support/ComesTrue.h"
#include "ui/window/Alerts.h"

#include <QCoreApplication>
#include <QSettings>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using UpdateChecker::QuietCheck;

class UpdateAlertsTest : public testing::Test {
protected:
    UpdateAlertsTest() {
        EXPECT_TRUE(server.listen(QHostAddress::LocalHost));
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
        QCoreApplication::setOrganizationName("Orventa"); // as the program does: preferences need it
        QCoreApplication::setApplicationName("Velmora");
        qputenv("VELMORA_MANIFEST_URL", "http://127.0.0.1:" + QByteArray::number(server.serverPort()) + "/m");
    }

    /// The next request, which waits for its answer.
    QTcpSocket* nextRequest() {
        EXPECT_TRUE(comesTrue([this] { return server.hasPendingConnections(); }));
        return server.nextPendingConnection();
    }

    static void answer(QTcpSocket* request) {
        const QByteArray body = R"({"version": "0.1", "url": "https://x.example/get"})";
        request->write("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " +
                       QByteArray::number(body.size()) + "\r\n\r\n" + body);
    }

    /// Waits for the answer to a question of the user; nobody else was asked before.
    void expectOnlyTheUsersQuestion(UpdateAlerts& updates) {
        updates.checkInteractively();
        answer(nextRequest());
        ASSERT_TRUE(comesTrue([this] { return alerts.open(); }));
        EXPECT_EQ(alerts.title(), "You're up to date");
        EXPECT_FALSE(server.hasPendingConnections());
    }

    QTemporaryDir folder;
    QTcpServer server;
    Alerts alerts;
};

TEST_F(UpdateAlertsTest, AskNobodyByThemselvesOnceTheSwitchIsTurnedOff) {
    {
        UpdateAlerts updates(
            alerts, [] {}, QuietCheck::present);
        const std::optional<AlertSwitch> shown = updates.quietCheckSwitch();
        ASSERT_TRUE(shown);
        EXPECT_TRUE(shown->on);
        updates.checkQuietly();
        nextRequest(); // never answered: it would ask again
        shown->turned(false);
    }
    UpdateAlerts updates(
        alerts, [] {}, QuietCheck::present);
    const std::optional<AlertSwitch> shown = updates.quietCheckSwitch();
    ASSERT_TRUE(shown);
    EXPECT_FALSE(shown->on) << "it is remembered";
    updates.checkQuietly();
    expectOnlyTheUsersQuestion(updates);
    shown->turned(true);
    updates.checkQuietly();
    nextRequest();
}

TEST_F(UpdateAlertsTest, HaveNoSwitchWhereTheQuietCheckIsLeftOut) {
    UpdateAlerts updates(
        alerts, [] {}, QuietCheck::leftOut);
    EXPECT_FALSE(updates.quietCheckSwitch());
    updates.checkQuietly();
    expectOnlyTheUsersQuestion(updates);
}

TEST_F(UpdateAlertsTest, SayWhileTheUserWaitsForAnAnswer) {
    UpdateAlerts updates(alerts, [] {});
    QSignalSpy checking(&updates, &UpdateAlerts::checking);
    updates.checkInteractively();
    ASSERT_EQ(checking.count(), 1);
    EXPECT_EQ(checking.takeFirst().constFirst(), true);
    QTcpSocket* request = nextRequest();
    updates.checkInteractively();
    EXPECT_EQ(checking.count(), 0) << "it has asked already";
    EXPECT_FALSE(alerts.open());
    answer(request);
    ASSERT_TRUE(comesTrue([this] { return alerts.open(); }));
    EXPECT_EQ(alerts.title(), "You're up to date");
    ASSERT_EQ(checking.count(), 1);
    EXPECT_EQ(checking.takeFirst().constFirst(), false);
    EXPECT_FALSE(server.hasPendingConnections()) << "one question, one answer";
    updates.checkInteractively();
    EXPECT_EQ(checking.count(), 1) << "it may ask again";
}

} // namespace
} // namespace velmora::test
