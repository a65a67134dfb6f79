#include "system/RemoveTree.h"

#include "system/FolderReader.h"
#include "system/OwnerAccess.h"
#include "system/Uuid.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmora {

namespace {

/// What fails once, as on a disk that is busy, is tried so often.
constexpr int removalAttempts = 2;

struct Entries {
    std::vector<std::string> folders;
    std::vector<std::string> others;
};

Entries entriesOf(FolderReader& reader) {
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

/// Moves the folder `name` from `parent` to `top`, under a new name; that name, absent when it cannot be
/// moved.
std::optional<std::string> movedUp(int parent, const char* name, int top) {
    std::string moved = randomUuid();
    bool isMoved = ::renameat(parent, name, top, moved.c_str()) == 0;
    if (!isMoved && errno == EACCES) {
        grantOwner(parent, name, S_IRWXU); // moving a folder writes its ".."
        isMoved = ::renameat(parent, name, top, moved.c_str()) == 0;
    }
    return isMoved ? std::optional(std::move(moved)) : std::nullopt;
}

/// Empties the tree below `top` without ever going deeper than two levels: a folder's folders are moved up
/// beside it before it is removed, so neither the depth of the tree nor the length of its paths matters.
void empty(FileDescriptor top) {
    FolderReader topReader(std::move(top));
    const int topFolder = topReader.descriptor();
    const Entries first = entriesOf(topReader);
    unlinkAll(topFolder, first.others);
    std::vector<std::string> pending = first.folders;
    while (!pending.empty()) {
        const std::string name = std::move(pending.back());
        pending.pop_back();
        FolderReader reader(openOwnFolder(topFolder, name.c_str()));
        const Entries entries = entriesOf(reader);
        unlinkAll(reader.descriptor(), entries.others);
        for (const std::string& child : entries.folders) {
            if (std::optional<std::string> moved = movedUp(reader.descriptor(), child.c_str(), topFolder)) {
                pending.push_back(*std::move(moved));
            }
        }
        ::unlinkat(topFolder, name.c_str(), AT_REMOVEDIR);
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
    if (FileDescriptor top = openOwnFolder(AT_FDCWD, path)) {
        empty(std::move(top));
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
