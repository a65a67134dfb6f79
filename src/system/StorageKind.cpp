#include "system/StorageKind.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>

namespace velmora {

namespace {

/// The file systems that ask another machine, or a program that may ask one (statfs(2), linux/magic.h;
/// those without a name there: the headers of Lustre, OrangeFS and Spectrum Scale).
constexpr auto networkFileSystems = std::to_array<std::uint32_t>({
    NFS_SUPER_MAGIC, SMB_SUPER_MAGIC, CIFS_SUPER_MAGIC, SMB2_SUPER_MAGIC, FUSE_SUPER_MAGIC, V9FS_MAGIC,
    AFS_SUPER_MAGIC, AFS_FS_MAGIC, CEPH_SUPER_MAGIC, CODA_SUPER_MAGIC,
    0x0BD00BD0, // Lustre
    0x20030528, // OrangeFS
    0x47504653, // Spectrum Scale
});

/// Nothing where `device` has no queue, as a partition has none.
std::optional<StorageKind> kindByQueue(const std::string& device) {
    std::ifstream file("/sys/dev/block/" + device + "/queue/rotational");
    char rotates = '\0';
    if (!(file >> rotates)) {
        return std::nullopt;
    }
    return rotates == '1' ? StorageKind::rotating : StorageKind::quick;
}

std::optional<StorageKind> kindByBlockDevice(dev_t device) {
    const std::string name = std::to_string(major(device)) + ":" + std::to_string(minor(device));
    const std::optional<StorageKind> kind = kindByQueue(name);
    return kind ? kind : kindByQueue(name + "/.."); // of the disk that holds the partition
}

/// Of a file system without a block device of its own.
StorageKind kindByMount(int descriptor) {
    struct statx status {};

    if (::statx(descriptor, "", AT_EMPTY_PATH, STATX_MNT_ID, &status) != 0 ||
        (status.stx_mask & STATX_MNT_ID) == 0) {
        return StorageKind::quick;
    }
    std::ifstream table("/proc/self/mountinfo");

    struct stat source {};

    if (::stat(mountSource(table, status.stx_mnt_id).c_str(), &source) != 0 || !S_ISBLK(source.st_mode)) {
        return StorageKind::quick;
    }
    return storageKindOfBlockDevice(source.st_rdev);
}

StorageKind askedKind(int descriptor, dev_t device) {
    // First, for a file system in a program may well lie on a disk of this machine, and then has its number.
    if (const auto kind = kindByBlockDevice(device)) {
        return *kind;
    }

    struct statfs system {};

    if (::fstatfs(descriptor, &system) != 0) {
        return StorageKind::quick;
    }
    const bool isNetwork = std::ranges::find(networkFileSystems, static_cast<std::uint32_t>(system.f_type)) !=
                           networkFileSystems.end();
    return isNetwork ? StorageKind::network : kindByMount(descriptor);
}

} // namespace

StorageKind storageKind(int descriptor, dev_t device) {
    static std::mutex lock;
    static std::map<dev_t, StorageKind> known;
    {
        const std::lock_guard guard(lock);
        if (const auto place = known.find(device); place != known.end()) {
            return place->second;
        }
    }
    const StorageKind kind = askedKind(descriptor, device); // a server may take its time
    const std::lock_guard guard(lock);
    known.emplace(device, kind);
    return kind;
}

StorageKind storageKindOfBlockDevice(dev_t device) {
    return kindByBlockDevice(device).value_or(StorageKind::quick);
}

std::filesystem::path mountSource(std::istream& table, std::uint64_t mount) {
    std::string line;
    while (std::getline(table, line)) {
        std::istringstream fields(line);
        std::uint64_t identity = 0;
        std::string field;
        fields >> identity;
        if (identity != mount) {
            continue;
        }
        while (fields >> field && field != "-") { // a variable number of fields ends so
        }
        fields >> field >> field; // the type, then the source
        return fields ? field : std::string();
    }
    return {};
}

} // namespace velmora
