// Runs that are killed, and the next start. Many starts at once.

#include "tests/cli/ScanProcess.h"
#include "tests/support/Archives.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <memory>

namespace velmora::test {
namespace {

using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

/// A folder of sources, which no run may change.
class KilledRun : public testing::Test {
protected:
    /// Starts a scan of the sources with `options`, kills it once `underWay`, and starts another.
    void killAndStartAgain(std::vector<std::string> options, const std::function<bool()>& underWay) {
        const std::string before = sums();
        options.emplace_back(sources);
        {
            ScanProcess process({.arguments = options});
            waitUntil(underWay);
            process.send(SIGKILL);
            EXPECT_TRUE(process.wait().signalled);
        }
        EXPECT_THAT(privateDirectories(), SizeIs(1)) << "there is something to clear away";

        EXPECT_EQ(runToEnd({.arguments = {other}}).status, 0);

        EXPECT_THAT(toolsAtWork(), IsEmpty());
        EXPECT_THAT(privateDirectories(), IsEmpty());
        EXPECT_THAT(temporaryItems(), IsEmpty());
        EXPECT_EQ(sums(), before);
    }

    const fs::path sources = freshFolder();

private:
    /// A line a file below `sources`: the sum of its bytes, its name.
    std::string sums() const {
        return shell("find . -type f -print0 | sort -z | xargs -0 sha256sum", sources);
    }

    const fs::path other = writeWav(freshFolder() / "other.wav", oneSecond);
};

TEST_F(KilledRun, DuringExtractionLeavesNothingAfterTheNextStart) {
    slowArchive(sources);
    killAndStartAgain({}, [] { return !toolsAtWork().empty() && !temporaryPaths("velmora-").empty(); });
}

TEST_F(KilledRun, DuringMeasuringLeavesNothingAfterTheNextStart) {
    writeWav(sources / "tracks" / "1.wav", oneSecond);
    shell("tar -cf set.tar tracks", sources);
    writeSlowTracks(sources);
    const auto measures = [] {
        const std::vector<std::string> tools = toolsAtWork();
        return std::ranges::find(tools, "ffprobe") != tools.end();
    };
    killAndStartAgain({}, measures);
}

TEST_F(KilledRun, DuringTheZipLeavesNothingAfterTheNextStart) {
    writeWav(sources / "long.wav", {.frames = 30'000'000, .rate = 44'100, .channels = 1});
    const fs::path zip = freshFolder() / "Mix.zip";
    killAndStartAgain({"-z", zip}, [] { return !temporaryPaths("velmora-zip-").empty(); });
    EXPECT_FALSE(fs::exists(zip));
}

TEST(LivingRun, IsNotTouchedByAnotherStart) {
    const fs::path folder = freshFolder();
    const fs::path archive = slowArchive(folder);
    const fs::path other = writeWav(folder / "other.wav", oneSecond);
    ScanProcess living({.arguments = {"-l", archive}});
    waitUntil([] { return !toolsAtWork().empty(); });
    const std::vector<std::string> before = privateDirectories();

    EXPECT_EQ(runToEnd({.arguments = {other}}).status, 0);

    EXPECT_THAT(toolsAtWork(), Not(IsEmpty()));
    EXPECT_EQ(privateDirectories(), before);
    living.send(SIGTERM);
    EXPECT_EQ(living.wait().status, 130);
}

TEST(ManyRuns, DoNotTakeEachOtherForDead) {
    const fs::path folder = freshFolder();
    const fs::path track = writeWav(folder / "set" / "1.wav", oneSecond);
    shell("tar -cf set.tar set", folder);
    std::vector<std::unique_ptr<ScanProcess>> runs(60);
    for (std::unique_ptr<ScanProcess>& run : runs) {
        run = std::make_unique<ScanProcess>(Launch{.arguments = {"-l", folder / "set.tar"}});
    }
    for (const std::unique_ptr<ScanProcess>& run : runs) {
        const Finished finished = run->wait();
        EXPECT_EQ(finished.status, 0) << finished.errors;
        EXPECT_EQ(finished.output, "1.wav\n");
    }
    EXPECT_THAT(privateDirectories(), IsEmpty());
}

} // namespace
} // namespace velmora::test
