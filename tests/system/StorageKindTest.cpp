#include "system/StorageKind.h"

#include "system/RegularFile.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>
#include <sys/sysmacros.h>

#include <fstream>
#include <sstream>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// The disks of this machine and their partitions, by the names of their numbers: "8:1".
const fs::path blockDevices = "/sys/dev/block";

dev_t numberOf(const std::string& name) {
    std::istringstream text(name);
    unsigned majorNumber = 0;
    unsigned minorNumber = 0;
    char colon = '\0';
    text >> majorNumber >> colon >> minorNumber;
    return makedev(majorNumber, minorNumber);
}

TEST(StorageKind, OfADiskIsWhatTheKernelSaysOfItsQueue) {
    int disks = 0;
    for (const fs::directory_entry& device : fs::directory_iterator(blockDevices)) {
        std::ifstream queue(device.path() / "queue" / "rotational");
        if (int rotates = 0; queue >> rotates) {
            const auto expected = rotates == 1 ? StorageKind::rotating : StorageKind::quick;
            EXPECT_EQ(storageKindOfBlockDevice(numberOf(device.path().filename())), expected) << device;
            ++disks;
        }
    }
    EXPECT_GT(disks, 0) << "this machine has no block device at all";
}

TEST(StorageKind, OfAPartitionIsThatOfItsDisk) {
    for (const fs::directory_entry& device : fs::directory_iterator(blockDevices)) {
        if (fs::exists(device.path() / "partition")) {
            const std::string disk =
                test::read(fs::canonical(device.path()).parent_path() / "dev"); // "8:0\n"
            EXPECT_EQ(storageKindOfBlockDevice(numberOf(device.path().filename())),
                      storageKindOfBlockDevice(numberOf(disk)))
                << device;
        }
    }
}

TEST(StorageKind, OfWhatIsInMemoryIsQuick) {
    for (const char* path : {"/proc/self/status", "/sys/kernel/mm/transparent_hugepage/enabled"}) {
        const auto file = RegularFile::open(path);
        ASSERT_TRUE(file) << path;
        EXPECT_EQ(file->storage(), StorageKind::quick) << path;
    }
}

TEST(StorageKind, OfNoBlockDeviceIsQuick) {
    EXPECT_EQ(storageKindOfBlockDevice(makedev(0, 99)), StorageKind::quick);
}

TEST(MountSource, IsFoundByTheMountsIdentity) {
    std::istringstream table(
        "22 1 0:21 / /proc rw,relatime - proc proc rw\n"
        "36 22 0:45 /@home /home rw shared:1 master:2 - btrfs /dev/sdb3 rw,subvol=/@home\n"
        "360 22 8:1 / /mnt rw - ext4 /dev/sda1 rw\n");
    EXPECT_EQ(mountSource(table, 36), "/dev/sdb3");
}

TEST(MountSource, IsEmptyForAMountThatIsNotThere) {
    std::istringstream table("22 1 0:21 / /proc rw,relatime - proc proc rw\n"
                             "23 1 0:22 / /cut rw\n");
    EXPECT_EQ(mountSource(table, 7), "");
    table.clear();
    table.seekg(0);
    EXPECT_EQ(mountSource(table, 23), "");
}

} // namespace

} // namespace velmora
