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
#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace velmora::Collector {

namespace {

/// An entry below an extraction directory that is no folder.
struct Entry {
    std::string path; ///< relative to the directory

    struct stat status {};
};

/// An extraction directory, held open: whatever is done in it names its entries from here, so that nothing
/// put in the directory's own place is reached.
class Extraction {
public:
    explicit Extraction(const std::filesystem::path& directory) {
        grantOwner(AT_FDCWD, directory.c_str(), S_IRWXU);
        m_folder = FileDescriptor(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    }

    /// Shows `look` every entry that is no folder, and lets the owner into every folder on the way. False
    /// when not all of them could be reached.
    bool forEach(const std::function<void(const Entry&)>& look) const {
        bool complete = static_cast<bool>(m_folder);
        std::vector<std::string> pending = {""};
        while (complete && !pending.empty()) {
            const std::string current = std::move(pending.back());
            pending.pop_back();
            if (!current.empty()) {
                grantOwner(m_folder.get(), current.c_str(), S_IRWXU);
            }
            FileDescriptor folder(::openat(m_folder.get(), current.empty() ? "." : current.c_str(),
                                           O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
            complete = static_cast<bool>(folder);
            FolderReader reader(std::move(folder));
            while (const std::optional<FolderEntry> found = reader.next()) {
                Entry entry{(current.empty() ? "" : current + '/') + std::string(found->name)};
                if (::fstatat(m_folder.get(), entry.path.c_str(), &entry.status, AT_SYMLINK_NOFOLLOW) != 0) {
                    complete = false;
                } else if (S_ISDIR(entry.status.st_mode)) {
                    pending.push_back(std::move(entry.path));
                } else {
                    look(entry);
                }
            }
            complete = complete && reader.error() == 0;
        }
        return complete;
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
    FileDescriptor m_folder;
};

/// The names that one file has in an extraction directory.
struct FileNames {
    nlink_t total = 0; ///< in the whole file system
    std::vector<std::string> here;
};

} // namespace

bool keepPlainFiles(const std::filesystem::path& directory) {
    const Extraction extraction(directory);
    std::vector<std::string> others;
    const bool complete = extraction.forEach([&](const Entry& entry) {
        if (!S_ISREG(entry.status.st_mode) || entry.status.st_nlink != 1) {
            others.push_back(entry.path);
        }
    });
    return extraction.remove(others) && complete;
}

bool keepOwnContent(const std::filesystem::path& directory) {
    const Extraction extraction(directory);
    std::vector<std::string> links;
    std::vector<std::string> foreign;
    std::map<std::pair<dev_t, ino_t>, FileNames> files;
    const bool complete = extraction.forEach([&](const Entry& entry) {
        if (S_ISLNK(entry.status.st_mode)) {
            links.push_back(entry.path);
        } else if (!S_ISREG(entry.status.st_mode)) {
            foreign.push_back(entry.path);
        } else if (entry.status.st_nlink > 1) {
            FileNames& names = files[{entry.status.st_dev, entry.status.st_ino}];
            names.total = entry.status.st_nlink;
            names.here.push_back(entry.path);
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
    grantOwnerBelow(directory);
    return isClean;
}

bool makeEmpty(const std::filesystem::path& directory) {
    removeTree(directory);
    return ::mkdir(directory.c_str(), S_IRWXU) == 0;
}

} // namespace velmora::Collector
