#include "system/Storage.h"

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

constexpr std::int64_t farAhead = 1024; // in KiB

/// Nothing where `device` has no queue, as a partition has none.
std::optional<Storage> storageByQueue(const std::string& device) {
    const std::string queue = "/sys/dev/block/" + device + "/queue/";
    int rotates = 0;
    if (!(std::ifstream(queue + "rotational") >> rotates)) {
        return std::nullopt;
    }
    std::int64_t readAhead = 0;
    std::ifstream(queue + "read_ahead_kb") >> readAhead;
    return Storage{rotates == 1 ? StorageKind::rotating : StorageKind::quick, readAhead >= farAhead};
}

std::optional<Storage> storageByBlockDevice(dev_t device) {
    const std::string name = std::to_string(major(device)) + ":" + std::to_string(minor(device));
    const std::optional<Storage> storage = storageByQueue(name);
    return storage ? storage : storageByQueue(name + "/.."); // of the disk that holds the partition
}

/// Of a file system without a block device of its own.
Storage storageByMount(int descriptor) {
    struct statx status {};

    if (::statx(descriptor, "", AT_EMPTY_PATH, STATX_MNT_ID, &status) != 0 ||
        (status.stx_mask & STATX_MNT_ID) == 0) {
        return {};
    }
    std::ifstream table("/proc/self/mountinfo");

    struct stat source {};

    if (::stat(mountSource(table, status.stx_mnt_id).c_str(), &source) != 0 || !S_ISBLK(source.st_mode)) {
        return {};
    }
    return storageOfBlockDevice(source.st_rdev);
}

Storage askedStorage(int descriptor, dev_t device) {
    // First, for a file system in a program may well lie on a disk of this machine, and then has its number.
    if (const auto storage = storageByBlockDevice(device)) {
        return *storage;
    }

    struct statfs system {};

    if (::fstatfs(descriptor, &system) != 0) {
        return {};
    }
    const bool isNetwork = std::ranges::find(networkFileSystems, static_cast<std::uint32_t>(system.f_type)) !=
                           networkFileSystems.end();
    return isNetwork ? Storage{StorageKind::network} : storageByMount(descriptor);
}

} // namespace

Storage storageOf(int descriptor, dev_t device) {
    static std::mutex lock;
    static std::map<dev_t, Storage> known;
    {
        const std::lock_guard guard(lock);
        if (const auto place = known.find(device); place != known.end()) {
            return place->second;
        }
    }
    const Storage storage = askedStorage(descriptor, device); // a server may take its time
    const std::lock_guard guard(lock);
    known.emplace(device, storage);
    return storage;
}

Storage storageOfBlockDevice(dev_t device) {
    return storageByBlockDevice(device).value_or(Storage());
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
