// "Which files?", from the command line to the clipboard.

#include "tests/support/RealAudio.h"
#include "tests/window/WindowTest.h"

namespace velmora::test {
namespace {

class DetailsTest : public WindowTest {};

TEST_F(DetailsTest, SayWhyAFileCouldNotBeRead) {
    tone("Music/a.wav", 3);
    write(folder / "Music" / "broken.flac", "fLaC");
    open({text(folder / "Music")});
    awaitActive("MUSIC – 00:00:03");
    click("1 file could not be read");
    const QString line = "broken.flac  " + text(folder / "Music") + "  cut off inside its header";
    awaitShown(line);
    desktop.press("ctrl+c");
    awaitClipboard("cut off inside its header\t" + text(folder / "Music" / "broken.flac"));
    click("FOLDERS");
    awaitGone(line);
    awaitShown("Music  " + text(folder) + "  00:00:03  1");
    desktop.press("Escape");
    awaitGone("FOLDERS");
    awaitShown("READY"); // the result stays
}

} // namespace
} // namespace velmora::test
