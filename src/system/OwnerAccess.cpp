#include "system/OwnerAccess.h"

#include "system/FolderReader.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <string>
#include <vector>

namespace velmora {

void grantOwner(int parent, const char* name, mode_t bits) {
    const FileDescriptor handle(::openat(parent, name, O_PATH | O_NOFOLLOW | O_CLOEXEC));

    struct stat status {};

    if (!handle || ::fstat(handle.get(), &status) != 0 || S_ISLNK(status.st_mode) ||
        (status.st_mode & bits) == bits) {
        return;
    }
    // Through the handle, not the name: whoever else may write here could put a link in the entry's place.
    const std::string entry = "/proc/self/fd/" + std::to_string(handle.get());
    ::chmod(entry.c_str(), (status.st_mode | bits) & ALLPERMS);
}

void grantOwnerBelow(const std::filesystem::path& folder) {
    std::vector<std::string> pending = {folder.native()};
    while (!pending.empty()) {
        const std::string current = std::move(pending.back());
        pending.pop_back();
        FolderReader reader(current);
        while (const std::optional<FolderEntry> entry = reader.next()) {
            std::string path = current + '/' + std::string(entry->name);
            const bool isFolder = entry->kind == EntryKind::folder;
            grantOwner(AT_FDCWD, path.c_str(), isFolder ? S_IRWXU : S_IRUSR);
            if (isFolder) {
                pending.push_back(std::move(path));
            }
        }
    }
}

} // namespace velmora
