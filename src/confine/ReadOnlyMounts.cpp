#include "confine/ReadOnlyMounts.h"

#include <fcntl.h>
#include <linux/mount.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace velmora {

namespace {

bool writeFile(const char* path, const std::string& text) {
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    const bool written =
        file >= 0 && ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    ::close(file);
    return written;
}

/// Enters a mount namespace of its own; whoever is not root needs a user namespace for it, as the same user.
bool enterNamespace() {
    if (::unshare(CLONE_NEWNS) == 0) {
        return true;
    }
    const std::string user = std::to_string(::geteuid());
    const std::string group = std::to_string(::getegid());
    return ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && writeFile("/proc/self/setgroups", "deny") &&
           writeFile("/proc/self/uid_map", user + ' ' + user + " 1") &&
           writeFile("/proc/self/gid_map", group + ' ' + group + " 1");
}

bool setReadOnly(const char* path, bool readOnly, unsigned flags) {
    mount_attr attributes{};
    (readOnly ? attributes.attr_set : attributes.attr_clr) = MOUNT_ATTR_RDONLY;
    return ::syscall(SYS_mount_setattr, AT_FDCWD, path, flags, &attributes, sizeof attributes) == 0;
}

/// Whether the kernel knows the call at all, which it says before it looks at the rest.
bool canSetAttributes() {
    return ::syscall(SYS_mount_setattr, -1, nullptr, 0, nullptr, 0) == 0 || errno != ENOSYS;
}

} // namespace

Layer mountReadOnly(const std::filesystem::path& writable) {
    if (!canSetAttributes() || !enterNamespace() ||
        ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        return Layer::notOffered;
    }
    const bool writes = !writable.empty();
    const char* const folder = writable.c_str();
    if (writes && ::mount(folder, folder, nullptr, MS_BIND, nullptr) != 0) {
        throw WallError("cannot mount the folder to write to");
    }
    if (!setReadOnly("/", true, AT_RECURSIVE) || (writes && !setReadOnly(folder, false, 0))) {
        throw WallError("cannot mount read-only");
    }
    return Layer::stands;
}

} // namespace velmora
