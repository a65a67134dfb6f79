#include "gather/DiskShare.h"

#include "tests/support/OwnMounts.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

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

} // namespace
} // namespace velmora::test
