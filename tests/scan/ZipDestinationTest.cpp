// Which places of a zip archive a scan objects to.

#include "tests/scan/ScanModelFixture.h"
#include "tests/support/Files.h"

namespace velmora::test {
namespace {

/// A scan of a file, of a folder with a track in it, of an archive and of one that could not be unpacked.
class ZipDestinationTest : public ScanModelTest {
protected:
    void SetUp() override {
        GatherResult found;
        found.files = {write(folder / "set" / "1.mp3", "track")};
        found.temps = {"/t/velmora-A"};
        found.archives = {write(folder / "packed.zip", "archive")};
        found.skippedArchives.push_back(
            {.path = write(folder / "broken.zip", "broken"), .why = Reason::damaged});
        write(folder / "dropped", "item");
        createModel({[found](const PathList&, const std::stop_token&, const Unpacking&) { return found; },
                     [](const fs::path& file, const std::stop_token&) {
                         return Measured{file, 1, 1};
                     }});
        model->ingest({folder / "dropped", folder});
        awaitStatus("COMPLETE");
    }

    std::string objectionTo(const std::string& name) const {
        return model->objectionToZip(folder / name).value_or("none");
    }

    const fs::path folder = freshFolder();
};

TEST_F(ZipDestinationTest, MayBeNewOrAnyOtherFile) {
    EXPECT_EQ(objectionTo("new.zip"), "none");
    EXPECT_EQ(objectionTo("set/new.zip"), "none");
    EXPECT_EQ(objectionTo("missing/new.zip"), "none");
    write(folder / "other.zip", "old");
    EXPECT_EQ(objectionTo("other.zip"), "none");
}

TEST_F(ZipDestinationTest, IsNoSourceOfTheScanByWhateverName) {
    fs::create_hard_link(folder / "set" / "1.mp3", folder / "hard.zip");
    fs::create_symlink("set/1.mp3", folder / "link.zip");
    for (const std::string name : {"dropped", "packed.zip", "broken.zip", "hard.zip", "link.zip"}) {
        EXPECT_EQ(objectionTo(name), name + " would replace a source of this scan");
    }
    EXPECT_EQ(objectionTo("set/../dropped"), "dropped would replace a source of this scan");
}

TEST_F(ZipDestinationTest, HasNotTheNameOfAnAudioFile) {
    EXPECT_EQ(objectionTo("new.WAV"), "new.WAV has the name of an audio file");
    EXPECT_EQ(objectionTo("set/1.mp3"), "1.mp3 has the name of an audio file");
}

TEST_F(ZipDestinationTest, IsWhereFilesCanBe) {
    EXPECT_EQ(objectionTo("dropped/new.zip"), "new.zip: Not a directory");
}

} // namespace
} // namespace velmora::test
