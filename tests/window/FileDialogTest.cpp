// The open and the save dialog, worked with the keyboard and the pointer.

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

class OpenDialogTest : public WindowTest {
protected:
    void openDialog() {
        open();
        desktop.press("ctrl+o");
        awaitActive("Choose a folder, archive, or audio files");
        awaitShown("Measure");
    }
};

TEST_F(OpenDialogTest, TakesAFileThatIsTyped) {
    const QString file = tone("a.wav", 3);
    openDialog();
    desktop.type(file);
    desktop.press("Return");
    awaitShown("00:00:03");
    desktop.press("ctrl+c");
    awaitClipboard("TOTAL RUNTIME  00:00:03   (3 sec)\n1 audio file — A.WAV");
}

TEST_F(OpenDialogTest, TakesAFolderThatIsTyped) {
    tone("set/a.wav", 3);
    openDialog();
    desktop.type(text(folder / "set"));
    desktop.press("Return");
    awaitShown("00:00:03");
    desktop.press("ctrl+c");
    awaitClipboard("TOTAL RUNTIME  00:00:03   (3 sec)\n1 audio file — SET");
}

TEST_F(OpenDialogTest, BeginsWithTheMusicAndTakesFilesAndFoldersTogether) {
    const fs::path music = desktop.home() / "Music";
    fs::create_directories(music / "set");
    tone("a.wav", 3);
    fs::copy(folder / "a.wav", music / "a.wav");
    fs::copy(folder / "a.wav", music / "set" / "b.wav");
    openDialog();
    click("a.wav");
    desktop.press("ctrl+a");
    click("Measure");
    awaitShown("00:00:06");
    desktop.press("ctrl+c");
    awaitClipboard("TOTAL RUNTIME  00:00:06   (6 sec)\n2 audio files — 2 ITEMS");
}

TEST_F(OpenDialogTest, LooksIntoNoFileThatItLists) {
    const fs::path music = desktop.home() / "Music";
    fs::create_directory(music);
    const fs::path file = write(music / "unknown", "content");
    const FileDescriptor watch(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    ASSERT_GE(::inotify_add_watch(watch.get(), file.c_str(), IN_OPEN), 0);
    openDialog();
    awaitShown("unknown");
    desktop.press("Escape");
    awaitActive("Velmora");
    std::array<char, 256> events{};
    EXPECT_LT(::read(watch.get(), events.data(), events.size()), 0) << "the file was opened";
    EXPECT_EQ(errno, EAGAIN);
}

TEST_F(OpenDialogTest, ChangesNothingWhenItIsCancelled) {
    openDialog();
    desktop.press("Escape");
    awaitActive("Velmora");
    awaitShown("STANDBY");
}

class SaveDialogTest : public WindowTest {
protected:
    void SetUp() override {
        tone("set/a.wav", 3);
        tone("set/More/b.wav", 2);
        open({text(folder / "set")});
        awaitShown("READY");
    }

    void openDialog() {
        desktop.press("ctrl+s");
        awaitActive("Save a zip of the 2 audio files");
        awaitShown("Zip");
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

TEST_F(SaveDialogTest, SavesAsProposed) {
    openDialog();
    desktop.press("Return");
    awaitShown("ZIP SAVED · set.zip");
    expectArchive(zip);
}

TEST_F(SaveDialogTest, SavesWhereOneTypesAndAddsTheExtension) {
    const fs::path elsewhere = freshFolder();
    openDialog();
    desktop.press("ctrl+a");
    desktop.type(text(elsewhere / "my mix"));
    desktop.press("Return");
    awaitShown("ZIP SAVED · my mix.zip");
    expectArchive(elsewhere / "my mix.zip");
}

TEST_F(SaveDialogTest, AsksBeforeItReplaces) {
    write(zip, "old");
    openDialog();
    desktop.press("Return");
    awaitShown("set.zip already exists.\nDo you want to replace it?");
    desktop.press("Escape");
    awaitGone("set.zip already exists.\nDo you want to replace it?");
    EXPECT_EQ(read(zip), "old");
    desktop.press("Return");
    awaitShown("set.zip already exists.\nDo you want to replace it?");
    desktop.press("alt+y");
    awaitShown("ZIP SAVED · set.zip");
    expectArchive(zip);
}

TEST_F(SaveDialogTest, TakesNoNameOfAnAudioFile) {
    openDialog();
    desktop.press("ctrl+a");
    desktop.type(text(folder / "new.wav"));
    desktop.press("Return");
    awaitShown("Choose another name");
    desktop.press("Return");
    awaitActive("Save a zip of the 2 audio files");
    desktop.press("Return");
    awaitShown("ZIP SAVED · set.zip");
    awaitGone("Choose another name");
    EXPECT_FALSE(fs::exists(folder / "new.wav"));
}

TEST_F(SaveDialogTest, ChangesNothingWhenItIsCancelled) {
    openDialog();
    desktop.press("Escape");
    awaitActive("Velmora");
    awaitShown("READY");
    EXPECT_FALSE(fs::exists(zip));
}

TEST_F(SaveDialogTest, SaysWhatFailed) {
    openDialog();
    desktop.press("ctrl+a");
    desktop.type(text(folder / "gone" / "no.zip"));
    desktop.press("Return");
    EXPECT_TRUE(comesTrue([this] {
        const QList<Element> all = reader.shown();
        return std::ranges::any_of(all, [](const Element& e) { return e.name.startsWith("ZIP FAILED · "); });
    }));
}

TEST_F(SaveDialogTest, ShowsWhatItSavedInTheFileManager) {
    FileManager fileManager(desktop.bus());
    openDialog();
    desktop.press("Return");
    click("ZIP SAVED · set.zip");
    EXPECT_TRUE(comesTrue([&] { return !fileManager.shown.isEmpty(); }));
    EXPECT_EQ(fileManager.shown, QStringList(url(zip)));
}

TEST_F(SaveDialogTest, OpensTheFolderWhereThereIsNoFileManagerToAsk) {
    const fs::path opened = recordOpening();
    openDialog();
    desktop.press("Return");
    click("ZIP SAVED · set.zip");
    EXPECT_TRUE(comesTrue([&] { return fs::exists(opened); }));
    EXPECT_EQ(read(opened), url(folder).toStdString() + "\n");
}

} // namespace
} // namespace velmora::test
