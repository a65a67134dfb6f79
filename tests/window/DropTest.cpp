// Real drags from another program.

#include "tests/support/Archives.h"
#include "tests/window/Services.h"
#include "tests/window/WindowTest.h"

namespace velmora::test {
namespace {

class DropTest : public WindowTest {
protected:
    /// Drags over the window what `data` holds, in pairs of format and bytes.
    void dragOver(const QStringList& data) {
        source = std::make_unique<Process>(DRAG_SOURCE, data, desktop.environment());
        ASSERT_EQ(source->nextLine(), "ready");
        desktop.pull({40, 40}, window().center());
    }

    /// Drops a list of URIs on the window.
    void drop(const QStringList& uris) {
        dragOver({"text/uri-list", uris.join("\r\n") + "\r\n"});
        dropAsOffered();
    }

    void dropAsOffered() {
        EXPECT_EQ(source->nextLine(), "offered copy");
        desktop.letGo();
        EXPECT_EQ(source->nextLine(), "ended copy");
    }

    std::unique_ptr<Process> source;
};

TEST_F(DropTest, IsOneScanOfFilesFoldersAndArchivesTogether) {
    tone("set/a.wav", 10);
    pack(folder / "packed.zip", folder / "set");
    tone("My Ménage/b.wav", 5);
    open();
    drop({url(tone("c d.wav", 1).toStdString()), url(folder / "My Ménage"), url(folder / "packed.zip")});
    awaitShown("00:00:16");
    desktop.press("ctrl+c");
    awaitClipboard("TOTAL RUNTIME  00:00:16   (16 sec)\n3 audio files — 3 ITEMS");
    desktop.press("ctrl+shift+c");
    awaitClipboard("c d.wav\nb.wav\na.wav");
}

TEST_F(DropTest, TakesNamesThatAreNotUtf8) {
    tone("\xE9t\xE9.wav", 7);
    open();
    drop({url(folder / "\xE9t\xE9.wav")});
    awaitShown("00:00:07");
    desktop.press("ctrl+shift+c");
    awaitClipboard("\uFFFDt\uFFFD.wav");
}

TEST_F(DropTest, TakesTheFilesOfAConfinedProgramFromThePortal) {
    DocumentPortal portal(desktop.bus());
    portal.files["key 7"] = QStringList{tone("a.wav", 3), tone("b.wav", 4)};
    open();
    dragOver({"application/vnd.portal.filetransfer", "key 7"});
    dropAsOffered();
    EXPECT_TRUE(comesTrue([&] { return portal.asked == QStringList("key 7"); }));
    awaitShown("00:00:07");
}

TEST_F(DropTest, ReplacesARunningScan) {
    open({text(slowArchive(folder))});
    EXPECT_TRUE(comesTrue([this] { return !leftovers().empty(); }));
    drop({url(tone("a.wav", 3).toStdString())});
    awaitShown("00:00:03");
}

TEST_F(DropTest, OfTextOrAPageIsNoneAndChangesNothing) {
    open({tone("a.wav", 3)});
    awaitShown("00:00:03");
    for (const QStringList& other :
         {QStringList{"text/plain", "hello"}, {"text/uri-list", "https://x.example/picture.png\r\n"}}) {
        dragOver(other);
        desktop.letGo();
        EXPECT_EQ(source->nextLine(), "ended ignore");
    }
    EXPECT_TRUE(reader.find("00:00:03"));
    drop({url(tone("b.wav", 4).toStdString())});
    awaitShown("00:00:04");
}

} // namespace
} // namespace velmora::test
