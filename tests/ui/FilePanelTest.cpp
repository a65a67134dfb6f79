// What the file panel makes of what is typed, selected and confirmed.

#include "ui/panel/FilePanel.h"

#include "tests/support/ComesTrue.h"
#include "tests/support/Files.h"
#include "tests/ui/FilePanelTest.h"
#include "ui/panel/TypedPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <semaphore>
#include <string>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TypedPaths, AreRelativeToTheFolderOrNot) {
    EXPECT_EQ(typedPath("a.ogg", "/music"), "/music/a.ogg");
    EXPECT_EQ(typedPath("/b/a.ogg", "/music"), "/b/a.ogg");
    EXPECT_EQ(typedPath("~/a.ogg", "/music"), fs::path(std::getenv("HOME")) / "a.ogg");
    EXPECT_EQ(typedPath("~a.ogg", "/music"), "/music/~a.ogg");
    EXPECT_EQ(typedPath("/musical", "/music"), "/musical");
}

TEST(TypedPaths, KeepTheBytesOfTheFolderThatIsShown) {
    EXPECT_EQ(typedPath(shownPath("/m\xff/x") + "/a.ogg", "/m\xff/x"), "/m\xff/x/a.ogg");
}

TEST(TypedPaths, MayBeSeveralInQuotationMarks) {
    EXPECT_THAT(typedPaths(R"( "a b.ogg" "/c.ogg" )", "/m"), ElementsAre("/m/a b.ogg", "/c.ogg"));
    EXPECT_THAT(typedPaths("a b.ogg", "/m"), ElementsAre("/m/a b.ogg"));
    EXPECT_THAT(typedPaths("\"", "/m"), ElementsAre("/m/\""));
}

TEST_F(FilePanelTest, ChoosesFilesAndFoldersTogetherWhateverTheirNames) {
    open();
    EXPECT_FALSE(panel.acceptable());
    panel.accept();
    panel.activate();
    EXPECT_THAT(chosen, IsEmpty()) << "nothing is selected";
    files.choose(row("album"));
    files.toggle(row("\xff.ogg"));
    EXPECT_TRUE(panel.acceptable());
    panel.accept();
    EXPECT_EQ(chosen, Paths({folder / "album", folder / "\xff.ogg"}));
    EXPECT_TRUE(panel.isOpen()) << "until it is told";
    panel.close();
    EXPECT_FALSE(panel.isOpen());
    EXPECT_EQ(files.count(), 0);
}

TEST_F(FilePanelTest, OpensAFolderAndMeasuresItOnlyByTheButton) {
    open();
    files.choose(row("album"));
    panel.activate();
    expectFolder(folder / "album");
    EXPECT_THAT(chosen, IsEmpty());
    panel.goUp();
    expectFolder(folder);
    EXPECT_EQ(files.current(), row("album")) << "where one came from";
    files.choose(row("album"));
    panel.accept();
    EXPECT_EQ(chosen, Paths{folder / "album"});
}

TEST_F(FilePanelTest, ActivatesAFile) {
    open();
    files.choose(row("b.ogg"));
    panel.activate();
    EXPECT_EQ(chosen, Paths{folder / "b.ogg"});
}

TEST_F(FilePanelTest, TakesSeveralNamesThatAreTyped) {
    open();
    type(R"("a.ogg" "b.ogg")");
    EXPECT_TRUE(panel.acceptable());
    panel.submit();
    expectChosen({folder / "a.ogg", folder / "b.ogg"});
}

TEST_F(FilePanelTest, SaysThatANameIsNotThereAndMeasuresNothing) {
    for (const auto confirm : {&FilePanel::submit, &FilePanel::accept}) {
        open();
        type(R"("a.ogg" "no.ogg")");
        (panel.*confirm)();
        expectComplaint("“no.ogg”: not there");
        panel.setTyped("x");
        EXPECT_EQ(panel.complaint(), "") << "it is being mended";
    }
}

TEST_F(FilePanelTest, GoesToAFolderThatIsTypedAndMeasuresItByTheButton) {
    open();
    type("album");
    panel.submit();
    expectFolder(folder / "album");
    EXPECT_FALSE(panel.typing());
    type(shownPath(folder / "album"));
    panel.accept();
    expectChosen({folder / "album"});
}

TEST_F(FilePanelTest, ProposesWhatMayFollow) {
    open();
    type("AL");
    EXPECT_TRUE(comesTrue([this] { return panel.proposals() == QStringList("album/"); }));
    type("album/");
    EXPECT_TRUE(comesTrue([this] { return panel.proposals() == QStringList("album/c.ogg"); }));
    panel.setTyping(false);
    EXPECT_EQ(panel.proposals(), QStringList());
}

TEST_F(FilePanelTest, RemembersTheWay) {
    open();
    EXPECT_FALSE(panel.canGoBack());
    panel.openCrumb(0);
    expectFolder("/");
    panel.goUp();
    EXPECT_EQ(panel.crumbs(), QStringList("/")) << "there is nothing above";
    panel.goBack();
    expectFolder(folder);
    EXPECT_EQ(panel.crumbs().last(), shownPath(folder.filename()));
    EXPECT_FALSE(panel.canGoBack());
}

TEST_F(FilePanelTest, SaysWhyAFolderCannotBeRead) {
    PanelRequest elsewhere = request();
    elsewhere.folders = {folder / "gone"};
    panel.ask(elsewhere);
    EXPECT_EQ(panel.notice(), "") << "it is not known yet";
    awaitRead();
    EXPECT_EQ(panel.notice(), "not there");
    elsewhere.folders.push_back(folder / "album");
    panel.ask(elsewhere);
    awaitRead();
    expectFolder(folder / "album");
    EXPECT_EQ(panel.notice(), "");
}

TEST_F(FilePanelTest, SaysThatNothingIsHereToChoose) {
    write(folder / "notes/a.txt", "");
    open();
    files.choose(row("notes"));
    panel.activate();
    awaitRead();
    EXPECT_EQ(panel.notice(), "No folders, archives or audio files here");
    files.setAll(true);
    EXPECT_EQ(panel.notice(), "");
}

TEST_F(FilePanelTest, AnswersWhileAFolderCannotBeRead) {
    std::binary_semaphore silence(0);
    std::binary_semaphore ended(0);
    FilePanel waiting([&](const fs::path& path) {
        if (path == folder / "album") {
            silence.acquire();
            ended.release();
        }
        return readFolder(path);
    });
    waiting.ask(request());
    EXPECT_TRUE(comesTrue([&] { return !waiting.reading(); }));
    waiting.openCrumb(0);
    waiting.files()->choose(0);
    PanelRequest silent = request();
    silent.folders = {folder / "album"};
    waiting.ask(silent);
    EXPECT_TRUE(waiting.reading());
    EXPECT_EQ(waiting.notice(), "");
    waiting.openCrumb(0);
    EXPECT_TRUE(comesTrue([&] { return !waiting.reading(); }));
    EXPECT_EQ(waiting.folderText(), "/");
    silence.release();
    ended.acquire();
    QTest::qWait(0);
    EXPECT_EQ(waiting.folderText(), "/") << "the late answer counts no more";
    waiting.close();
    EXPECT_FALSE(waiting.isOpen());
}

TEST_F(FilePanelTest, ShowsThePlacesOnceTheyAreKnown) {
    PanelRequest asked = request();
    asked.places = [this] {
        return std::vector<Place>{{"Here", "G", folder}, {"Album", "G", folder / "album"}};
    };
    panel.ask(asked);
    EXPECT_TRUE(comesTrue([this] { return panel.places().size() == 2 && !panel.reading(); }));
    EXPECT_EQ(panel.places()[0].toMap()["here"], true);
    panel.openPlace(1);
    expectFolder(folder / "album");
    EXPECT_EQ(panel.places()[1].toMap()["here"], true);
    EXPECT_EQ(panel.places()[0].toMap()["here"], false);
}

} // namespace
} // namespace velmora::test
