// From the command line to the clipboard.

#include "tests/window/WindowTest.h"

#include <algorithm>

namespace velmora::test {
namespace {

class ReportTest : public WindowTest {
protected:
    /// A folder with two files, and a file beside it.
    QStringList sources() const {
        tone("Ménage/10 two.wav", 60);
        tone("Ménage/9 one.wav", 4);
        return {text(folder / "Ménage"), url(tone("a b.wav", 1).toStdString())};
    }
};

TEST_F(ReportTest, PutsTheTotalOnTheClipboard) {
    open(sources());
    awaitShown("00:01:05");
    desktop.press("ctrl+c");
    awaitClipboard("TOTAL RUNTIME  00:01:05   (1 min  5 sec)\n3 audio files — 2 ITEMS");
}

TEST_F(ReportTest, PutsTheNamesOnTheClipboardInScanOrder) {
    open(sources());
    awaitShown("READY");
    desktop.press("ctrl+shift+c");
    awaitClipboard("a b.wav\n9 one.wav\n10 two.wav");
}

TEST_F(ReportTest, IsSpokenByScreenReaders) {
    open(sources());
    const auto isSpoken = [](const Element& element) {
        return element.role == "notification" && element.name == "1 min  5 sec";
    };
    EXPECT_TRUE(comesTrue([&] { return std::ranges::any_of(reader.shown(), isSpoken); }));
}

TEST_F(ReportTest, CountsWhatCannotBeRead) {
    write(folder / "set" / "no.wav", "no audio");
    write(folder / "set" / "no.zip", "no archive");
    tone("set/yes.wav", 2);
    open({text(folder / "set")});
    awaitShown("2 files could not be read");
    awaitShown("00:00:02");
}

TEST_F(ReportTest, SaysSoWhenThereIsNoAudio) {
    open({text(write(folder / "letter.txt", "hello"))});
    awaitShown("NO AUDIO FILES FOUND");
    awaitShown("NO AUDIO FOUND");
    awaitShown("EMPTY");
}

TEST_F(ReportTest, IsForgottenByEscape) {
    open(sources());
    awaitShown("RESET");
    desktop.press("Escape");
    awaitShown("DRAG AUDIO FILES, FOLDER, OR ZIP");
    awaitShown("STANDBY");
    EXPECT_FALSE(reader.find("RESET"));
}

} // namespace
} // namespace velmora::test
