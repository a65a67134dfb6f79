#include "system/RemoveTree.h"

#include "system/FolderReader.h"
#include "system/OwnerAccess.h"
#include "system/Uuid.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <string>
#include <vector>

namespace velmora {

namespace {

constexpr mode_t ownerMayAll = S_IRWXU;

/// What fails once, as on a disk that is busy, is tried so often.
constexpr int removalAttempts = 2;

struct Entries {
    std::vector<std::string> folders;
    std::vector<std::string> others;
};

/// Opens the folder `name` in `parent`, with the owner's permissions restored.
FileDescriptor openFolder(int parent, const char* name) {
    grantOwner(parent, name, ownerMayAll);
    return FileDescriptor(::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

Entries entriesOf(int folder) {
    FolderReader reader(FileDescriptor(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
    Entries result;
    while (const std::optional<FolderEntry> entry = reader.next()) {
        (entry->kind == EntryKind::folder ? result.folders : result.others).emplace_back(entry->name);
    }
    return result;
}

void unlinkAll(int folder, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        ::unlinkat(folder, name.c_str(), 0);
    }
}

/// Empties the tree below `top` without ever going deeper than two levels: a folder's folders are moved up
/// beside it before it is removed, so neither the depth of the tree nor the length of its paths matters.
void empty(int top) {
    const Entries first = entriesOf(top);
    unlinkAll(top, first.others);
    std::vector<std::string> pending = first.folders;
    while (!pending.empty()) {
        const std::string name = std::move(pending.back());
        pending.pop_back();
        if (const FileDescriptor folder = openFolder(top, name.c_str())) {
            const Entries entries = entriesOf(folder.get());
            unlinkAll(folder.get(), entries.others);
            for (const std::string& child : entries.folders) {
                std::string moved = randomUuid();
                grantOwner(folder.get(), child.c_str(), ownerMayAll); // moving a folder writes its ".."
                if (::renameat(folder.get(), child.c_str(), top, moved.c_str()) == 0) {
                    pending.push_back(std::move(moved));
                }
            }
        }
        ::unlinkat(top, name.c_str(), AT_REMOVEDIR);
    }
}

bool isGone(int result) {
    return result == 0 || errno == ENOENT || errno == ENOTDIR;
}

/// Whether nothing is at `path` afterwards.
bool removeOnce(const char* path) {
    if (isGone(::unlink(path))) {
        return true;
    }
    if (const FileDescriptor top = openFolder(AT_FDCWD, path)) {
        empty(top.get());
    }
    return isGone(::rmdir(path));
}

} // namespace

bool removeTree(const std::filesystem::path& path) noexcept {
    bool gone = false;
    for (int attempt = 0; !gone && attempt < removalAttempts; ++attempt) {
        try {
            gone = removeOnce(path.c_str());
        } catch (const std::exception&) { // no memory
        }
    }
    return gone;
}

} // namespace velmora
