// The file panel while it asks where to save.

#include "tests/ui/FilePanelTest.h"

namespace velmora::test {
namespace {

using FilePanelSaveTest = FilePanelTest;

TEST_F(FilePanelSaveTest, SavesAsProposedWithItsEnding) {
    save("my mix");
    EXPECT_EQ(panel.name(), "my mix");
    panel.accept();
    expectChosen({folder / "my mix.zip"});
}

TEST_F(FilePanelSaveTest, KeepsTheBytesOfAProposedName) {
    save("\xff.zip");
    panel.accept();
    expectChosen({folder / "\xff.zip"});
}

TEST_F(FilePanelSaveTest, SavesWhereOneTypesAndAddsTheEndingOnce) {
    save("x.zip");
    panel.setName("album/Mix.ZIP");
    panel.accept();
    expectChosen({folder / "album/Mix.ZIP"});
    panel.setName("  ");
    EXPECT_FALSE(panel.acceptable());
}

TEST_F(FilePanelSaveTest, SavesOnlyIntoAFolderThatIsThere) {
    save("x.zip");
    panel.setName("gone/x.zip");
    panel.accept();
    expectComplaint("“gone”: not there");
    panel.setName("a.ogg/x.zip");
    panel.accept();
    expectComplaint("“a.ogg”: not a folder");
    panel.setName("album");
    panel.accept();
    expectFolder(folder / "album");
}

TEST_F(FilePanelSaveTest, TakesTheNameOfAFileThatIsToBeReplaced) {
    write(folder / "old.zip", "0");
    save("x.zip");
    files.choose(row("album"));
    EXPECT_EQ(panel.name(), "x.zip");
    files.choose(row("old.zip"));
    EXPECT_EQ(panel.name(), "old.zip");
    files.choose(row("\xff.ogg"));
    panel.accept();
    expectChosen({folder / "\xff.ogg.zip"});
}

TEST_F(FilePanelSaveTest, MakesAFolderAndGoesThere) {
    save("x.zip");
    panel.makeFolder("album");
    expectComplaint("“album”: already there");
    panel.makeFolder("new");
    expectFolder(folder / "new");
    EXPECT_TRUE(fs::is_directory(folder / "new"));
    EXPECT_EQ(panel.name(), "x.zip");
}

} // namespace
} // namespace velmora::test
