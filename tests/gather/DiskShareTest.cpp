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

} // namespace
} // namespace velmora::test
