// Notifications, with a server on a real session bus.

#include "app/desktop/Notifier.h"

#include "tests/app/SessionBus.h"
#include "tests/window/NewsServices.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

#include <memory>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class NotifierTest : public testing::Test {
protected:
    void show(const Notice& notice) {
        notifier->show(notice);
        SessionBus::settle();
    }

    SessionBus session;
    std::unique_ptr<NotificationServer> server = std::make_unique<NotificationServer>(SessionBus::services());
    std::unique_ptr<Notifier> notifier = std::make_unique<Notifier>();
    QSignalSpy pressed{notifier.get(), &Notifier::pressed};
    QSignalSpy buttonPressed{notifier.get(), &Notifier::buttonPressed};
};

TEST_F(NotifierTest, SaysWhoSpeaksAndWhat) {
    show({"MUSIC – 101:02:05", "48 files"});
    ASSERT_THAT(server->shown, SizeIs(1));
    const NotificationServer::Shown& shown = server->shown.first();
    EXPECT_EQ(shown.application, "Velmora");
    EXPECT_EQ(shown.icon, "com.orventa.Velmora");
    EXPECT_EQ(shown.hints.value("desktop-entry"), "com.orventa.Velmora");
    EXPECT_EQ(shown.title, "MUSIC – 101:02:05");
    EXPECT_EQ(shown.body, "48 files");
    EXPECT_EQ(shown.actions, QStringList({"default", "Show Velmora"}));
}

TEST_F(NotifierTest, KeepsMarkupOutOfABodyThatMayHoldSome) {
    show({"R&B <1>", "R&B <1>"});
    EXPECT_EQ(server->shown.last().title, "R&B <1>");
    EXPECT_EQ(server->shown.last().body, "R&amp;B &lt;1&gt;");
    server->capabilities = {"body"};
    show({"R&B <1>", "R&B <1>"});
    EXPECT_EQ(server->shown.last().body, "R&B <1>");
}

TEST_F(NotifierTest, HasAButtonOnlyWhereTheServerHasAny) {
    show({"Zip saved", "48 files", "Show in folder"});
    EXPECT_EQ(server->shown.last().actions,
              QStringList({"default", "Show Velmora", "button", "Show in folder"}));
    server->capabilities = {"body"};
    show({"Zip saved", "48 files", "Show in folder"});
    EXPECT_THAT(server->shown.last().actions, IsEmpty());
}

TEST_F(NotifierTest, TellsWhatThePressWas) {
    show({"Zip saved", "48 files", "Show in folder"});
    server->press("button", "token-1");
    SessionBus::settle();
    EXPECT_THAT(buttonPressed, ElementsAre(ElementsAre(QByteArray("token-1"))));
    EXPECT_THAT(pressed, IsEmpty());

    show({"Zip saved", "48 files", "Show in folder"});
    server->press("default");
    SessionBus::settle();
    EXPECT_THAT(buttonPressed, SizeIs(1));
    EXPECT_THAT(pressed, ElementsAre(ElementsAre(QByteArray()))) << "without the token of the one before";
}

TEST_F(NotifierTest, HearsNothingOfTheNotificationsOfOthers) {
    show({"MUSIC", "48 files"});
    QDBusConnection::sessionBus().send(QDBusMessage::createSignal("/org/freedesktop/Notifications",
                                                                  "org.freedesktop.Notifications",
                                                                  "ActionInvoked")
                                       << 1U << "default"); // of no server
    server->shown.resize(2);
    server->press("default"); // the other one
    SessionBus::settle();
    EXPECT_THAT(pressed, IsEmpty());
    server->shown.resize(1);
    server->press("default");
    SessionBus::settle();
    EXPECT_THAT(pressed, SizeIs(1));
}

TEST_F(NotifierTest, TakesBackWhatIsShown) {
    show({"MUSIC", "48 files"});
    EXPECT_THAT(server->closed, IsEmpty());
    notifier->withdraw();
    notifier->withdraw();
    SessionBus::settle();
    EXPECT_THAT(server->closed, ElementsAre(1));
}

TEST_F(NotifierTest, TakesBackAtItsEnd) {
    show({"MUSIC", "48 files"});
    notifier.reset();
    SessionBus::settle();
    EXPECT_THAT(server->closed, ElementsAre(1));
}

TEST_F(NotifierTest, ShowsOneAtATime) {
    show({"MUSIC", "48 files"});
    show({"SPEECH", "2 files"});
    EXPECT_THAT(server->shown, SizeIs(2));
    EXPECT_THAT(server->closed, ElementsAre(1));
}

TEST_F(NotifierTest, TakesBackWhatTheServerHasNotAnsweredYet) {
    notifier->show({"MUSIC", "48 files"});
    notifier->withdraw();
    SessionBus::settle();
    EXPECT_THAT(server->shown, IsEmpty()) << "it was only asked what it can do";

    notifier->show({"MUSIC", "48 files"});
    server->atNotify = [this] { notifier->withdraw(); };
    SessionBus::settle();
    EXPECT_THAT(server->shown, SizeIs(1));
    EXPECT_THAT(server->closed, ElementsAre(1));
}

TEST_F(NotifierTest, LeavesAloneWhatHasGone) {
    show({"MUSIC", "48 files"});
    server->dismiss();
    SessionBus::settle();
    notifier->withdraw();
    SessionBus::settle();
    EXPECT_THAT(server->closed, IsEmpty()) << "the number may have been given to another one";
}

TEST_F(NotifierTest, IsSilentWithoutAServer) {
    server.reset();
    show({"MUSIC", "48 files"});
    server = std::make_unique<NotificationServer>(SessionBus::services());
    SessionBus::settle();
    EXPECT_THAT(server->shown, IsEmpty()) << "too late";
    show({"SPEECH", "2 files"});
    EXPECT_EQ(server->shown.last().title, "SPEECH");
}

} // namespace
} // namespace velmora::test
