// The file panel in the real window, worked with the keyboard and the pointer.

#include "system/RegularFile.h"
#include "tests/support/Archives.h"
#include "tests/support/Shell.h"
#include "tests/window/Services.h"
#include "tests/window/WindowTest.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace velmora::test {
namespace {

class OpenPanelTest : public WindowTest {
protected:
    void openPanel() {
        open();
        desktop.press("ctrl+o");
        awaitShown("Choose a folder, archive, or audio files");
        awaitShown("Files");
    }
};

TEST_F(OpenPanelTest, TakesAFileThatIsTyped) {
    const QString file = tone("a.wav", 3);
    openPanel();
    desktop.type(file);
    desktop.press("Return");
    awaitShown("00:00:03");
    desktop.press("ctrl+c");
    awaitClipboard("TOTAL RUNTIME  00:00:03   (3 sec)\n1 audio file — A.WAV");
}

TEST_F(OpenPanelTest, OpensAFolderThatIsTypedAndMeasuresItByCtrlEnter) {
    tone("set/a.wav", 3);
    openPanel();
    desktop.type(text(folder / "set"));
    desktop.press("Return");
    awaitShown("a.wav");
    desktop.type(text(folder / "set"));
    desktop.press("ctrl+Return");
    awaitShown("00:00:03");
    desktop.press("ctrl+c");
    awaitClipboard("TOTAL RUNTIME  00:00:03   (3 sec)\n1 audio file — SET");
}

TEST_F(OpenPanelTest, MeasuresNothingForANameThatIsNotThere) {
    openPanel();
    desktop.type("/nowhere/a.ogg");
    desktop.press("Return");
    awaitShown("“/nowhere/a.ogg”: not there");
    click("Measure");
    desktop.press("Escape");
    desktop.press("Escape");
    awaitGone("Choose a folder, archive, or audio files");
    awaitShown("STANDBY");
}

TEST_F(OpenPanelTest, TakesANameThatIsNoText) {
    fs::create_directory(desktop.home() / "Music");
    tone("a.wav", 3);
    fs::copy(folder / "a.wav", desktop.home() / "Music" / "\xff.wav");
    openPanel();
    click("\uFFFD.wav");
    click("Measure");
    awaitShown("00:00:03");
}

TEST_F(OpenPanelTest, BeginsWithTheMusicAndTakesFilesAndFoldersTogether) {
    const fs::path music = desktop.home() / "Music";
    fs::create_directories(music / "set");
    tone("a.wav", 3);
    fs::copy(folder / "a.wav", music / "a.wav");
    fs::copy(folder / "a.wav", music / "set" / "b.wav");
    openPanel();
    click("a.wav");
    desktop.press("ctrl+a");
    click("Measure");
    awaitShown("00:00:06");
    awaitGone("Measure");
    desktop.press("ctrl+c");
    awaitClipboard("TOTAL RUNTIME  00:00:06   (6 sec)\n2 audio files — 2 ITEMS");
}

TEST_F(OpenPanelTest, LooksIntoNoFileThatItLists) {
    const fs::path music = desktop.home() / "Music";
    fs::create_directory(music);
    const fs::path file = write(music / "unknown", "content");
    const FileDescriptor watch(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    ASSERT_GE(::inotify_add_watch(watch.get(), file.c_str(), IN_OPEN), 0);
    openPanel();
    click("All files");
    awaitShown("unknown");
    std::array<char, 256> events{};
    EXPECT_LT(::read(watch.get(), events.data(), events.size()), 0) << "the file was opened";
    EXPECT_EQ(errno, EAGAIN);
}

TEST_F(OpenPanelTest, ChangesNothingWhenItIsCancelled) {
    openPanel();
    desktop.press("Escape");
    awaitGone("Choose a folder, archive, or audio files");
    awaitShown("STANDBY");
}

class SavePanelTest : public WindowTest {
protected:
    void SetUp() override {
        tone("set/a.wav", 3);
        tone("set/More/b.wav", 2);
        open({text(folder / "set")});
        awaitShown("READY");
    }

    void openPanel() {
        desktop.press("ctrl+s");
        awaitShown("Save a zip of the 2 audio files");
        awaitShown("set"); // the folder is read
    }

    /// Tests the archive with another program and expects both files in it, in a folder named as it.
    static void expectArchive(const fs::path& zip) {
        const std::string name = zip.stem();
        shell("unzip -tqq " + shellWord(zip.native()));
        EXPECT_EQ(shell("unzip -Z1 " + shellWord(zip.native())),
                  name + "/\n" + name + "/a.wav\n" + name + "/More/\n" + name + "/More/b.wav\n");
    }

    fs::path zip = folder / "set.zip"; ///< the proposal
};

TEST_F(SavePanelTest, SavesAsProposed) {
    openPanel();
    desktop.press("Return");
    awaitShown("ZIP SAVED · set.zip");
    expectArchive(zip);
}

TEST_F(SavePanelTest, SavesWhereOneTypesAndAddsTheExtension) {
    const fs::path elsewhere = freshFolder();
    openPanel();
    desktop.press("ctrl+a");
    desktop.type(text(elsewhere / "my mix"));
    desktop.press("Return");
    awaitShown("ZIP SAVED · my mix.zip");
    expectArchive(elsewhere / "my mix.zip");
}

TEST_F(SavePanelTest, AsksBeforeItReplaces) {
    write(zip, "old");
    openPanel();
    desktop.press("Return");
    awaitShown("Replace “set.zip”?");
    desktop.press("Escape");
    awaitGone("Replace “set.zip”?");
    EXPECT_EQ(read(zip), "old");
    desktop.press("Return");
    awaitShown("Replace “set.zip”?");
    desktop.press("Return");
    awaitShown("ZIP SAVED · set.zip");
    expectArchive(zip);
}

TEST_F(SavePanelTest, ReplacesNoSourceOfTheScan) {
    const fs::path source = pack(folder / "source.zip", folder / "set");
    desktop.press("Escape");
    awaitShown("STANDBY");
    EXPECT_EQ(startAgain({text(source)}), 0);
    awaitShown("READY");
    const std::string before = read(source);
    openPanel();
    desktop.press("ctrl+a");
    desktop.type("source");
    desktop.press("Return");
    awaitShown("Choose another name");
    desktop.press("Return");
    awaitGone("Choose another name");
    desktop.press("ctrl+a");
    desktop.type("other");
    desktop.press("Return");
    awaitShown("ZIP SAVED · other.zip");
    EXPECT_EQ(read(source), before);
}

TEST_F(SavePanelTest, ChangesNothingWhenItIsCancelled) {
    openPanel();
    desktop.press("Escape");
    awaitGone("Save a zip of the 2 audio files");
    awaitShown("READY");
    EXPECT_FALSE(fs::exists(zip));
}

TEST_F(SavePanelTest, SaysWhatFailed) {
    openPanel();
    desktop.press("ctrl+a");
    desktop.type("/proc/no.zip"); // nobody can make a file there
    desktop.press("Return");
    EXPECT_TRUE(comesTrue([this] {
        const QList<Element> all = reader.shown();
        return std::ranges::any_of(all, [](const Element& e) { return e.name.startsWith("ZIP FAILED · "); });
    }));
}

TEST_F(SavePanelTest, BeginsNextTimeWithTheFolderAmongThosePlaces) {
    const fs::path elsewhere = freshFolder() / "elsewhere";
    fs::create_directory(elsewhere);
    openPanel();
    desktop.press("ctrl+a");
    desktop.type(text(elsewhere / "mix"));
    desktop.press("Return");
    awaitShown("ZIP SAVED · mix.zip");
    openPanel();
    click("elsewhere");
    awaitShown("mix.zip");
}

TEST_F(SavePanelTest, ShowsWhatItSavedInTheFileManager) {
    FileManager fileManager(desktop.bus());
    openPanel();
    desktop.press("Return");
    click("ZIP SAVED · set.zip");
    EXPECT_TRUE(comesTrue([&] { return !fileManager.shown.isEmpty(); }));
    EXPECT_EQ(fileManager.shown, QStringList(url(zip)));
}

TEST_F(SavePanelTest, OpensTheFolderWhereThereIsNoFileManagerToAsk) {
    const fs::path opened = recordOpening();
    openPanel();
    desktop.press("Return");
    click("ZIP SAVED · set.zip");
    EXPECT_TRUE(comesTrue([&] { return fs::exists(opened); }));
    EXPECT_EQ(read(opened), url(folder).toStdString() + "\n");
}

} // namespace
} // namespace velmora::test
