// What the window tells about newer versions. The manifests come from a server on this machine.

#include "tests/window/WindowTest.h"

#include <QDateTime>

#include <csignal>

namespace velmora::test {
namespace {

class UpdateTest : public WindowTest {
protected:
    /// Has the program ask for `manifest`.
    void publish(const QString& manifest) {
        server = std::make_unique<Process>("python3", QStringList{MANIFEST_SERVER}, desktop.environment());
        environment.insert("VELMORA_MANIFEST_URL", "http://127.0.0.1:" + server->nextLine() + "/" + manifest);
    }

    /// The program has asked by itself a moment ago, and will not again today.
    void rememberCheck() const {
        write(preferenceFile,
              "[General]\nupdateLastCheck=" + std::to_string(QDateTime::currentSecsSinceEpoch()) + "\n");
    }

    void checkFromTheMenu() {
        open();
        desktop.press("F10");
        awaitShown("Check for Updates…");
        desktop.press("Down Return");
    }

    fs::path preferenceFile = desktop.preferences() / "Orventa" / "Velmora.conf";
    std::unique_ptr<Process> server;
};

const QString offered = "Velmora 2.0 is available";

TEST_F(UpdateTest, OffersTheNewerVersionWhenItStartsAndOpensItsPage) {
    publish("good");
    const fs::path opened = recordOpening();
    open();
    EXPECT_EQ(awaitShown(offered).description, "You have 1.0.0. Version 2.0 is available.\n\nFaster.");
    awaitShown("Later");
    desktop.press("Return");
    awaitGone(offered);
    EXPECT_TRUE(comesTrue([&] { return fs::exists(opened); }));
    EXPECT_EQ(read(opened), "https://x.example/get\n");
}

TEST_F(UpdateTest, OffersItOnceADay) {
    publish("good");
    open();
    awaitShown(offered);
    desktop.press("Escape");
    awaitGone(offered);
    desktop.press("ctrl+q");
    EXPECT_EQ(velmora->wait(), 0);
    EXPECT_NE(read(preferenceFile).find("updateLastCheck="), std::string::npos);

    checkFromTheMenu(); // had it asked by itself again, its offer would cover the menu
    awaitShown(offered);
    desktop.press("Escape");
    awaitGone(offered);
}

TEST_F(UpdateTest, OffersTheNewerVersionThroughTheMenuAndTakesALaterForAnAnswer) {
    publish("good");
    rememberCheck();
    const fs::path opened = recordOpening();
    checkFromTheMenu();
    awaitShown(offered);
    click("Later");
    awaitGone(offered);
    EXPECT_FALSE(fs::exists(opened));
}

TEST_F(UpdateTest, BringsTheWindowBackWithItsOffer) {
    publish("good");
    server->send(SIGSTOP); // the answer comes later
    open();
    desktop.minimise();
    EXPECT_TRUE(comesTrue([this] { return desktop.activeTitle().isEmpty(); }));
    server->send(SIGCONT);
    awaitActive("Velmora");
    awaitShown(offered);
}

TEST_F(UpdateTest, SaysThroughTheMenuThatThereIsNothingNewer) {
    publish("old");
    checkFromTheMenu();
    EXPECT_EQ(awaitShown("You're up to date").description, "Velmora 1.0.0 is the latest version.");
    click("OK");
    awaitGone("You're up to date");
}

TEST_F(UpdateTest, SaysThroughTheMenuThatNobodyAnswers) {
    checkFromTheMenu();
    EXPECT_EQ(awaitShown("Couldn't check for updates").description,
              "Check your internet connection and try again.");
    desktop.press("Escape");
    awaitGone("Couldn't check for updates");
}

} // namespace
} // namespace velmora::test
