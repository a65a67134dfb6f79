// Saving through the desktop's own dialog, where its portal offers one.

#include "tests/window/Services.h"
#include "tests/window/WindowTest.h"

namespace velmora::test {
namespace {

class PortalSaveTest : public WindowTest {
protected:
    void SetUp() override {
        tone("set/a.wav", 3);
        tone("set/b.wav", 2);
        open({text(folder / "set")});
        awaitShown("READY");
    }

    void zip() {
        desktop.press("ctrl+s");
        EXPECT_TRUE(comesTrue([this] { return portal.asked == 1; }));
    }

    const QString question = "Save a zip of the 2 audio files";
    FileChooserPortal portal{desktop.bus()};
};

TEST_F(PortalSaveTest, SavesWhereTheDialogSays) {
    const auto id = run("xdotool", {"getactivewindow"}, desktop.environment()).trimmed().toUInt();
    portal.uri = url(folder / "my \xE9 mix.zip");
    zip();
    EXPECT_EQ(portal.title, question);
    EXPECT_EQ(portal.options["accept_label"], "Zip");
    EXPECT_EQ(portal.options["current_name"], "set.zip");
    EXPECT_EQ(portal.options["current_folder"].toByteArray(),
              QByteArray::fromStdString(folder.native() + '\0'));
    EXPECT_EQ(portal.parent, "x11:" + QString::number(id, 16));
    EXPECT_TRUE(comesTrue([this] { return fs::exists(folder / "my \xE9 mix.zip"); }));
    EXPECT_FALSE(reader.find(question));
}

TEST_F(PortalSaveTest, AddsTheEndingAndAsksThenBeforeItReplaces) {
    write(folder / "mix.zip", "old");
    portal.uri = url(folder / "mix");
    zip();
    awaitShown("Replace “mix.zip”?");
    desktop.press("Return");
    awaitShown("ZIP SAVED · mix.zip");
    EXPECT_NE(read(folder / "mix.zip"), "old");
    EXPECT_FALSE(fs::exists(folder / "mix"));
}

TEST_F(PortalSaveTest, ReplacesWhatTheDialogHasAskedAboutButNoSourceOfTheScan) {
    fs::create_symlink(folder / "set" / "a.wav", folder / "link.zip");
    portal.uri = url(folder / "link.zip");
    zip();
    awaitShown("Choose another name");
    portal.uri = url(write(folder / "mix.zip", "old"));
    desktop.press("Return");
    awaitShown("ZIP SAVED · mix.zip");
    EXPECT_NE(read(folder / "mix.zip"), "old");
    EXPECT_EQ(portal.asked, 2);
}

TEST_F(PortalSaveTest, ChangesNothingWhenItIsCancelled) {
    portal.response = 1;
    zip();
    desktop.press("ctrl+c"); // is done after the answer is
    awaitClipboard("TOTAL RUNTIME  00:00:05   (5 sec)\n2 audio files — SET");
    EXPECT_FALSE(reader.find(question));
    EXPECT_FALSE(fs::exists(folder / "set.zip"));
}

TEST_F(PortalSaveTest, FallsBackToThePanelWhereItFailsInAnyWay) {
    const auto dismiss = [this] {
        awaitShown(question);
        desktop.press("Escape");
        awaitGone(question);
        portal.asked = 0;
    };
    portal.response = 2;
    zip();
    dismiss();
    portal.way = FileChooserPortal::Way::refuse;
    zip();
    dismiss();
    portal.way = FileChooserPortal::Way::wait;
    zip();
    desktop.bus().unregisterService("org.freedesktop.portal.Desktop");
    awaitShown(question);
    desktop.press("Return");
    awaitShown("ZIP SAVED · set.zip");
}

TEST_F(PortalSaveTest, IsTakenBackByANewScan) {
    portal.way = FileChooserPortal::Way::wait;
    zip();
    EXPECT_EQ(startAgain({tone("c.wav", 4)}), 0);
    EXPECT_TRUE(comesTrue([this] { return portal.request.closed; }));
    awaitShown("00:00:04");
}

} // namespace
} // namespace velmora::test
