#include "system/RemoveTree.h"

#include "system/RegularFile.h"
#include "system/Uuid.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <new>
#include <string>
#include <vector>

namespace velmora {

namespace {

constexpr mode_t ownerMayAll = S_IRWXU;

struct Entries {
    std::vector<std::string> directories;
    std::vector<std::string> others;
};

bool isDirectory(int parent, const char* name) {
    struct stat status {};

    return ::fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

/// Opens the directory `name` in `parent`, with the owner's permissions restored.
FileDescriptor openDirectory(int parent, const char* name) {
    ::fchmodat(parent, name, ownerMayAll, 0);
    return FileDescriptor(::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

Entries entriesOf(int directory) {
    Entries result;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(
        ::fdopendir(::openat(directory, ".", O_RDONLY | O_CLOEXEC)), &::closedir);
    if (!stream) {
        return result;
    }
    while (const dirent* entry = ::readdir(stream.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            (isDirectory(directory, name.c_str()) ? result.directories : result.others).push_back(name);
        }
    }
    return result;
}

void unlinkAll(int directory, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        ::unlinkat(directory, name.c_str(), 0);
    }
}

/// Empties the tree below `top` without ever going deeper than two levels: a folder's folders are moved up
/// beside it before it is removed, so neither the depth of the tree nor the length of its paths matters.
void empty(int top) {
    const Entries first = entriesOf(top);
    unlinkAll(top, first.others);
    std::vector<std::string> pending = first.directories;
    while (!pending.empty()) {
        const std::string name = std::move(pending.back());
        pending.pop_back();
        if (const FileDescriptor directory = openDirectory(top, name.c_str())) {
            const Entries entries = entriesOf(directory.get());
            unlinkAll(directory.get(), entries.others);
            for (const std::string& child : entries.directories) {
                std::string moved = randomUuid();
                ::fchmodat(directory.get(), child.c_str(), ownerMayAll, 0); // moving a folder writes its ".."
                if (::renameat(directory.get(), child.c_str(), top, moved.c_str()) == 0) {
                    pending.push_back(std::move(moved));
                }
            }
        }
        ::unlinkat(top, name.c_str(), AT_REMOVEDIR);
    }
}

} // namespace

void removeTree(const std::filesystem::path& path) noexcept {
    try {
        if (isDirectory(AT_FDCWD, path.c_str())) {
            if (const FileDescriptor top = openDirectory(AT_FDCWD, path.c_str())) {
                empty(top.get());
            }
            ::rmdir(path.c_str());
        } else {
            ::unlink(path.c_str());
        }
    } catch (const std::bad_alloc&) { // nothing more can be removed
    }
}

} // namespace velmora
