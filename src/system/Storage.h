#pragma once

// What stands behind a file system, as far as it decides how files are best read from it: whether a seek or a
// round trip costs a thousand times what the bytes cost.

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <iosfwd>

namespace velmora {

enum class StorageKind : std::uint8_t {
    quick,    ///< memory, a solid-state disk, and whatever cannot be told
    rotating, ///< a disk with heads: what matters is that they move little
    network,  ///< another machine or a program answers: what matters is how many questions wait for another
};

struct Storage {
    StorageKind kind = StorageKind::quick;

    /// Whether the kernel by itself reads so far ahead, a megabyte or more, that a disk seeks little when it
    /// serves several readers.
    bool readsFarAhead = false;
};

/// Of the file open at `descriptor`, which lies on `device` (`st_dev`). A device is asked for once, then
/// remembered; any thread. A virtual disk is what its host says it is, often a rotating one.
Storage storageOf(int descriptor, dev_t device);

/// What the kernel says of the block device `device` or of the disk that it is a partition of, in
/// `rotational` and `read_ahead_kb` of /sys/dev/block/MAJOR:MINOR/queue (Linux,
/// Documentation/ABI/stable/sysfs-block). `quick` for what is no block device. Volumes of the device mapper,
/// of LUKS and of RAID have a queue of their own.
Storage storageOfBlockDevice(dev_t device);

/// The source of the mount with the identity `mount` in `table`, which is written as /proc/self/mountinfo is
/// (proc(5)); empty if it is not in there. It tells the disk of a file system with device numbers of its own,
/// as btrfs has.
std::filesystem::path mountSource(std::istream& table, std::uint64_t mount);

} // namespace velmora
