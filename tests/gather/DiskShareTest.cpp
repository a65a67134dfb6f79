#include "gather/DiskShare.h"

#include "gather/ArchiveExtraction.h"
#include "system/TempRegistry.h"
#include "tests/support/OwnMounts.h"
#include "tests/support/Shell.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace velmora::test {
namespace {

constexpr std::uintmax_t megabyte = std::uintmax_t{1} << 20;

std::string zeros(std::uintmax_t bytes) {
    return std::string(bytes, '\0');
}

TEST(DiskShare, IsNineTenthsOfWhatIsFreeForItsOwnFilesAlone) {
    inOwnMounts([&] {
        const fs::path disk = freshFolder();
        mountSmallDisk(disk, 10 * megabyte);
        Collector::DiskShare share(disk);
        share.count(disk / "own");
        EXPECT_EQ(share.bytes(), 9 * megabyte);
        write(disk / "other", zeros(9 * megabyte + megabyte / 2));
        EXPECT_FALSE(share.isExceeded());
        write(disk / "own/1", zeros(megabyte / 4));
        EXPECT_FALSE(share.isExceeded());
        fs::remove(disk / "other");
        EXPECT_FALSE(share.isExceeded());
        write(disk / "own/2", zeros(8 * megabyte));
        fs::create_hard_link(disk / "own/2", disk / "own/3"); // takes no room
        EXPECT_FALSE(share.isExceeded());
        write(disk / "own/deep/4", zeros(megabyte / 2));
        EXPECT_FALSE(share.isExceeded());
        write(disk / "own/deep/5", zeros(megabyte / 2));
        EXPECT_TRUE(share.isExceeded());
        fs::remove_all(disk / "own");
        EXPECT_TRUE(share.isExceeded());
    });
}

TEST(DiskShare, IsNotAskedOfTheFilesBeforeTheDiskHasShrunkByIt) {
    inOwnMounts([] {
        const fs::path disk = freshFolder();
        mountSmallDisk(disk, 20 * megabyte);
        write(disk / "own/1", zeros(10 * megabyte)); // too much, were it counted
        Collector::DiskShare share(disk);
        share.count(disk / "own");
        EXPECT_FALSE(share.isExceeded());
        write(disk / "other/1", zeros(4 * megabyte));
        EXPECT_FALSE(share.isExceeded());
        write(disk / "other/2", zeros(5 * megabyte));
        EXPECT_FALSE(share.isExceeded());
        write(disk / "other/3", zeros(1));
        EXPECT_TRUE(share.isExceeded());
    });
}

TEST(DiskShare, CountsAFileOfTwoNamesOnce) {
    inOwnMounts([] {
        const fs::path disk = freshFolder();
        mountSmallDisk(disk, 10 * megabyte);
        Collector::DiskShare share(disk);
        share.count(disk / "own");
        write(disk / "own/1", zeros(8 * megabyte));
        fs::create_hard_link(disk / "own/1", disk / "own/2");
        write(disk / "other", zeros(megabyte + megabyte / 2)); // so that they are counted
        EXPECT_FALSE(share.isExceeded());
    });
}

TEST(DiskShare, IsNineTenthsOfTheFilesThatThereIsRoomFor) {
    inOwnMounts([] {
        const fs::path disk = freshFolder();
        mountSmallDisk(disk, megabyte, 101);
        ASSERT_EQ(fs::space(disk).available, megabyte);
        Collector::DiskShare share(disk);
        share.count(disk / "own");
        const auto make = [&disk](const std::string& folder, int first, int last) {
            for (int i = first; i <= last; ++i) {
                write(disk / folder / std::to_string(i));
            }
        };
        make("other", 1, 5);
        make("own", 1, 89); // and the folder: 90 of 100
        EXPECT_FALSE(share.isExceeded());
        fs::remove_all(disk / "other");
        EXPECT_FALSE(share.isExceeded());
        make("own", 90, 90);
        EXPECT_TRUE(share.isExceeded());
        fs::remove_all(disk / "own");
        EXPECT_TRUE(share.isExceeded());
    });
}

TEST(DiskShare, IsTakenByTheWorkingCopyAsByTheContent) {
    const fs::path folder = freshFolder();
    shell("head -c 3M /dev/urandom >noise.wav && head -c 12M /dev/zero >zeros.wav && zip -q big.zip *.wav",
          folder);
    inOwnMounts([&] {
        const fs::path disk = freshFolder();
        ::setenv("TMPDIR", disk.c_str(), 1);
        mountSmallDisk(disk, 19 * megabyte); // 3 of copy and 15 of content fit, but take more than the share
        EXPECT_EQ(Collector::extract(folder / "big.zip").why, Reason::noRoom);
        EXPECT_EQ(namesIn(disk), std::vector<std::string>());
        mountSmallDisk(disk, 24 * megabyte);
        EXPECT_EQ(Collector::extract(folder / "big.zip").why, std::nullopt);
    });
}

TEST(DiskShare, IsTakenAfterWhatAnEarlierScanLeftIsGone) {
    const fs::path folder = freshFolder();
    shell("head -c 3M /dev/urandom >noise.wav && zip -q noise.zip noise.wav", folder);
    inOwnMounts([&] {
        const fs::path disk = freshFolder();
        ::setenv("TMPDIR", disk.c_str(), 1);
        mountSmallDisk(disk, 16 * megabyte);
        write(disk / "velmora-old" / "1", zeros(14 * megabyte));
        TempRegistry::add({disk / "velmora-old"});
        const std::function<void()> deleteAll = TempRegistry::release();
        std::thread deleting([&] {
            while (namesIn(disk).size() < 2) { // the new one is there, so the share is about to be taken
                std::this_thread::yield();
            }
            deleteAll();
        });
        EXPECT_EQ(Collector::extract(folder / "noise.zip").why, std::nullopt);
        deleting.join();
    });
}

} // namespace
} // namespace velmora::test
