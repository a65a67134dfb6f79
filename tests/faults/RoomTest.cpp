// Archives that would fill the disk of the temporary directory: they are skipped, and whatever else the user
// runs keeps its room.

#include "tests/cli/ScanProcess.h"
#include "tests/support/Archives.h"
#include "tests/support/OwnMounts.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

using testing::IsEmpty;

class Room : public testing::Test {
protected:
    /// Scans the folder "Set" with a temporary directory that has room for so many bytes and files (0: any
    /// number), and gives the fewest bytes that were free.
    std::uintmax_t scan(std::uintmax_t bytes, std::uintmax_t files = 0) {
        mountSmallDisk(disk, bytes, files);
        ScanProcess process(
            {.arguments = {"-f", "Set"}, .folder = folder, .environment = {{"TMPDIR", disk}}});
        std::uintmax_t least = bytes;
        waitUntil([&] {
            least = std::min(least, fs::space(disk).available);
            return process.ended();
        });
        run = process.wait();
        waitUntil([&] { return fs::space(disk).available > bytes / 100 * 99; });
        EXPECT_THAT(namesIn(disk), IsEmpty());
        return least;
    }

    void expectSkipped(const std::string& archive) const {
        EXPECT_EQ(run.errors, "velmora-scan: cannot unpack '" + (folder / "Set" / archive).native() +
                                  "': not enough room\n");
        EXPECT_EQ(run.output, "1.000\t" + track.native() + "\n");
        EXPECT_EQ(run.status, 1);
    }

    const fs::path folder = freshFolder();
    const fs::path track = writeWav(folder / "Set" / "track.wav", oneSecond);
    const fs::path disk = freshFolder();
    Finished run;
};

TEST_F(Room, IsLeftByAnArchiveOfOneLargeFile) {
    shell("head -c 40M /dev/zero >bomb.wav && zip -q Set/bomb.zip bomb.wav && rm bomb.wav", folder);
    inOwnMounts([&] {
        constexpr std::uintmax_t bytes = 32 * megabyte;
        EXPECT_GT(scan(bytes), bytes / 100 * 9);
        expectSkipped("bomb.zip");
    });
}

TEST_F(Room, IsLeftByAnArchiveOfManySmallFiles) {
    // Each takes up a block: together 95 % of the disk, so all would fit.
    constexpr std::uintmax_t files = 20'000;
    constexpr std::uintmax_t block = 4096;
    std::vector<Member> members;
    for (std::uintmax_t i = 0; i < files; ++i) {
        members.push_back({.name = std::to_string(i), .content = "x"});
    }
    write(folder / "Set" / "bomb.tar", tarArchive(members));
    shell("gzip Set/bomb.tar", folder);
    inOwnMounts([&] {
        scan(files * block / 95 * 100);
        expectSkipped("bomb.tar.gz");
    });
}

TEST_F(Room, IsLeftByAnArchiveOfManyEmptyFiles) {
    // They take up no bytes: 95 % of the files that the disk has room for.
    constexpr std::uintmax_t files = 2'000;
    std::vector<Member> members;
    for (std::uintmax_t i = 0; i < files / 100 * 95; ++i) {
        members.push_back({.name = std::to_string(i)});
    }
    write(folder / "Set" / "bomb.tar", tarArchive(members));
    inOwnMounts([&] {
        scan(16 * megabyte, files);
        expectSkipped("bomb.tar");
    });
}

TEST_F(Room, IsWatchedWhileAToolRuns) {
    // The first tool writes too much and never ends; no other is to be asked.
    shell("tar -cf Set/bomb.tar Set/track.wav", folder);
    inOwnMounts([&] {
        replaceTool("/usr/bin/tar", "cd \"$5\" && yes | head -c 7700k | split -b 64k - && sleep 100000");
        replaceTool("/usr/bin/unzip", "sleep 100000");
        scan(8 * megabyte);
        expectSkipped("bomb.tar");
    });
}

TEST_F(Room, IsNotTakenByTheWorkingCopyOfALargeArchive) {
    // Its copy and its content do not fit on the disk together.
    shell("sox -R -n -r 44100 -c 2 -b 16 noise.wav synth 60 whitenoise && zip -0q Set/noise.zip noise.wav &&"
          "rm noise.wav",
          folder);
    inOwnMounts([&] {
        scan(16 * megabyte);
        EXPECT_EQ(run.errors, "");
        EXPECT_EQ(run.output, "1.000\t" + track.native() + "\n60.000\t" +
                                  (folder / "Set/noise.zip/noise.wav").native() + "\n");
    });
}

TEST_F(Room, ThatTheWorkingCopyTakesCountsAsWell) {
    shell("head -c 3M /dev/urandom >noise.wav && head -c 12M /dev/zero >zeros.wav &&"
          "zip -q Set/big.zip noise.wav zeros.wav && rm *.wav",
          folder);
    inOwnMounts([&] {
        scan(19 * megabyte); // 3 of copy and 15 of content fit, but take more than the share
        expectSkipped("big.zip");
    });
}

} // namespace
} // namespace velmora::test
