// Disks that are full or may not be written, at every moment at which a scan writes.

#include "tests/faults/Surroundings.h"
#include "tests/support/Archives.h"
#include "tests/support/OwnMounts.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class FullDisk : public testing::Test {
protected:
    static constexpr std::string_view old = "an archive that was there before";

    /// Noise, which no compression makes smaller: 176,400 bytes a second.
    fs::path writeNoise(int seconds) const {
        shell("sox -R -n -r 44100 -c 2 -b 16 noise.wav synth " + std::to_string(seconds) + " whitenoise",
              set);
        return set / "noise.wav";
    }

    Finished scan(std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"-f", "Set"});
        return runToEnd({.arguments = arguments, .folder = folder, .environment = {{"TMPDIR", temporary}}});
    }

    const fs::path folder = freshFolder();
    const fs::path set = folder / "Set";
    const fs::path track = writeWav(set / "1.wav", oneSecond);
    const fs::path temporary = freshFolder();
    const fs::path other = freshFolder();
    const std::string trackLine = "1.000\t" + track.native() + "\n";
};

TEST_F(FullDisk, WhileAnArchiveIsUnpackedSkipsThatArchive) {
    shell("head -c 9M /dev/zero >big.wav && zip -q Set/big.zip big.wav && rm big.wav", folder);
    inOwnMounts([&] {
        mountSmallDisk(temporary, 4 * megabyte);
        const Finished run = scan({});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.output, trackLine);
        EXPECT_THAT(run.errors, StartsWith("velmora-scan: cannot unpack '" + (set / "big.zip").native() +
                                           "': not enough room\n"));
        EXPECT_THAT(namesIn(temporary), IsEmpty());
    });
}

TEST_F(FullDisk, WhileFilesAreStagedKeepsTheOldZip) {
    writeNoise(30);
    const fs::path zip = write(other / "Mix.zip", old);
    inOwnMounts([&] {
        mountSmallDisk(temporary, 4 * megabyte);
        const Finished run = scan({"-z", zip});
        EXPECT_EQ(run.status, 4);
        EXPECT_EQ(run.output, trackLine + "30.000\t" + (set / "noise.wav").native() + "\n");
        EXPECT_EQ(run.errors,
                  "velmora-scan: cannot write the zip archive: noise.wav: No space left on device\n");
        EXPECT_THAT(namesIn(temporary), IsEmpty());
        EXPECT_EQ(read(zip), old);
    });
}

TEST_F(FullDisk, WhileTheArchiveIsWrittenKeepsTheOldZip) {
    writeNoise(15); // staged it fits, but not twice
    const fs::path zip = write(other / "Mix.zip", old);
    inOwnMounts([&] {
        mountSmallDisk(temporary, 4 * megabyte);
        const Finished run = scan({"-z", zip});
        EXPECT_EQ(run.status, 4);
        EXPECT_EQ(run.errors,
                  "velmora-scan: cannot write the zip archive: Mix.zip: No space left on device\n");
        EXPECT_THAT(namesIn(temporary), IsEmpty());
        EXPECT_EQ(read(zip), old);
    });
}

TEST_F(FullDisk, AtTheDestinationKeepsTheOldZip) {
    writeNoise(30);
    inOwnMounts([&] {
        mountSmallDisk(other, 4 * megabyte);
        const fs::path zip = write(other / "Mix.zip", old);
        const Finished run = scan({"-z", zip});
        EXPECT_EQ(run.status, 4);
        EXPECT_EQ(run.errors,
                  "velmora-scan: cannot write the zip archive: Mix.zip: No space left on device\n");
        EXPECT_EQ(read(zip), old);
        EXPECT_THAT(namesIn(other), ElementsAre("Mix.zip"));
        EXPECT_THAT(namesIn(temporary), IsEmpty());
    });
}

TEST_F(FullDisk, ThatIsAnotherThanTheTemporaryOneGetsTheZipWhenItFits) {
    inOwnMounts([&] {
        mountSmallDisk(other, 4 * megabyte);
        const fs::path zip = write(other / "Mix.zip", old);
        EXPECT_EQ(scan({"-z", zip}).status, 0);
        EXPECT_TRUE(shell("unzip -p Mix.zip Mix/1.wav", other) == read(track));
        EXPECT_THAT(namesIn(other), ElementsAre("Mix.zip"));
    });
}

/// A zip goes to another disk under a hidden name first.
TEST_F(FullDisk, ThatGotHalfAZipBeforeADeathIsClearedByTheNextZip) {
    inOwnMounts([&] {
        mountSmallDisk(other, 4 * megabyte);
        const fs::path zip = write(other / "Mix.zip", old);
        write(other / ".velmora-notes");
        const Launch dying{.arguments = {"-z", zip, "Set"},
                           .folder = folder,
                           .environment = meeting("fsync:1:kill:.velmora-", temporary)};
        EXPECT_EQ(runToEnd(dying).status, 128 + SIGKILL);
        EXPECT_EQ(read(zip), old);
        EXPECT_THAT(namesIn(other), SizeIs(3));
        EXPECT_EQ(scan({"-z", zip}).status, 0);
        EXPECT_TRUE(shell("unzip -p Mix.zip Mix/1.wav", other) == read(track));
        EXPECT_THAT(namesIn(other), ElementsAre(".velmora-notes", "Mix.zip"));
    });
}

class TemporaryDirectory : public FullDisk {
protected:
    TemporaryDirectory() { shell("zip -q Set/more.zip Set/1.wav", folder); }

    /// A scan with no temporary directory to work in: the plain file is measured, the archive is named.
    void expectPlainFilesOnly(const Launch::Variables& environment) {
        const fs::path zip = write(other / "Mix.zip", old);
        const Finished run =
            runToEnd({.arguments = {"-f", "-z", zip, "Set"}, .folder = folder, .environment = environment});
        EXPECT_EQ(run.output, trackLine) << run.errors;
        EXPECT_EQ(run.status, 4);
        EXPECT_THAT(run.errors, HasSubstr("cannot unpack '" + (set / "more.zip").native() + "'"));
        EXPECT_THAT(run.errors, HasSubstr("cannot write the zip archive: "));
        EXPECT_EQ(read(zip), old);
    }

    const std::string moreLine = "1.000\t" + (set / "more.zip/Set/1.wav").native() + "\n";
};

TEST_F(TemporaryDirectory, ThatIsMissingIsOnlyMissedByArchivesAndTheZip) {
    expectPlainFilesOnly({{"TMPDIR", temporary / "missing"}});
}

TEST_F(TemporaryDirectory, ThatIsReadOnlyIsOnlyMissedByArchivesAndTheZip) {
    inOwnMounts([&] {
        mountReadOnly(temporary);
        expectPlainFilesOnly({{"TMPDIR", temporary}});
    });
}

TEST_F(TemporaryDirectory, ThatIsAnEmptyTextMeansTheUsualOne) {
    const fs::path log = folder / "log";
    const Finished run =
        runToEnd({.arguments = {"-f", "Set"},
                  .folder = folder,
                  .environment = {
                      {"LD_PRELOAD", VELMORA_FAULT_INJECTOR}, {"VELMORA_FAULT_LOG", log}, {"TMPDIR", ""}}});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, trackLine + moreLine);
    EXPECT_THAT(read(log), HasSubstr("mkdir 1 /tmp/scan-velmora-"));
}

TEST_F(TemporaryDirectory, FromWhichNothingCanBeRemovedIsNamed) {
    const Finished run = runToEnd(
        {.arguments = {"-f", "Set"}, .folder = folder, .environment = meeting("unlink:1+:EIO", temporary)});
    EXPECT_EQ(run.output, trackLine + moreLine);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(namesIn(temporary), SizeIs(1));
    EXPECT_EQ(run.errors,
              "velmora-scan: cannot remove '" + (temporary / namesIn(temporary).front()).native() + "'\n");
}

TEST_F(TemporaryDirectory, OnAFileSystemWithoutLocksIsWorkedIn) {
    const Finished run = runToEnd(
        {.arguments = {"-f", "Set"}, .folder = folder, .environment = meeting("flock:1+:ENOLCK", temporary)});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, trackLine + moreLine);
    EXPECT_THAT(namesIn(temporary), IsEmpty());
}

} // namespace
} // namespace velmora::test
