// What the desktop shows of a scan while the window is not seen.

#include "tests/window/NewsServices.h"
#include "tests/window/Services.h"
#include "tests/window/WindowTest.h"

#include <QDBusMessage>
#include <QDBusPendingCall>

#include <csignal>

namespace velmora::test {
namespace {

class NewsTest : public WindowTest {
protected:
    NewsTest() { portal.way = FileChooserPortal::Way::wait; }

    void openOnResult() {
        open({tone("a.wav", 3)});
        awaitShown("READY");
    }

    /// Packs what was measured into `archive` while the window is minimised, and waits for the notification.
    void zipUnseen(const fs::path& archive) {
        portal.asked = 0;
        portal.uri = url(archive);
        desktop.press("ctrl+c");
        desktop.press("ctrl+s");
        EXPECT_TRUE(comesTrue([this] { return portal.asked == 1; }));
        desktop.minimise();
        EXPECT_TRUE(comesTrue([this] { return desktop.activeTitle().isEmpty(); }));
        awaitClipboard("TOTAL RUNTIME  00:00:03   (3 sec)\n1 audio file — A.WAV"); // it has seen that, too
        const auto before = server.shown.size();
        portal.answer();
        EXPECT_TRUE(comesTrue([&] { return server.shown.size() > before; }));
        awaitAnswer();
    }

    /// Its main thread answers this after it has taken what was sent to it before.
    void awaitAnswer() const {
        const QDBusPendingCall question = desktop.bus().asyncCall(
            QDBusMessage::createMethodCall("com.orventa.Velmora", "/com/orventa/Velmora",
                                           "org.freedesktop.DBus.Introspectable", "Introspect"));
        EXPECT_TRUE(comesTrue([&] { return question.isFinished(); }));
        EXPECT_FALSE(question.isError());
    }

    NotificationServer server{desktop.bus()};
    FileChooserPortal portal{desktop.bus()};
};

TEST_F(NewsTest, OfAZipReachesAUserWhoLooksElsewhere) {
    FileManager files(desktop.bus());
    Dock dock(desktop.bus());
    openOnResult();
    EXPECT_TRUE(comesTrue([&] { return !dock.updates.isEmpty() && !dock.showsProgress(); }));
    zipUnseen(folder / "mix.zip");
    EXPECT_EQ(server.shown.last().title, "Zip saved – mix.zip");
    EXPECT_EQ(server.shown.last().body, "1 file");
    server.press("button", "token");
    EXPECT_TRUE(comesTrue([&] { return files.shown == QStringList("file://" + text(folder / "mix.zip")); }));
    EXPECT_EQ(files.tokens, QStringList("token"));
}

TEST_F(NewsTest, BringsTheWindowBackAndGoesWithIt) {
    const fs::path impossible = folder / "missing" / "mix.zip";
    openOnResult();
    zipUnseen(impossible);
    EXPECT_EQ(server.shown.last().title, "Zip failed");
    server.press("default");
    awaitActive("A.WAV");

    zipUnseen(impossible);
    EXPECT_EQ(startAgain(), 0); // brings it to the front
    EXPECT_TRUE(comesTrue([this] { return server.closed.contains(2); }));

    zipUnseen(impossible);
    velmora->send(SIGTERM);
    EXPECT_EQ(velmora->wait(), 0);
    EXPECT_TRUE(comesTrue([this] { return server.closed.contains(3); }));
}

} // namespace
} // namespace velmora::test
