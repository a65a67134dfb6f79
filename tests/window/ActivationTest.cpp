// Started by the session bus, from the service file that is installed, and asked by the desktop for what its
// menus offer.

#include "tests/window/WindowTest.h"
#include "tests/window/XClient.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>

#include <gmock/gmock.h>

namespace velmora::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

const QString name = "com.orventa.Velmora";
constexpr int patienceOfCalls = 60'000; ///< milliseconds

class ActivationTest : public WindowTest {
protected:
    void SetUp() override {
        const QString service = QString::fromStdString(read(VELMORA_SERVICE));
        const QString installed = "Exec=velmora ";
        ASSERT_TRUE(service.contains(installed));
        write(desktop.services() / "com.orventa.Velmora.service",
              QString(service).replace(installed, QString("Exec=%1 ").arg(VELMORA)).toStdString());
        desktop.bus().interface()->call("ReloadConfig");
        run("dbus-update-activation-environment", {"--all"}, environment); // as desktops do when they start
    }

    void TearDown() override {
        if (velmora) {
            WindowTest::TearDown();
        }
    }

    /// Calls the program as the desktop does; returns when it has answered.
    void ask(const QString& method, const QVariantList& arguments) const {
        QDBusMessage message = QDBusMessage::createMethodCall(name, "/com/orventa/Velmora",
                                                              "org.freedesktop.Application", method);
        message.setArguments(arguments);
        const QDBusMessage answer = desktop.bus().call(message, QDBus::Block, patienceOfCalls);
        EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << answer.errorMessage().toStdString();
    }

    void choose() const { ask("ActivateAction", {"choose", QVariantList(), QVariantMap()}); }

    bool runs() const { return desktop.bus().interface()->isServiceRegistered(name); }

    uint processId() const { return desktop.bus().interface()->servicePid(name); }

    int windows() const {
        return static_cast<int>(
            std::ranges::count(reader.shown(), QString("frame"), [](const Element& e) { return e.role; }));
    }

    void quit() const {
        desktop.press("ctrl+q");
        EXPECT_TRUE(comesTrue([this] { return !runs() && privateDirectories().empty(); }));
    }
};

TEST_F(ActivationTest, OpensOneWindowForAllThatTheDesktopAsks) {
    const std::string anyBytes = "\xE9 \xC3\xA9\n.wav";
    tone(anyBytes, 3);
    ask("Open", {QStringList{"file://" + tone("a.wav", 2), url(folder / anyBytes)}, QVariantMap()});
    awaitShown("00:00:05");
    const uint process = processId();

    choose();
    awaitShown("Measure");
    desktop.press("Escape");
    awaitGone("Measure");

    ask("ActivateAction", {"no-such-action", QVariantList(), QVariantMap()});
    desktop.minimise();
    EXPECT_TRUE(comesTrue([this] { return desktop.activeTitle().isEmpty(); }));
    XClient server(desktop.environment().value("DISPLAY").toUtf8());
    server.watchStartups();
    const QString startup = "a \"start\" of some length_TIME1";
    ask("Activate", {QVariantMap{{"desktop-startup-id", startup}}});
    EXPECT_TRUE(comesTrue([this] { return !desktop.activeTitle().isEmpty(); }));
    EXPECT_TRUE(comesTrue([&] {
        return server.startupMessages() == "remove: ID=\"a \\\"start\\\" of some length_TIME1\"";
    })) << server.startupMessages().toStdString();
    awaitShown("00:00:05");

    EXPECT_EQ(startAgain({tone("b.wav", 4)}), 0);
    awaitShown("00:00:04");
    EXPECT_EQ(windows(), 1);
    EXPECT_EQ(processId(), process);
    quit();
}

TEST_F(ActivationTest, EndsWithoutAWindowWhenNothingIsAskedAndStartsAgainWhenItIs) {
    EXPECT_TRUE(desktop.bus().interface()->startService(name).isValid());
    EXPECT_THAT(privateDirectories(), SizeIs(1));
    QString title;
    EXPECT_TRUE(comesTrue([&] {
        title += desktop.activeTitle();
        return !runs();
    }));
    EXPECT_EQ(title.toStdString(), "");
    EXPECT_TRUE(comesTrue([this] { return privateDirectories().empty(); }));

    choose();
    awaitShown("Measure");
    EXPECT_EQ(windows(), 1);
    desktop.press("Escape");
    awaitGone("Measure");
    quit();
}

TEST_F(ActivationTest, TakesThePathsOfAnotherStartWhileItWaits) {
    EXPECT_TRUE(desktop.bus().interface()->startService(name).isValid());
    EXPECT_EQ(startAgain({tone("a.wav", 2)}), 0);
    awaitShown("00:00:02");
    EXPECT_EQ(startAgain({"--service"}), 0) << "there is one already";
    quit();
}

TEST_F(ActivationTest, ChoosesAtOnceWhenStartedForIt) {
    open({"--choose"});
    awaitShown("Measure");
    desktop.press("Escape");
    awaitGone("Measure");
    EXPECT_EQ(startAgain({"--choose", tone("a.wav", 2)}), 0);
    awaitShown("Measure");
    desktop.press("Escape");
    awaitShown("00:00:02");
}

} // namespace
} // namespace velmora::test
