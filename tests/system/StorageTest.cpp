#include "system/Storage.h"

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

TEST(Storage, OfADiskIsWhatTheKernelSaysOfItsQueue) {
    int disks = 0;
    for (const fs::directory_entry& device : fs::directory_iterator(blockDevices)) {
        std::ifstream queue(device.path() / "queue" / "rotational");
        if (int rotates = 0; queue >> rotates) {
            const Storage storage = storageOfBlockDevice(numberOf(device.path().filename()));
            EXPECT_EQ(storage.kind, rotates == 1 ? StorageKind::rotating : StorageKind::quick) << device;
            const int readAhead = std::stoi(test::read(device.path() / "queue" / "read_ahead_kb"));
            EXPECT_EQ(storage.readsFarAhead, readAhead >= 1024) << device;
            ++disks;
        }
    }
    EXPECT_GT(disks, 0) << "this machine has no block device at all";
}

TEST(Storage, OfAPartitionIsThatOfItsDisk) {
    for (const fs::directory_entry& device : fs::directory_iterator(blockDevices)) {
        if (fs::exists(device.path() / "partition")) {
            const std::string disk =
                test::read(fs::canonical(device.path()).parent_path() / "dev"); // "8:0\n"
            EXPECT_EQ(storageOfBlockDevice(numberOf(device.path().filename())).kind,
                      storageOfBlockDevice(numberOf(disk)).kind)
                << device;
        }
    }
}

TEST(Storage, OfWhatIsInMemoryIsQuick) {
    for (const char* path : {"/proc/self/status", "/sys/kernel/mm/transparent_hugepage/enabled"}) {
        const auto file = RegularFile::open(path);
        ASSERT_TRUE(file) << path;
        EXPECT_EQ(file->storage().kind, StorageKind::quick) << path;
    }
}

TEST(Storage, OfNoBlockDeviceIsQuick) {
    EXPECT_EQ(storageOfBlockDevice(makedev(0, 99)).kind, StorageKind::quick);
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
