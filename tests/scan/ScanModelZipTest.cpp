#include "tests/scan/ScanModelFixture.h"
#include "tests/support/Files.h"
#include "tests/support/Shell.h"

namespace velmora::test {
namespace {

using Lines = std::vector<std::string>;

class ScanModelZipTest : public ScanModelTest {
protected:
    /// Scans a folder of `count` files and starts writing down what is published.
    void scanFiles(int count) {
        folder = freshFolder() / "Mix";
        Paths files;
        for (int i = 0; i < count; ++i) {
            files.push_back(
                write(folder / (std::to_string(i) + ".mp3"), "bytes of file " + std::to_string(i)));
        }
        createModel(
            {[files](const PathList&, const std::stop_token&, const Unpacking&) { return gathered(files); },
             [](const fs::path& file, const std::stop_token&) {
                 return Measured{file, 1, 1};
             }});
        model->ingest({folder});
        awaitStatus("COMPLETE");
        record();
    }

    void awaitZipEnd() {
        awaitThat([this] { return !std::holds_alternative<ZipWorking>(model->zipState()); });
    }

    /// "zip working 0/120", then an update every `step` files and at the last.
    static Lines updates(int total, int step) {
        Lines lines = {"zip working 0/" + std::to_string(total)};
        for (int done = 1; done <= total; ++done) {
            if (done % step == 0 || done == total) {
                lines.push_back("zip working " + std::to_string(done) + "/" + std::to_string(total));
            }
        }
        return lines;
    }

    fs::path folder;
};

TEST_F(ScanModelZipTest, PublishesAboutFiftyUpdatesAndTheArchive) {
    for (const auto& [total, step] :
         {std::pair(49, 1), std::pair(120, 2), std::pair(101, 2), std::pair(149, 2)}) {
        scanFiles(total);
        const fs::path destination = freshFolder() / "Out.zip";
        model->makeZip(destination);
        awaitZipEnd();

        Lines expected = updates(total, step);
        expected.push_back("zip done " + destination.native());
        EXPECT_EQ(takeRecord(), expected);
        EXPECT_EQ(shell("unzip -Z1 Out.zip | grep -c mp3", destination.parent_path()),
                  std::to_string(total) + "\n");
    }
}

TEST_F(ScanModelZipTest, ChangesNothingWhenNothingWasMeasured) {
    createModel({}, {});
    record();
    model->makeZip(freshFolder() / "Out.zip");
    EXPECT_EQ(takeRecord(), Lines{});
}

TEST_F(ScanModelZipTest, TellsWhyPackingFailed) {
    scanFiles(3);
    fs::remove(folder / "1.mp3");
    const fs::path destination = freshFolder() / "Out.zip";
    model->makeZip(destination);
    awaitZipEnd();

    EXPECT_EQ(model->zipState(), ZipState(ZipFailed{"1.mp3: No such file or directory"}));
    EXPECT_FALSE(fs::exists(destination));
    EXPECT_EQ(temporaryItems(), Lines{});
}

TEST_F(ScanModelZipTest, StartsAgainAfterAnEarlierZip) {
    scanFiles(1);
    const fs::path destination = freshFolder() / "Out.zip";
    for (int round = 0; round < 2; ++round) {
        model->makeZip(destination);
        EXPECT_EQ(model->zipState(), ZipState(ZipWorking{0, 1}));
        awaitZipEnd();
        EXPECT_EQ(model->zipState(), ZipState(ZipDone{destination}));
    }
}

TEST_F(ScanModelZipTest, ReturnsToIdleWithTheNextScan) {
    scanFiles(1);
    model->makeZip(freshFolder() / "Out.zip");
    awaitZipEnd();
    model->ingest({folder});
    EXPECT_EQ(model->zipState(), ZipState(ZipIdle{}));
}

TEST(ZipStateTest, IsEqualWhenCaseAndPayloadAre) {
    EXPECT_EQ(ZipState(ZipWorking{1, 2}), ZipState(ZipWorking{1, 2}));
    EXPECT_NE(ZipState(ZipWorking{1, 2}), ZipState(ZipWorking{2, 2}));
    EXPECT_NE(ZipState(ZipDone{"/a"}), ZipState(ZipDone{"/b"}));
    EXPECT_NE(ZipState(ZipFailed{"x"}), ZipState(ZipFailed{"y"}));
    EXPECT_NE(ZipState(ZipIdle{}), ZipState(ZipDone{}));
    EXPECT_EQ(ZipState(ZipIdle{}), ZipState());
}

} // namespace
} // namespace velmora::test
