// Every control of the window, pressed at its place on the screen.

#include "tests/window/WindowTest.h"

namespace velmora::test {
namespace {

class ControlsTest : public WindowTest {
protected:
    void openOnResult() {
        open({tone("a.wav", 3), tone("b.wav", 2)});
        awaitShown("READY");
    }
};

TEST_F(ControlsTest, CopyTheTotal) {
    openOnResult();
    click("COPY RUNTIME");
    awaitClipboard("TOTAL RUNTIME  00:00:05   (5 sec)\n2 audio files — 2 ITEMS");
    awaitShown("COPY RUNTIME"); // again, after it said "COPIED"
}

TEST_F(ControlsTest, CopyTheNames) {
    openOnResult();
    click("COPY FILE LIST");
    awaitClipboard("a.wav\nb.wav");
}

TEST_F(ControlsTest, StartAnew) {
    openOnResult();
    click("RESET");
    awaitShown("STANDBY");
}

TEST_F(ControlsTest, OpenThePanelForSources) {
    open();
    click("CHOOSE…");
    awaitShown("Choose a folder, archive, or audio files");
    awaitShown("Measure");
}

TEST_F(ControlsTest, OpenThePanelForTheZip) {
    openOnResult();
    click("ZIP…");
    awaitShown("Save a zip of the 2 audio files");
    awaitShown("Zip");
}

TEST_F(ControlsTest, TellAboutTheProgram) {
    open();
    click("Menu");
    click("About Velmora");
    const Element alert = awaitShown("Velmora 1.0.0");
    EXPECT_TRUE(alert.description.contains("Orventa"));
    const fs::path preferences = desktop.preferences() / "Orventa" / "Velmora.conf";
    for (const char* const line : {"updateQuietCheck=false\n", "updateQuietCheck=true\n"}) {
        click("Look for updates once a day");
        EXPECT_TRUE(comesTrue([&] {
            return fs::exists(preferences) && read(preferences).find(line) != std::string::npos;
        })) << line;
    }
    click("OK");
    awaitGone("Velmora 1.0.0");
}

TEST_F(ControlsTest, AreReachedWithTheKeyboardAlone) {
    openOnResult();
    desktop.press("F10");
    awaitShown("Details"); // the first row
    desktop.press("Down Down Down Up Up Return");
    awaitShown("Velmora 1.0.0");
    desktop.press("Escape");
    awaitGone("Velmora 1.0.0");
    desktop.press("Tab Tab space");
    awaitClipboard("TOTAL RUNTIME  00:00:05   (5 sec)\n2 audio files — 2 ITEMS");
}

TEST_F(ControlsTest, AreReachedThroughTheScreenReaderAlone) {
    openOnResult();
    reader.activate(awaitShown("COPY FILE LIST"));
    awaitClipboard("a.wav\nb.wav");
    reader.activate(awaitShown("RESET"));
    awaitShown("STANDBY");
}

} // namespace
} // namespace velmora::test
