#include "gather/ExtractionCleanup.h"

#include "system/FileDescriptor.h"
#include "system/FolderReader.h"
#include "system/OwnerAccess.h"
#include "system/RemoveTree.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace velmora::Collector {

namespace {

/// An entry below an extraction directory that is no folder.
struct Entry {
    const std::string& folder; ///< that it stands in, relative to the directory; "" is the directory
    std::string_view name;
    EntryKind kind = EntryKind::other;

    struct statx status {}; ///< of a link nothing

    /// Relative to the directory.
    std::string path() const { return (folder.empty() ? "" : folder + '/') + std::string(name); }
};

/// An extraction directory, held open: whatever is done in it names its entries from here, so that nothing
/// put in the directory's own place is reached.
class Extraction {
public:
    explicit Extraction(const std::filesystem::path& directory)
        : m_folder(openOwnFolder(AT_FDCWD, directory.c_str())) {}

    /// Shows `look` every entry that is no folder, and lets the owner into every folder on the way. False
    /// when not all of them could be reached.
    bool forEach(const std::function<void(const Entry&)>& look) const {
        bool complete = static_cast<bool>(m_folder);
        std::vector<std::string> pending = {""};
        while (complete && !pending.empty()) {
            const std::string current = std::move(pending.back());
            pending.pop_back();
            FolderReader reader(openOwnFolder(m_folder.get(), current.empty() ? "." : current.c_str()));
            while (const std::optional<FolderEntry> found = reader.next()) {
                Entry entry{current, found->name, found->kind};
                if (found->kind == EntryKind::folder) {
                    pending.push_back(entry.path());
                } else if (found->kind == EntryKind::link || lookAt(reader.descriptor(), entry)) {
                    look(entry);
                } else {
                    complete = false;
                }
            }
            complete = complete && reader.error() == 0;
        }
        return complete;
    }

    /// Lets the owner read the files at `paths`.
    void openFiles(const std::vector<std::string>& paths) const {
        for (const std::string& path : paths) {
            grantOwner(m_folder.get(), path.c_str(), S_IRUSR);
        }
    }

    /// Removes the entries at `paths`; false when one of them is still there.
    bool remove(const std::vector<std::string>& paths) const {
        return std::ranges::count_if(paths, [&](const std::string& path) {
                   return ::unlinkat(m_folder.get(), path.c_str(), 0) != 0;
               }) == 0;
    }

    /// Whether the link at `path` leads to something in here, or nowhere without leaving. What the kernel
    /// does not follow to its end counts as leading out.
    bool keepsInside(const std::string& path) const {
        open_how how{};
        how.flags = O_PATH | O_CLOEXEC;
        how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS;
        FileDescriptor target;
        do { // again where something was renamed meanwhile, anywhere
            target = FileDescriptor(
                static_cast<int>(::syscall(SYS_openat2, m_folder.get(), path.c_str(), &how, sizeof how)));
        } while (!target && errno == EAGAIN);
        return target || errno == ENOENT || errno == ELOOP;
    }

private:
    static bool lookAt(int folder, Entry& entry) {
        constexpr unsigned wanted = STATX_TYPE | STATX_MODE | STATX_NLINK | STATX_INO;
        return ::statx(folder, entry.name.data(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, wanted,
                       &entry.status) == 0;
    }

    FileDescriptor m_folder;
};

/// The names that one file has in an extraction directory.
struct FileNames {
    std::uint32_t total = 0; ///< in the whole file system
    std::vector<std::string> here;
};

/// A device's two numbers, and a file's on it.
using FileKey = std::tuple<std::uint32_t, std::uint32_t, std::uint64_t>;

} // namespace

bool keepPlainFiles(const std::filesystem::path& directory) {
    const Extraction extraction(directory);
    std::vector<std::string> others;
    const bool complete = extraction.forEach([&](const Entry& entry) {
        if (!S_ISREG(entry.status.stx_mode) || entry.status.stx_nlink != 1) {
            others.push_back(entry.path());
        }
    });
    return extraction.remove(others) && complete;
}

bool keepOwnContent(const std::filesystem::path& directory) {
    const Extraction extraction(directory);
    std::vector<std::string> links;
    std::vector<std::string> foreign;
    std::vector<std::string> closed;
    std::map<FileKey, FileNames> files;
    const bool complete = extraction.forEach([&](const Entry& entry) {
        const struct statx& status = entry.status;
        if (entry.kind == EntryKind::link) {
            links.push_back(entry.path());
        } else if (!S_ISREG(status.stx_mode)) {
            foreign.push_back(entry.path());
        } else {
            if (status.stx_nlink > 1) {
                FileNames& names = files[{status.stx_dev_major, status.stx_dev_minor, status.stx_ino}];
                names.total = status.stx_nlink;
                names.here.push_back(entry.path());
            }
            if ((status.stx_mode & S_IRUSR) == 0) {
                closed.push_back(entry.path());
            }
        }
    });
    // Not before every folder on a link's way is open.
    std::ranges::copy_if(links, std::back_inserter(foreign),
                         [&](const std::string& link) { return !extraction.keepsInside(link); });
    for (const auto& [file, names] : files) {
        if (names.total > names.here.size()) {
            foreign.insert(foreign.end(), names.here.begin(), names.here.end());
        }
    }
    const bool isClean = extraction.remove(foreign) && complete;
    if (isClean) { // only now is none of them a file from outside
        extraction.openFiles(closed);
    }
    return isClean;
}

bool makeEmpty(const std::filesystem::path& directory) {
    removeTree(directory);
    return ::mkdir(directory.c_str(), S_IRWXU) == 0;
}

} // namespace velmora::Collector
