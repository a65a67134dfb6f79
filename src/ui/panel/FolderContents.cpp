#include "ui/panel/FolderContents.h"

#include "records/AudioExtensions.h"
#include "system/FileDescriptor.h"
#include "system/FileName.h"
#include "system/FolderReader.h"
#include "system/NaturalOrder.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <future>
#include <span>
#include <string>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

constexpr int maxThreads = 4;

ListedKind kindByName(const std::string& name) {
    const std::string extension = classifyingExtension(name);
    if (Collector::isAudio(extension)) {
        return ListedKind::audio;
    }
    return Collector::isArchive(extension) ? ListedKind::archive : ListedKind::other;
}

bool isFolder(int parent, const FolderEntry& entry) {
    struct stat status {};

    return entry.kind == EntryKind::folder ||
           (entry.kind == EntryKind::link && ::fstatat(parent, entry.name.data(), &status, 0) == 0 &&
            S_ISDIR(status.st_mode));
}

/// A file with what puts it in its place.
struct Sortable {
    ListedFile file;
    std::string key;

    bool operator<(const Sortable& other) const {
        const int compared = key.compare(other.key);
        return compared != 0 ? compared < 0 : file.name < other.file.name;
    }
};

using Part = std::span<Sortable>;

void sortPart(Part part) {
    NaturalOrder order;
    for (Sortable& one : part) {
        order.append(one.file.name, one.key);
    }
    std::ranges::sort(part, std::less<>());
}

/// Sorts large numbers of files on as many threads. Most of the time goes into their keys.
void sortInParts(Part files, int threads) {
    constexpr std::size_t large = 2000;
    if (threads < 2 || files.size() < large) {
        sortPart(files);
        return;
    }
    const std::size_t half = files.size() / 2;
    const auto first = [=] { sortInParts(files.first(half), threads / 2); };
    std::future<void> other;
    try {
        other = std::async(std::launch::async, first);
    } catch (const std::system_error&) { // there is no further thread
        first();
    }
    sortInParts(files.subspan(half), threads / 2);
    if (other.valid()) {
        other.get();
    }
    std::inplace_merge(files.begin(), files.begin() + static_cast<std::ptrdiff_t>(half), files.end());
}

} // namespace

FolderContents readFolder(const std::filesystem::path& folder) {
    FolderContents contents{.folder = folder};
    const FileDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened) {
        contents.error = errno;
        return contents;
    }
    FolderReader reader(FileDescriptor(::fcntl(opened.get(), F_DUPFD_CLOEXEC, 0)));
    std::vector<Sortable> files;
    while (const auto entry = reader.next()) {
        std::string name(entry->name);
        const ListedKind kind = isFolder(opened.get(), *entry) ? ListedKind::folder : kindByName(name);
        files.push_back({ListedFile{.name = std::move(name), .kind = kind}, {}});
    }
    contents.error = reader.error();
    sortInParts(Part(files), maxThreads);
    contents.files.reserve(files.size());
    for (Sortable& one : files) {
        contents.files.push_back(std::move(one.file));
    }
    return contents;
}

void lookAtFiles(FolderContents& contents) {
    const FileDescriptor opened(::open(contents.folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (ListedFile& file : contents.files) {
        struct statx status {};

        // What a network's file system knows already is enough, and nothing is mounted.
        if (::statx(opened.get(), file.name.c_str(), AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC,
                    STATX_SIZE | STATX_MTIME, &status) == 0) {
            file.bytes = static_cast<std::int64_t>(status.stx_size);
            file.modified = status.stx_mtime.tv_sec;
        }
    }
}

} // namespace velmora
